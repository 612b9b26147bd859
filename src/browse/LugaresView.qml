import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// The place list: one card a place, the section letters down the right edge (tap or drag on a
// letter to jump to its section), and the empty state that asks for fewer filters.
Rectangle {
    id: root
    objectName: "lugaresView"
    property LugaresTableViewController controller
    color: "white"

    Item {
        objectName: "fewerFilters"
        anchors.fill: parent
        visible: root.controller && root.controller.fewerFiltersVisible
        Column {
            anchors.centerIn: parent
            width: parent.width - 80
            spacing: 14
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "d"
                font: Theme.font("Velmora-Icons", 54)
                Accessible.ignored: true
                color: Theme.colors.unselectedRowColor
            }
            Text {
                width: parent.width
                text: qsTrId("lugares_fewer_filters")
                font: Theme.font("OpenSans-Light", 16)
                color: Theme.colors.settingsTextColor
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
            }
        }
    }

    ListView {
        id: placeList
        objectName: "placeList"
        anchors.fill: parent
        clip: true
        model: root.controller ? root.controller.rows : null
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        // Cards off screen would be rewritten with those on it at every key: cards come from
        // the reuse pool as the list scrolls instead.
        cacheBuffer: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("a11y_place_list")
        readonly property int cardHeight: 92
        // The controller rewrites and adds the cards on screen one at a time when the rows
        // change. Below the last card there is room for as many as the height holds.
        function tellShownRows() {
            if (!root.controller)
                return
            const first = Math.max(0, indexAt(0, contentY))
            const last = indexAt(0, contentY + height - 1)
            root.controller.setShownRows(first, last >= 0 ? last : first + Math.ceil(height / cardHeight))
        }
        // A card added in a turn of its own is made in that turn, not with all the others at
        // the next frame's layout.
        Connections {
            target: root.controller ? root.controller.rows : null
            function onRowsInserted() { placeList.forceLayout() }
        }
        onContentYChanged: tellShownRows()
        onHeightChanged: tellShownRows()
        onCountChanged: tellShownRows()
        delegate: RestaurantCard {
            list: root.controller
            height: placeList.cardHeight
            width: placeList.width
        }
        ScrollIndicator.vertical: ScrollIndicator { }
    }

    Column {
        id: sectionIndex
        objectName: "sectionIndex"
        anchors { right: parent.right; rightMargin: 2; verticalCenter: parent.verticalCenter }
        width: 18
        opacity: root.controller ? root.controller.sectionIndexAlpha : 1
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("a11y_letter_index")
        Behavior on opacity { NumberAnimation { duration: 300 } }
        readonly property var titles: root.controller ? root.controller.sectionIndexTitles : []
        readonly property real letterHeight: Math.min(16, (root.height - 24) / Math.max(1, titles.length))
        Repeater {
            model: sectionIndex.titles
            Text {
                required property string modelData
                width: sectionIndex.width
                height: sectionIndex.letterHeight
                text: modelData
                Accessible.role: Accessible.ListItem
                Accessible.name: qsTrId("a11y_letter").arg(modelData)
                font: Theme.font("OpenSans-Bold", Math.min(11, sectionIndex.letterHeight - 1))
                color: Theme.colors.barTintColor
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
        }
    }
    MouseArea {
        objectName: "sectionIndexArea"
        anchors { fill: sectionIndex; leftMargin: -10 }
        // Dimmed while a card is swiped open, and then the taps go to the card's buttons beneath.
        enabled: root.controller && root.controller.sectionIndexAlpha >= 1
        Accessible.role: Accessible.ScrollBar
        Accessible.name: qsTrId("a11y_letter_index")
            property int section: 0
            function jump(y) { jumpTo(Math.floor(y / sectionIndex.letterHeight)) }
            function jumpTo(wanted) {
                section = Math.max(0, Math.min(sectionIndex.titles.length - 1, wanted))
                placeList.positionViewAtIndex(root.controller.rowForSection(section), ListView.Beginning)
            }
            // A reader's increase and decrease go to the next and the previous letter.
            Accessible.onIncreaseAction: jumpTo(section + 1)
            Accessible.onDecreaseAction: jumpTo(section - 1)
            onPressed: (mouse) => jump(mouse.y)
            onPositionChanged: (mouse) => jump(mouse.y)
    }
}
