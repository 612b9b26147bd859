import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// A place's card: the rows its controller chose, drawn by kind, under a bar the controller
// paints as the picture scrolls beneath it. Every tap goes to the controller.
Rectangle {
    id: root
    objectName: "lugarView"
    property LugarTableViewController controller
    color: "#f2eee8"

    readonly property int barHeight: 56
    // The navigation bar takes its colour from here, and the table runs up under it.
    readonly property color barColor: controller ? controller.barColor : Theme.colors.barTintColor

    property Component titleView: Component {
        Item {
            objectName: "lugarTitle"
            Accessible.role: Accessible.Heading
            Accessible.name: root.controller ? root.controller.titleText : ""
            Text {
                anchors.fill: parent
                text: root.controller ? root.controller.titleText : ""
                color: "white"
                font: Theme.font("OpenSans-Bold", 18)
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 11
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                elide: Text.ElideRight
            }
            // A sideways swipe on the title: counted by the controller, which shows the id at six.
            MouseArea {
                anchors.fill: parent
                property real startX
                onPressed: (mouse) => startX = mouse.x
                onReleased: (mouse) => {
                    if (Math.abs(mouse.x - startX) > 30)
                        root.controller.navbarSwiped()
                }
            }
        }
    }

    Component.onCompleted: if (controller) controller.barMaxY = barHeight

    ListView {
        id: table
        objectName: "lugarTable"
        anchors { fill: parent; topMargin: -root.barHeight }
        model: root.controller ? root.controller.rows : []
        boundsBehavior: Flickable.DragOverBounds
        cacheBuffer: 600
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.title : ""
        onContentYChanged: if (root.controller) root.controller.scrollViewDidScroll(contentY - originY, contentHeight, height)
        onContentHeightChanged: if (root.controller) root.controller.scrollViewDidScroll(contentY - originY, contentHeight, height)

        delegate: Loader {
            id: row
            required property int index
            required property var modelData
            width: table.width
            objectName: "lugarRow-" + modelData.type
            sourceComponent: {
                switch (modelData.kind) {
                case "lugar-picture-cell": return pictureCell
                case "lugar-detail-cell": return detailCell
                case "lugar-call-cell": return callCell
                case "lugar-testimony-cell": return descriptionCell
                case "lugar-action-cell": return actionCell
                case "lugar-notes-cell": return notesCell
                case "lugar-buttons-cell": return buttonsCell
                case "lugar-myplaces-cell": return myPlacesCell
                case "lugar-adv-cell": return adCell
                case "lugar-opinions-cell": return opinionsCell
                default: return separatorCell
                }
            }
            onHeightChanged: if (root.controller && height > 0) root.controller.willDisplayRow(index, height)
            onLoaded: if (root.controller && height > 0) root.controller.willDisplayRow(index, height)

            Component {
                id: pictureCell
                LugarPictureCell { entry: row.modelData; controller: root.controller }
            }
            Component {
                id: separatorCell
                Item { height: 14 }
            }
            // One row of a white group: its touch feedback, and the hairline that separates it
            // from the next unless it closes the group.
            Component {
                id: detailCell
                GroupRow {
                    contentHeight: Math.max(64, details.implicitHeight + 24)
                    pressable: row.modelData.selectable === true
                    closesGroup: row.modelData.shadowInset === 0
                    spoken: row.modelData.subheader + ". " + row.modelData.text
                    onTapped: root.controller.didSelectRow(row.index)
                    Column {
                        id: details
                        anchors { left: parent.left; leftMargin: 16; right: icon.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                        spacing: 2
                        Text {
                            width: parent.width
                            text: row.modelData.subheader
                            font: Theme.font("OpenSans-Semibold", 11)
                            color: "#b2a489"
                            elide: Text.ElideRight
                        }
                        Text {
                            width: parent.width
                            text: row.modelData.text
                            font: Theme.font("OpenSans", 15)
                            color: "#3a2a22"
                            wrapMode: Text.Wrap
                        }
                    }
                    Text {
                        id: icon
                        anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                        visible: row.modelData.icon !== undefined
                        text: row.modelData.icon || ""
                        font: Theme.font("Velmora-Icons", 20)
                        color: row.modelData.iconColor || "transparent"
                    }
                }
            }
            Component {
                id: callCell
                Item {
                    id: callRow
                    height: 76
                    readonly property bool enabled: row.modelData.enabled
                    Rectangle {
                        objectName: "lugarCallButton"
                        anchors { fill: parent; leftMargin: 12; rightMargin: 12; topMargin: 12; bottomMargin: 8 }
                        radius: 8
                        color: !callRow.enabled ? "#e9e5df" : callArea.pressed ? "#6aa313" : "#79bc16"
                        Accessible.role: Accessible.Button
                        Accessible.name: row.modelData.title
                        Accessible.onPressAction: root.controller.didSelectRow(row.index)
                        Row {
                            anchors.centerIn: parent
                            spacing: 10
                            Text {
                                anchors.verticalCenter: parent.verticalCenter
                                text: row.modelData.icon
                                font: Theme.font("Velmora-Icons", 26)
                                color: callRow.enabled ? "white" : "#a9a39a"
                            }
                            Text {
                                anchors.verticalCenter: parent.verticalCenter
                                text: row.modelData.title
                                font: Theme.font("OpenSans-Semibold", 16)
                                color: callRow.enabled ? "white" : "#a9a39a"
                            }
                        }
                        MouseArea { id: callArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(row.index) }
                    }
                }
            }
            Component {
                id: descriptionCell
                Item {
                    height: description.implicitHeight + 28
                    Accessible.role: Accessible.StaticText
                    Accessible.name: description.plainText
                    RichLabel {
                        id: description
                        anchors { left: parent.left; leftMargin: 20; right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                        text: row.modelData.text
                        color: "#5e5247"
                    }
                }
            }
            Component {
                id: actionCell
                GroupRow {
                    pressable: true
                    closesGroup: row.modelData.shadowInset === 0
                    spoken: row.modelData.title + (row.modelData.count !== "" ? ", " + row.modelData.count : "")
                    onTapped: root.controller.didSelectRow(row.index)
                    Text {
                        anchors { left: parent.left; leftMargin: 16; verticalCenter: parent.verticalCenter; right: count.left; rightMargin: 8 }
                        text: row.modelData.title
                        font: Theme.font("OpenSans", 15)
                        color: "#3a2a22"
                        elide: Text.ElideRight
                    }
                    Rectangle {
                        id: count
                        anchors { right: chevron.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
                        visible: row.modelData.count !== ""
                        width: Math.max(24, countText.implicitWidth + 14); height: 22; radius: 11
                        color: "#f0ebe3"
                        Text {
                            id: countText
                            anchors.centerIn: parent
                            text: row.modelData.count
                            font: Theme.font("OpenSans-Semibold", 12)
                            color: "#8a7f72"
                        }
                    }
                    Text {
                        id: chevron
                        anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                        text: Theme.icons.cardRight
                        font: Theme.font("Velmora-Icons", 18)
                        color: "#cfc6b6"
                    }
                }
            }
            Component {
                id: notesCell
                LugarNotesCell { entry: row.modelData; controller: root.controller }
            }
            Component {
                id: buttonsCell
                Item {
                    height: 64
                    Button {
                        objectName: "lugarReserveButton"
                        anchors { fill: parent; leftMargin: 12; rightMargin: 12; topMargin: 6; bottomMargin: 6 }
                        text: row.modelData.title
                        font: Theme.font("OpenSans-Semibold", 15)
                        onClicked: root.controller.didSelectRow(row.index)
                    }
                }
            }
            Component {
                id: myPlacesCell
                Item {
                    objectName: "lugarMyPlacesRow"
                    height: 72
                    Accessible.role: Accessible.Button
                    Accessible.name: row.modelData.spoken
                    Accessible.onPressAction: root.controller.didSelectRow(row.index)
                    // Pulled past the end, the row's colour reaches down to the bottom edge.
                    Rectangle {
                        anchors { fill: parent; bottomMargin: root.controller ? root.controller.lastCellBottom : 0 }
                        color: myPlacesArea.pressed ? "#c44f39" : Theme.colors.barTintColor
                    }
                    RichLabel {
                        anchors.centerIn: parent
                        text: row.modelData.title
                        color: "white"
                    }
                    MouseArea { id: myPlacesArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(row.index) }
                }
            }
            Component {
                id: adCell
                AdRow {
                    source: row.modelData.source
                    badge: row.modelData.badge
                    onTapped: root.controller.didSelectRow(row.index)
                    onBuilt: root.controller.advertisingCellBuilt()
                }
            }
            Component {
                id: opinionsCell
                Item {
                    height: 86
                    Rectangle {
                        anchors { fill: parent; margins: 12 }
                        radius: 8
                        color: Theme.colors.barTintColor
                        RichLabel { anchors.centerIn: parent; text: row.modelData.title; color: "white" }
                    }
                }
            }
        }
    }

    // Sharing copies the place's name and address; this says so for a moment.
    Toast {
        id: toast
        objectName: "lugarSharedToast"
        text: qsTrId("lugar_shared_copied")
    }
    Connections {
        target: root.controller
        function onShared() { toast.show() }
    }
}
