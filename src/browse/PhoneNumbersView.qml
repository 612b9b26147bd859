import QtQuick
import Velmora

// The phone numbers of a place, one row each, and a cancel button.
Rectangle {
    id: root
    objectName: "phoneNumbersView"
    property PhoneNumbersViewController controller
    color: "white"

    Column {
        anchors.fill: parent
        Repeater {
            model: root.controller ? root.controller.numbers : []
            Item {
                required property string modelData
                width: root.width
                height: 75
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.trim()
                Text {
                    anchors { left: parent.left; leftMargin: 24; verticalCenter: parent.verticalCenter }
                    text: "T"
                    font: Theme.font("Velmora-Icons", 22)
                    color: Theme.colors.swipeCallColor
                }
                Text {
                    anchors { left: parent.left; leftMargin: 64; verticalCenter: parent.verticalCenter }
                    text: modelData.trim()
                    font: Theme.font("OpenSans-Semibold", 18)
                    color: "#3a2a22"
                }
                Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: "#ebe6de" }
            }
        }
        Item {
            width: root.width
            height: 50
            Accessible.role: Accessible.Button
            Accessible.name: root.controller ? root.controller.cancelTitle : ""
            Accessible.onPressAction: root.controller.cancel()
            Text {
                anchors.centerIn: parent
                text: root.controller ? root.controller.cancelTitle : ""
                font: Theme.font("OpenSans-Semibold", 16)
                color: Theme.colors.barTintColor
            }
            MouseArea { anchors.fill: parent; onClicked: root.controller.cancel() }
        }
    }
}
