import QtQuick
import QtQuick.Controls.Basic
import Velmora

// The settings: rows drawn by reuse identifier, and the delete tool's confirmation over them.
Rectangle {
    id: root
    objectName: "settingsView"
    property SettingsTableViewController controller
    color: "#f4f1ec"

    Flickable {
        anchors.fill: parent
        contentHeight: rows.height + 24
        clip: true
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.title : ""
        Column {
            id: rows
            width: parent.width
            Repeater {
                model: root.controller ? root.controller.rows : []
                Loader {
                    id: row
                    required property var modelData
                    required property int index
                    width: rows.width
                    objectName: "settingsRow-" + index
                    sourceComponent: ({
                        "settings-header-cell": headerCell,
                        "settings-language-cell": languageCell,
                        "settings-toggle-cell": toggleCell,
                        "settings-action-cell": actionCell,
                        "settings-subscribed-cell": subscribedCell
                    })[modelData.kind]
                }
            }
        }
    }

    Component {
        id: headerCell
        Item {
            readonly property var cell: parent.modelData
            height: 44
            Text {
                anchors { left: parent.left; leftMargin: 18; right: parent.right; rightMargin: 18; bottom: parent.bottom; bottomMargin: 7 }
                text: parent.cell.title
                color: "#8a7a70"
                font: Theme.font("OpenSans-Semibold", 13)
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
        }
    }

    // A white row of a group; a tap on it selects the row.
    component SettingsRowFace: Rectangle {
        id: face
        property int row: -1
        property bool pressable: true
        default property alias content: inner.data
        height: 52
        color: area.pressed && pressable ? "#efe9e2" : "white"
        Item { id: inner; anchors.fill: parent }
        Rectangle { anchors { left: parent.left; leftMargin: 18; right: parent.right; bottom: parent.bottom } height: 1; color: "#ebe6de" }
        MouseArea { id: area; anchors.fill: parent; enabled: face.pressable; onClicked: root.controller.didSelectRow(face.row) }
    }

    Component {
        id: languageCell
        SettingsRowFace {
            readonly property var cell: parent.modelData
            objectName: "languageRow-" + cell.value
            row: parent.index
            Accessible.role: Accessible.RadioButton
            Accessible.name: cell.title
            Accessible.checked: cell.selected
            Accessible.checkable: true
            Accessible.onPressAction: root.controller.didSelectRow(row)
            Accessible.onToggleAction: root.controller.didSelectRow(row)
            Text {
                anchors { left: parent.left; leftMargin: 18; verticalCenter: parent.verticalCenter }
                text: parent.parent.cell.title
                color: parent.parent.cell.color
                font: Theme.font("OpenSans", 16)
            }
            Text {
                anchors { right: parent.right; rightMargin: 18; verticalCenter: parent.verticalCenter }
                text: parent.parent.cell.glyph
                color: parent.parent.cell.color
                font: Theme.font("Velmora-Icons", 22)
                Accessible.ignored: true
            }
        }
    }

    Component {
        id: toggleCell
        SettingsRowFace {
            id: toggleRow
            readonly property var cell: parent.modelData
            objectName: "toggleRow-" + cell.value
            row: parent.index
            pressable: false
            height: Math.max(52, toggleTexts.implicitHeight + 24)
            Column {
                id: toggleTexts
                anchors { left: parent.left; leftMargin: 18; right: toggle.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                Text {
                    width: parent.width
                    text: toggleRow.cell.title
                    color: "#3a2a22"
                    font: Theme.font("OpenSans", 15)
                    wrapMode: Text.Wrap
                }
                // A value the deployment forces can't be changed here, and says so.
                Text {
                    objectName: "lockedNote-" + toggleRow.cell.value
                    width: parent.width
                    visible: toggleRow.cell.locked
                    text: qsTrId("settings_locked")
                    color: "#a29476"
                    font: Theme.font("OpenSans", 12)
                    wrapMode: Text.Wrap
                }
            }
            Switch {
                id: toggle
                objectName: "toggle-" + toggleRow.cell.value
                anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
                checked: toggleRow.cell.on
                enabled: !toggleRow.cell.locked
                palette.dark: "#68B213"
                Accessible.name: toggleRow.cell.title
                onToggled: root.controller.toggleChanged(toggleRow.row, checked)
            }
        }
    }

    Component {
        id: actionCell
        SettingsRowFace {
            readonly property var cell: parent.modelData
            objectName: "actionRow-" + cell.value
            row: parent.index
            Accessible.role: Accessible.Button
            Accessible.name: cell.title
            Accessible.onPressAction: root.controller.didSelectRow(row)
            Text {
                anchors { left: parent.left; leftMargin: 18; verticalCenter: parent.verticalCenter }
                text: parent.parent.cell.title
                color: parent.parent.cell.color
                font: Theme.font("OpenSans", 15)
            }
        }
    }

    Component {
        id: subscribedCell
        SettingsRowFace {
            readonly property var cell: parent.modelData
            objectName: "subscribedRow"
            row: parent.index
            Accessible.role: Accessible.Button
            Accessible.name: cell.title + ": " + cell.state
            Accessible.onPressAction: root.controller.didSelectRow(row)
            Text {
                anchors { left: parent.left; leftMargin: 18; verticalCenter: parent.verticalCenter }
                text: parent.parent.cell.title
                color: "#3a2a22"
                font: Theme.font("OpenSans", 15)
            }
            Text {
                anchors { right: parent.right; rightMargin: 18; verticalCenter: parent.verticalCenter }
                text: parent.parent.cell.state
                color: parent.parent.cell.color
                font: Theme.font("OpenSans-Semibold", 15)
            }
        }
    }

    // The delete tool asks first.
    Rectangle {
        objectName: "deleteDatabaseAlert"
        anchors.fill: parent
        color: "#80000000"
        visible: root.controller ? root.controller.confirmingDelete : false
        MouseArea { anchors.fill: parent }
        Rectangle {
            anchors.centerIn: parent
            width: 270
            height: alertColumn.height
            radius: 12
            color: "white"
            Column {
                id: alertColumn
                width: parent.width
                Item { width: 1; height: 18 }
                Text {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: qsTrId("settings_dev_delete_title")
                    font: Theme.font("OpenSans-Semibold", 17)
                    color: "#3a2a22"
                }
                Text {
                    width: parent.width - 32
                    x: 16
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.Wrap
                    text: qsTrId("settings_dev_delete_message")
                    font: Theme.font("OpenSans", 13)
                    color: "#3a2a22"
                }
                Item { width: 1; height: 16 }
                Rectangle { width: parent.width; height: 1; color: "#e0dbd2" }
                Row {
                    width: parent.width
                    height: 44
                    Repeater {
                        model: [{ "name": "alertDelete", "text": qsTrId("settings_dev_delete"), "color": "red", "confirm": true },
                                { "name": "alertCancel", "text": qsTrId("settings_dev_cancel"), "color": "#007aff", "confirm": false }]
                        Item {
                            required property var modelData
                            objectName: modelData.name
                            width: parent.width / 2
                            height: 44
                            Accessible.role: Accessible.Button
                            Accessible.name: modelData.text
                            Accessible.onPressAction: root.controller.confirmDelete(modelData.confirm)
                            Text { anchors.centerIn: parent; text: parent.modelData.text; color: parent.modelData.color; font: Theme.font("OpenSans", 16) }
                            MouseArea { anchors.fill: parent; onClicked: root.controller.confirmDelete(parent.modelData.confirm) }
                        }
                    }
                }
            }
        }
    }
}
