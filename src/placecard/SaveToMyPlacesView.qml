import QtQuick
import Velmora
import Velmora.RichText

// Files a place in the user's lists: a heading, three toggles with their big glyphs, a share
// button, and the one button that cancels or, after a change, saves.
Rectangle {
    id: root
    objectName: "saveToMyPlacesView"
    property SaveToMyPlacesViewController controller
    color: "white"

    Item {
        id: heading
        width: parent.width
        height: 40
        Text {
            anchors { left: parent.left; leftMargin: 16; verticalCenter: parent.verticalCenter; right: share.left }
            text: root.controller ? root.controller.saveLabel : ""
            font: Theme.font("OpenSans-Semibold", 14)
            color: "#8a7f72"
            elide: Text.ElideRight
        }
        Item {
            id: share
            objectName: "saveSheetShare"
            anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
            width: 52
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_share")
            Accessible.onPressAction: root.controller.shareButtonTouched()
            Text {
                anchors.centerIn: parent
                text: Theme.icons.share
                font: Theme.font("Velmora-Icons", 24)
                color: shareArea.pressed ? "#f0a898" : Theme.colors.barTintColor
            }
            MouseArea { id: shareArea; anchors.fill: parent; onClicked: root.controller.shareButtonTouched() }
        }
    }

    Row {
        id: toggles
        anchors { top: heading.bottom; horizontalCenter: parent.horizontalCenter }
        height: 116
        Repeater {
            model: root.controller ? root.controller.buttons : []
            Item {
                id: toggle
                required property var modelData
                objectName: "saveToggle-" + modelData.name
                width: (root.width - 24) / 3
                height: toggles.height
                Accessible.role: Accessible.CheckBox
                Accessible.name: modelData.spoken
                Accessible.checkable: true
                Accessible.checked: modelData.on
                // A reader's toggle or press is the finger's tap.
                Accessible.onPressAction: root.controller.toggleButtonTouched(modelData.list)
                Accessible.onToggleAction: root.controller.toggleButtonTouched(modelData.list)
                RichLabel {
                    anchors.centerIn: parent
                    text: toggle.modelData.title
                    opacity: toggleArea.pressed ? 0.6 : 1
                }
                MouseArea { id: toggleArea; anchors.fill: parent; onClicked: root.controller.toggleButtonTouched(toggle.modelData.list) }
            }
        }
    }

    Rectangle {
        objectName: "saveSheetAction"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: 50
        color: root.controller && root.controller.actionColor !== "" ? root.controller.actionColor : "#f4f1ec"
        Behavior on color { ColorAnimation { duration: 200 } }
        Accessible.role: Accessible.Button
        Accessible.name: actionText.text
        Accessible.onPressAction: root.controller.actionButtonTouched()
        Text {
            id: actionText
            objectName: "saveSheetActionText"
            anchors.centerIn: parent
            text: root.controller ? root.controller.actionTitle : ""
            font: Theme.font("OpenSans-Semibold", 16)
            color: root.controller && root.controller.actionColor !== "" ? "white" : Theme.colors.barTintColor
        }
        MouseArea { anchors.fill: parent; onClicked: root.controller.actionButtonTouched() }
    }
}
