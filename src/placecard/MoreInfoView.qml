import QtQuick
import Velmora

// A place's extended data in white groups, the links in the brand's colour, and one ad last.
Rectangle {
    id: root
    objectName: "moreInfoView"
    property MoreInfoTableViewController controller
    color: "#f2eee8"

    ListView {
        id: list
        objectName: "moreInfoList"
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
            sourceComponent: modelData.kind === "more-info-info-cell" ? info : modelData.kind === "more-info-adv-cell" ? ad : separator

            Component {
                id: separator
                Item { height: 18 }
            }
            Component {
                id: info
                Rectangle {
                    objectName: "moreInfoRow-" + row.index
                    height: Math.max(60, column.implicitHeight + 24)
                    color: infoArea.pressed && row.modelData.link ? "#f4f1ec" : "white"
                    Accessible.role: row.modelData.link ? Accessible.Link : Accessible.StaticText
                    Accessible.name: row.modelData.header + ". " + row.modelData.text
                    Accessible.onPressAction: root.controller.didSelectRow(row.index)
                    Column {
                        id: column
                        anchors { left: parent.left; leftMargin: 20; right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                        spacing: 2
                        Text {
                            width: parent.width
                            text: row.modelData.header
                            font: Theme.font("OpenSans-Semibold", 11)
                            color: "#b2a489"
                            elide: Text.ElideRight
                        }
                        Text {
                            width: parent.width
                            text: row.modelData.text
                            font: Theme.font("OpenSans", 15)
                            color: row.modelData.link ? Theme.colors.barTintColor : "#3a2a22"
                            wrapMode: Text.Wrap
                        }
                    }
                    // Under a group's last row the line runs from the edge; under the others, inset.
                    Rectangle {
                        anchors.bottom: parent.bottom
                        x: row.modelData.last ? 0 : 30
                        width: parent.width - x
                        height: 1
                        color: "#e6dfd4"
                    }
                    MouseArea { id: infoArea; anchors.fill: parent; enabled: row.modelData.link; onClicked: root.controller.didSelectRow(row.index) }
                }
            }
            Component {
                id: ad
                AdRow {
                    source: row.modelData.source
                    badge: row.modelData.badge
                    onTapped: root.controller.didSelectRow(row.index)
                    onBuilt: root.controller.advertisingCellBuilt()
                }
            }
        }
    }
}
