import QtQuick
import Velmora

// The walkthrough's buttons: white outlined text on the brand colour.
Rectangle {
    id: button
    property alias text: label.text
    property bool filled: false
    signal clicked()

    implicitHeight: 50
    radius: 25
    color: filled ? "white" : (area.pressed ? Qt.rgba(1, 1, 1, 0.15) : "transparent")
    border { color: "white"; width: 1.5 }
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.Button
    Accessible.name: label.text
    Accessible.onPressAction: button.clicked()

    Text {
        id: label
        anchors.centerIn: parent
        width: parent.width - 32
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideRight
        color: button.filled ? "#d95b43" : "white"
        font: Theme.font("OpenSans-Semibold", 16)
    }
    MouseArea { id: area; anchors.fill: parent; onClicked: button.clicked() }
}
