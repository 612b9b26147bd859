import QtQuick
import Velmora

// Every key of the settings store with its value. While editing, a row whose key isn't forced
// shows a delete button.
Rectangle {
    id: root
    objectName: "userDefaultsView"
    property UserDefaultsTableViewController controller
    color: "white"

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: root.controller ? root.controller.pairs : []
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.title : ""
        delegate: Rectangle {
            id: pair
            required property var modelData
            required property int index
            objectName: "defaultsRow-" + modelData.key
            width: list.width
            height: Math.max(52, texts.implicitHeight + 20)
            Column {
                id: texts
                anchors { left: parent.left; leftMargin: 16; right: remove.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                spacing: 2
                Text { width: parent.width; text: pair.modelData.key; font: Theme.font("OpenSans-Semibold", 14); color: "#3a2a22"; elide: Text.ElideRight }
                Text { width: parent.width; text: pair.modelData.value; font: Theme.font("OpenSans", 12); color: "#8a7a70"; wrapMode: Text.WrapAnywhere; maximumLineCount: 6; elide: Text.ElideRight }
            }
            Rectangle {
                id: remove
                objectName: "deleteDefault-" + pair.modelData.key
                anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
                visible: root.controller.editing && !pair.modelData.locked
                width: visible ? deleteText.implicitWidth + 20 : 0
                height: 30
                radius: 4
                color: "#e5443a"
                Accessible.role: Accessible.Button
                Accessible.name: qsTrId("user_defaults_delete") + " " + pair.modelData.key
                Accessible.onPressAction: root.controller.deleteRow(pair.index)
                Text { id: deleteText; anchors.centerIn: parent; text: qsTrId("user_defaults_delete"); color: "white"; font: Theme.font("OpenSans-Semibold", 13) }
                MouseArea { anchors.fill: parent; onClicked: root.controller.deleteRow(pair.index) }
            }
            Rectangle { anchors { left: parent.left; leftMargin: 16; right: parent.right; bottom: parent.bottom } height: 1; color: "#ebe6de" }
        }
    }
}
