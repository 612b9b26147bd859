import QtQuick
import Velmora

// A fortune in its frame; the dim behind it is the presentation's. A tap anywhere closes it.
Item {
    id: root
    objectName: "fortunesView"
    property FortunesViewController controller

    MouseArea {
        anchors.fill: parent
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("a11y_close")
        Accessible.onPressAction: root.controller.closeButtonTouched()
        onClicked: root.controller.closeButtonTouched()
    }
    Rectangle {
        objectName: "fortuneFrame"
        anchors.centerIn: parent
        width: parent.width - 60
        height: sentence.implicitHeight + 72
        radius: 10
        color: "#fffaf0"
        border.color: "#d95b43"
        border.width: 2
        Text {
            id: sentence
            objectName: "fortuneText"
            anchors { left: parent.left; right: parent.right; leftMargin: 24; rightMargin: 24; verticalCenter: parent.verticalCenter }
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            text: root.controller ? root.controller.fortune : ""
            color: "#3a2a22"
            font: Theme.font("OpenSans-Italic", 18)
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
