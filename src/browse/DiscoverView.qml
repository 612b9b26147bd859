import QtQuick
import Velmora
import Velmora.RichText

// The discover feed: each promoted place as a full-width picture with its name, first cuisine
// and address over a dark shade, and ads between them. The pictures travel together with the
// feed's scroll position.
Rectangle {
    id: root
    objectName: "discoverView"
    property DescubreTableViewController controller
    color: "#2b0b05"

    ListView {
        id: feed
        objectName: "discoverFeed"
        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: root.controller ? root.controller.rows : []
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("search_discover")
        readonly property real travel: root.controller ? root.controller.parallax(contentY - originY, height, contentHeight) : -0.5

        delegate: Item {
            id: row
            required property int index
            required property var modelData
            readonly property bool promo: modelData.kind === "promo"
            objectName: (promo ? "promoRow-" : "adRow-") + index
            width: feed.width
            height: promo ? width * 150 / 320 : width * 154 / 324
            clip: true
            Accessible.role: Accessible.Button
            Accessible.name: promo ? modelData.spoken : modelData.badge
            Accessible.onPressAction: root.controller.didSelectRow(row.index)

            Rectangle { anchors.fill: parent; color: "#3a1a12" }
            // An ad is shown whole, its full width, whatever its shape: its own picture, dimmed
            // and filling the card, takes the room it leaves above and below.
            Image {
                visible: !row.promo
                anchors.fill: parent
                source: row.promo ? "" : row.modelData.picture
                sourceSize.width: parent.width * 2
                fillMode: Image.PreserveAspectCrop
                opacity: 0.35
                asynchronous: true
            }
            Image {
                id: picture
                objectName: row.promo ? "promoPicture" : "adPicture"
                width: parent.width
                // A promo's is taller than the card by a fifth, so it has room to travel.
                height: row.promo ? parent.height * 1.2 : parent.height
                y: row.promo ? (feed.travel - 0.5) * (height - parent.height) : 0
                source: row.modelData.picture
                sourceSize.width: parent.width * 2
                fillMode: row.promo ? Image.PreserveAspectCrop : Image.PreserveAspectFit
                asynchronous: true
            }
            // The shade under the title: black from clear to half, top to bottom.
            GradientView {
                visible: row.promo
                anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
                height: parent.height * 0.6
                colors: ["#00000000", "#80000000"]
            }
            Column {
                visible: row.promo
                anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: 12 }
                spacing: 2
                Text {
                    width: parent.width
                    text: row.modelData.name || ""
                    font: Theme.font("OpenSans-Bold", 18)
                    color: "white"
                    elide: Text.ElideRight
                }
                RichLabel {
                    width: parent.width
                    text: row.promo ? row.modelData.subtitle : undefined
                    color: "white"
                    maximumLineCount: 1
                }
            }
            Rectangle {
                anchors { left: parent.left; top: parent.top; margins: 10 }
                width: badge.implicitWidth + 12
                height: badge.implicitHeight + 4
                radius: 4
                color: Theme.colors.barTintColor
                Text {
                    id: badge
                    anchors.centerIn: parent
                    text: row.modelData.badge
                    font: Theme.font("OpenSans-Semibold", 10)
                    color: "white"
                }
            }
            MouseArea { anchors.fill: parent; onClicked: root.controller.didSelectRow(row.index) }
            Component.onCompleted: root.controller.rowConfigured(row.index)
        }
    }
}
