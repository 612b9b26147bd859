import QtQuick
import Velmora
import Velmora.RichText

// The choice of provinces: a header with "select all", a list with check marks, and the finish
// button rising from the bottom when there is something to send.
Rectangle {
    id: root
    objectName: "subscribeProvincesView"
    property SubscribeProvincesViewController controller
    color: "white"

    Rectangle {
        id: header
        width: parent.width
        height: 132
        color: Theme.colors.barTintColor
        Item {
            objectName: "closeButton"
            anchors { left: parent.left; top: parent.top; topMargin: 6 }
            width: 44
            height: 44
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_back")
            Accessible.onPressAction: root.controller.closeButtonTouched()
            Text { anchors.centerIn: parent; text: Theme.icons.back; color: "white"; font: Theme.font("Velmora-Icons", 18) }
            MouseArea { anchors.fill: parent; onClicked: root.controller.closeButtonTouched() }
        }
        Text {
            objectName: "headerLabel"
            anchors { left: parent.left; right: parent.right; leftMargin: 24; rightMargin: 24; top: parent.top; topMargin: 50 }
            text: root.controller ? root.controller.headerText : ""
            color: "white"
            font: Theme.font("OpenSans-Light", 19)
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Text {
            objectName: "selectAllButton"
            anchors { right: parent.right; rightMargin: 20; bottom: parent.bottom; bottomMargin: 10 }
            text: root.controller ? root.controller.selectAllText : ""
            color: "white"
            font: Theme.font("OpenSans-Semibold", 14)
            Accessible.role: Accessible.Button
            Accessible.name: text
            Accessible.onPressAction: root.controller.selectAllTouched()
            MouseArea { anchors.fill: parent; anchors.margins: -10; onClicked: root.controller.selectAllTouched() }
        }
    }

    ListView {
        id: list
        anchors { top: header.bottom; left: parent.left; right: parent.right; bottom: finish.top }
        clip: true
        model: root.controller ? root.controller.provinces : []
        delegate: Rectangle {
            id: province
            required property var modelData
            required property int index
            objectName: "provinceRow-" + modelData.id
            width: list.width
            height: 48
            color: area.pressed ? "#f4f1ec" : "white"
            Accessible.role: Accessible.CheckBox
            Accessible.name: modelData.name
            Accessible.checked: modelData.selected
            // A reader's toggle or press is the finger's tap.
            Accessible.onPressAction: root.controller.didSelectRow(index)
            Accessible.onToggleAction: root.controller.didSelectRow(index)
            Text {
                anchors { left: parent.left; leftMargin: 24; verticalCenter: parent.verticalCenter }
                text: province.modelData.name
                color: province.modelData.selected ? "#68B213" : "#3a2a22"
                font: Theme.font("OpenSans", 16)
            }
            Text {
                anchors { right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                text: province.modelData.selected ? Theme.icons.checkOn : Theme.icons.checkOff
                color: province.modelData.selected ? "#68B213" : "#A29476"
                font: Theme.font("Velmora-Icons", 22)
                Accessible.ignored: true
            }
            Rectangle { anchors { left: parent.left; leftMargin: 24; right: parent.right; bottom: parent.bottom } height: 1; color: "#ebe6de" }
            MouseArea { id: area; anchors.fill: parent; onClicked: root.controller.didSelectRow(province.index) }
        }
    }

    Rectangle {
        id: finish
        objectName: "finishButton"
        width: parent.width
        height: 76
        // Off the screen unless there is something to send.
        y: root.controller && root.controller.finishVisible ? root.height - height : root.height
        Behavior on y { NumberAnimation { duration: 200 } }
        color: "#68B213"
        visible: y < root.height
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("notifications_provinces_finish")
        Accessible.onPressAction: root.controller.finishButtonTouched()
        RichLabel { anchors.centerIn: parent; width: parent.width - 24; text: root.controller ? root.controller.finishTitle : undefined }
        MouseArea { anchors.fill: parent; onClicked: root.controller.finishButtonTouched() }
    }
}
