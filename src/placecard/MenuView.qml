import QtQuick
import Velmora

// A place's menu: the note, then each section's header (tap to open or close it) and, while
// open, its dishes with their prices.
Rectangle {
    id: root
    objectName: "menuView"
    property MenuTableViewController controller
    color: "#f2eee8"

    ListView {
        id: list
        objectName: "menuList"
        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: root.controller ? root.controller.rows : []
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.title : ""
        delegate: Loader {
            id: row
            required property int index
            required property var modelData
            width: list.width
            sourceComponent: modelData.kind === "menu-desc-cell" ? note : modelData.kind === "menu-header-cell" ? header : entry

            Component {
                id: note
                Item {
                    height: noteText.text === "" ? 14 : noteText.implicitHeight + 28
                    Text {
                        id: noteText
                        anchors { left: parent.left; leftMargin: 20; right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                        text: row.modelData.text
                        font: Theme.font("OpenSans-Italic", 13)
                        color: "#8a7f72"
                        wrapMode: Text.Wrap
                    }
                }
            }
            Component {
                id: header
                Rectangle {
                    objectName: "menuSection-" + row.modelData.section
                    height: 56
                    color: headerArea.pressed ? "#c44f39" : Theme.colors.barTintColor
                    Accessible.role: Accessible.Button
                    Accessible.name: row.modelData.name
                    Accessible.checkable: true
                    Accessible.checked: row.modelData.open
                    Accessible.onPressAction: root.controller.didSelectRow(row.index)
                    Text {
                        anchors { left: parent.left; leftMargin: 20; right: arrow.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
                        text: row.modelData.name
                        font: Theme.font("OpenSans-Semibold", 14)
                        color: "white"
                        elide: Text.ElideRight
                    }
                    Text {
                        id: arrow
                        anchors { right: parent.right; rightMargin: 18; verticalCenter: parent.verticalCenter }
                        text: row.modelData.arrow
                        font: Theme.font("Velmora-Icons", 16)
                        color: "white"
                    }
                    Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: "#c9523c" }
                    MouseArea { id: headerArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(row.index) }
                }
            }
            Component {
                id: entry
                Rectangle {
                    height: Math.max(48, dish.implicitHeight + 24)
                    color: "white"
                    Accessible.role: Accessible.StaticText
                    Accessible.name: row.modelData.dish + (row.modelData.price !== "" ? ", " + row.modelData.price : "")
                    Text {
                        id: dish
                        anchors { left: parent.left; leftMargin: 20; right: price.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                        text: row.modelData.dish
                        font: Theme.font("OpenSans", 15)
                        color: "#3a2a22"
                        wrapMode: Text.Wrap
                    }
                    Text {
                        id: price
                        anchors { right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                        text: row.modelData.price
                        font: Theme.font("OpenSans-Semibold", 15)
                        color: Theme.colors.barTintColor
                    }
                    Rectangle { anchors.bottom: parent.bottom; x: 20; width: parent.width - 20; height: 1; color: "#ebe6de" }
                }
            }
        }
    }
    Connections {
        target: root.controller
        function onScrollToRow(row) { list.positionViewAtIndex(row, ListView.Beginning) }
    }
}
