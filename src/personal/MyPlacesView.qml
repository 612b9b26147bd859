import QtQuick
import Velmora
import Velmora.RichText

// My places: a segmented control over the selected list, shown as the shared place list, or,
// while the list is empty, its big glyph, a line on how to fill it and a way to go exploring.
Rectangle {
    id: root
    objectName: "myPlacesView"
    property MyPlacesViewController controller
    color: "white"

    Rectangle {
        id: segmentsBar
        width: parent.width
        height: 48
        color: Theme.colors.barTintColor
        Row {
            id: segments
            objectName: "myPlacesSegments"
            anchors { fill: parent; leftMargin: 12; rightMargin: 12; topMargin: 6; bottomMargin: 10 }
            Repeater {
                model: root.controller ? root.controller.segmentTitles : []
                Rectangle {
                    id: segment
                    required property int index
                    required property string modelData
                    readonly property bool selected: root.controller.selectedSegment === index
                    objectName: "myPlacesSegment-" + index
                    width: segments.width / 3
                    height: segments.height
                    color: selected ? "white" : "transparent"
                    border.color: "white"
                    border.width: 1
                    radius: index === 1 ? 0 : 4
                    Accessible.role: Accessible.PageTab
                    Accessible.name: modelData
                    Accessible.selected: selected
                    Accessible.onPressAction: root.controller.selectedSegment = index
                    Text {
                        anchors { fill: parent; leftMargin: 4; rightMargin: 4 }
                        text: segment.modelData
                        font: Theme.font("OpenSans", 12)
                        color: segment.selected ? Theme.colors.barTintColor : "white"
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        elide: Text.ElideRight
                    }
                    MouseArea { anchors.fill: parent; onClicked: root.controller.selectedSegment = segment.index }
                }
            }
        }
    }

    Item {
        id: container
        anchors { top: segmentsBar.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }

        Loader {
            anchors.fill: parent
            visible: root.controller && !root.controller.showingEmpty
            source: root.controller && root.controller.lugares ? root.controller.lugares.viewUrl : ""
            onLoaded: item.controller = root.controller.lugares
        }

        Item {
            objectName: "myPlacesEmpty"
            anchors.fill: parent
            visible: root.controller && root.controller.showingEmpty
            Column {
                anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; verticalCenterOffset: -30 }
                spacing: 18
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: root.controller ? root.controller.emptyIcon : ""
                    font: Theme.font("Velmora-Icons", 150)
                    color: "#eee7dc"
                    Accessible.ignored: true
                }
                RichLabel {
                    anchors { left: parent.left; leftMargin: 40; right: parent.right; rightMargin: 40 }
                    text: root.controller ? root.controller.emptyText : ""
                    color: "#8a7f72"
                    Accessible.role: Accessible.StaticText
                    Accessible.name: root.controller ? root.controller.emptySpoken : ""
                }
                Rectangle {
                    objectName: "myPlacesExplore"
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: exploreText.implicitWidth + 48
                    height: 44
                    radius: 22
                    color: exploreArea.pressed ? "#c44f39" : Theme.colors.barTintColor
                    Accessible.role: Accessible.Button
                    Accessible.name: exploreText.text
                    Accessible.onPressAction: root.controller.explore()
                    Text {
                        id: exploreText
                        anchors.centerIn: parent
                        text: root.controller ? root.controller.exploreTitle : ""
                        font: Theme.font("OpenSans-Semibold", 15)
                        color: "white"
                    }
                    MouseArea { id: exploreArea; anchors.fill: parent; onClicked: root.controller.explore() }
                }
            }
        }
    }
}
