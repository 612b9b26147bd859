import QtQuick
import Velmora

// A screen still to be built: its name and a short note, in the app's colours.
Rectangle {
    id: view
    property ViewController controller
    color: "#f4f1ec"

    Text {
        objectName: "closeButton"
        visible: view.controller && view.controller.presented
        anchors { left: parent.left; top: parent.top; margins: 16 }
        text: Theme.icons.back
        font: Theme.font("Velmora-Icons", 26)
        color: Theme.colors.barTintColor
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("a11y_close")
        MouseArea { anchors { fill: parent; margins: -12 } onClicked: view.controller.close() }
    }

    Column {
        anchors.centerIn: parent
        width: parent.width - 64
        spacing: 12
        Text {
            width: parent.width
            text: view.controller ? view.controller.title : ""
            font: Theme.font("OpenSans-Semibold", 20)
            color: "#5e190b"
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
        Text {
            width: parent.width
            text: view.controller ? view.controller.message : ""
            font: Theme.font("OpenSans-Light", 15)
            color: Theme.colors.settingsTextColor
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
        }
    }
}
