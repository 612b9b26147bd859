import QtQuick
import Velmora

// The province picker: its own red bar whose title (the current province and an open chevron)
// closes it, then every province with its number of places. The picked row flashes light.
Rectangle {
    id: root
    objectName: "provincesView"
    property ProvincesTableViewController controller
    color: "white"

    Rectangle {
        id: bar
        width: parent.width
        height: 56
        color: Theme.colors.barTintColor
        z: 1
        Item {
            id: titleButton
            objectName: "provincesTitle"
            anchors.fill: parent
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_province_button").arg(root.controller ? root.controller.currentName : "")
            Accessible.onPressAction: root.controller.close()
            Row {
                anchors.centerIn: parent
                opacity: titleArea.pressed ? 0.5 : 1
                Text {
                    text: root.controller && root.controller.currentName !== "" ? root.controller.currentName + " " : ""
                    font: Theme.font("OpenSans-Light", 18)
                    color: "white"
                }
                Text {
                    text: Theme.icons.chevronOpen
                    font: Theme.font("Velmora-Icons", 18)
                    color: "white"
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
            MouseArea { id: titleArea; anchors.fill: parent; onClicked: root.controller.close() }
        }
    }

    ListView {
        id: list
        objectName: "provinceList"
        anchors { top: bar.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: root.controller ? root.controller.rows : []
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("a11y_province_list")
        delegate: Rectangle {
            id: row
            required property int index
            required property var modelData
            objectName: "provinceRow-" + modelData.id
            width: list.width
            height: 52
            color: index === root.controller.pickedRow || rowArea.pressed ? "#33d95b43" : "white"
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData.name + ", " + modelData.count
            Accessible.onPressAction: root.controller.didSelectRow(index)
            Text {
                anchors { left: parent.left; leftMargin: 20; right: countLabel.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: row.modelData.name
                font: Theme.font("OpenSans-Semibold", 16)
                color: "#3a2a22"
                elide: Text.ElideRight
            }
            Text {
                id: countLabel
                anchors { right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                text: row.modelData.count
                font: Theme.font("OpenSans-Light", 14)
                color: "#8a7f72"
            }
            Rectangle { anchors.bottom: parent.bottom; x: 20; width: parent.width - 20; height: 1; color: "#ebe6de" }
            MouseArea { id: rowArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(row.index) }
        }
    }
}
