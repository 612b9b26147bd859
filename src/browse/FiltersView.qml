import QtQuick
import Velmora

// The filters panel: its title and "clear all", three page buttons (each with a dot while its
// page filters), the page's rows with their check glyphs, and the filter button that closes it.
Rectangle {
    id: root
    objectName: "filtersView"
    property FiltersViewController controller
    color: "white"

    readonly property color chosenColor: "#68B213"
    readonly property color idleColor: "#A29476"
    readonly property color idleIconColor: "#f0ede8"

    // Left and Right turn the pages, as the page buttons do.
    Keys.onLeftPressed: if (controller.page > 0) controller.page = controller.page - 1
    Keys.onRightPressed: if (controller.page < 2) controller.page = controller.page + 1

    Rectangle {
        id: header
        width: parent.width
        height: 56
        color: Theme.colors.barTintColor
        Text {
            anchors { left: parent.left; leftMargin: 14; verticalCenter: parent.verticalCenter }
            text: qsTrId("filters_title")
            Accessible.role: Accessible.Heading
            Accessible.name: text
            font: Theme.font("OpenSans-Semibold", 16)
            color: "white"
        }
        Text {
            objectName: "clearAllButton"
            visible: root.controller && root.controller.clearAllVisible
            anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
            text: qsTrId("filters_clear_all")
            font: Theme.font("OpenSans", 12)
            color: "white"
            Accessible.role: Accessible.Button
            Accessible.name: text
            Accessible.onPressAction: root.controller.clearAllFilters()
            MouseArea { anchors { fill: parent; margins: -10 } onClicked: root.controller.clearAllFilters() }
        }
    }

    Row {
        id: pageButtons
        anchors.top: header.bottom
        width: parent.width
        height: 44
        Repeater {
            model: [qsTrId("filters_page_location"), qsTrId("filters_page_cuisines"), qsTrId("filters_page_price")]
            Item {
                required property int index
                required property string modelData
                objectName: "filtersPage-" + index
                width: pageButtons.width / 3
                height: pageButtons.height
                Accessible.role: Accessible.PageTab
                Accessible.name: modelData
                Accessible.selected: root.controller && root.controller.page === index
                Accessible.onPressAction: root.controller.page = index
                activeFocusOnTab: true
                Text {
                    anchors.centerIn: parent
                    text: parent.modelData
                    font: Theme.font("OpenSans-Semibold", 12)
                    color: root.controller && root.controller.page === parent.index ? root.chosenColor : root.idleColor
                }
                Rectangle {
                    objectName: "filtersDot-" + parent.index
                    readonly property bool lit: root.controller !== null
                        && [root.controller.locationDot, root.controller.cuisinesDot, root.controller.priceDot][parent.index]
                    visible: lit
                    anchors { right: parent.right; rightMargin: 6; top: parent.top; topMargin: 8 }
                    width: 7; height: 7; radius: 3.5
                    color: root.chosenColor
                }
                MouseArea { anchors.fill: parent; onClicked: root.controller.page = parent.index }
            }
        }
    }
    Rectangle { anchors.top: pageButtons.bottom; width: parent.width; height: 1; color: "#ebe6de" }

    ListView {
        id: rows
        objectName: "filterRows"
        anchors { top: pageButtons.bottom; topMargin: 1; left: parent.left; right: parent.right; bottom: filterButton.top }
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        readonly property var page: !root.controller ? null
            : [root.controller.locationVC, root.controller.cuisinesVC, root.controller.priceVC][root.controller.page]
        readonly property bool prices: root.controller !== null && root.controller.page === 2
        model: page ? page.rows : []
        // A tick remakes the rows; the row ticked by the keys takes them back once remade.
        property int keyRow: -1
        function tickByKeys(index) { keyRow = index; page.didSelectRow(index) }
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("filters_title")
        delegate: Item {
            id: row
            required property int index
            required property var modelData
            objectName: "filterRow-" + index
            width: rows.width
            height: 44
            Accessible.role: Accessible.CheckBox
            Accessible.name: modelData.title
            Accessible.checked: modelData.chosen
            Accessible.checkable: true
            // A screen reader's toggle or press is the finger's tap.
            Accessible.onToggleAction: rows.page.didSelectRow(row.index)
            Accessible.onPressAction: rows.page.didSelectRow(row.index)
            // The keys: Space or Return ticks, as a tap does.
            activeFocusOnTab: true
            Keys.onSpacePressed: rows.tickByKeys(row.index)
            Keys.onReturnPressed: rows.tickByKeys(row.index)
            Component.onCompleted: if (rows.keyRow === index) forceActiveFocus(Qt.TabFocusReason)
            // The price ranges' connectors join neighbouring chosen ranges into one.
            Rectangle {
                visible: rows.prices && row.modelData.top !== "hidden"
                x: 21; width: 2; anchors.top: parent.top; height: parent.height / 2 - 8
                color: row.modelData.top === "on" ? root.chosenColor : root.idleIconColor
            }
            Rectangle {
                visible: rows.prices && row.modelData.bottom !== "hidden"
                x: 21; width: 2; anchors.bottom: parent.bottom; height: parent.height / 2 - 8
                color: row.modelData.bottom === "on" ? root.chosenColor : root.idleIconColor
            }
            Text {
                id: check
                x: !rows.prices && row.modelData.indented ? 26 : 12
                anchors.verticalCenter: parent.verticalCenter
                text: row.modelData.chosen ? Theme.icons.checkOn : Theme.icons.checkOff
                font: Theme.font("Velmora-Icons", 18)
                color: row.modelData.chosen ? root.chosenColor : root.idleIconColor
            }
            Text {
                anchors { left: check.right; leftMargin: 8; right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: row.modelData.title
                font: Theme.font("OpenSans", 13)
                color: row.modelData.chosen ? root.chosenColor : root.idleColor
                elide: Text.ElideRight
            }
            Rectangle {
                anchors.bottom: parent.bottom
                x: !rows.prices && row.modelData.indented ? 35 : 0
                width: parent.width - x; height: 1
                color: "#f0ede8"
            }
            MouseArea { anchors.fill: parent; onClicked: { rows.keyRow = -1; rows.page.didSelectRow(row.index) } }
        }
    }

    Rectangle {
        id: filterButton
        objectName: "filterButton"
        anchors.bottom: parent.bottom
        width: parent.width
        height: 50
        color: Theme.colors.barTintColor
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("filters_filter_action")
        Accessible.onPressAction: root.controller.close()
        activeFocusOnTab: true
        Text {
            anchors.centerIn: parent
            text: qsTrId("filters_filter_action")
            font: Theme.font("OpenSans-Semibold", 15)
            color: "white"
        }
        MouseArea { anchors.fill: parent; onClicked: root.controller.close() }
    }
}
