import QtQuick
import Velmora

// A row of one of the card's white groups: inset from the sides, a hairline below unless it
// closes its group, and a gap after the group's last row.
Item {
    id: groupRow
    property bool pressable: false
    property bool closesGroup: false
    property real contentHeight: 52
    property string spoken
    default property alias content: face.data
    signal tapped()

    height: contentHeight + (closesGroup ? 12 : 0)

    // A reader meets a button it can press, or a text that offers no press at all.
    Item {
        anchors.fill: face
        visible: groupRow.pressable
        Accessible.role: Accessible.Button
        Accessible.name: groupRow.spoken
        Accessible.onPressAction: groupRow.tapped()
    }
    Item {
        anchors.fill: face
        visible: !groupRow.pressable
        Accessible.role: Accessible.StaticText
        Accessible.name: groupRow.spoken
    }

    Rectangle {
        id: face
        anchors { fill: parent; leftMargin: 12; rightMargin: 12; bottomMargin: groupRow.closesGroup ? 12 : 0 }
        color: area.pressed && groupRow.pressable ? "#f4f1ec" : "white"
        border.color: "#e8e1d6"
        border.width: 0
        Rectangle {
            visible: !groupRow.closesGroup
            anchors { bottom: parent.bottom; left: parent.left; leftMargin: 16; right: parent.right }
            height: 1
            color: "#ebe6de"
        }
        MouseArea { id: area; anchors.fill: parent; enabled: groupRow.pressable; onClicked: groupRow.tapped() }
    }
}
