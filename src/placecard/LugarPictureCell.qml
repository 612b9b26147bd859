import QtQuick
import Velmora
import Velmora.RichText

// The card's first row: the place's first gallery picture with its count, or its profile
// picture, sharp, over a blurred copy that fades in once made. Pulled down, the picture grows
// upwards with the pull instead of leaving a gap.
Item {
    id: cell
    objectName: "lugarPictureCell"
    required property var entry
    required property LugarTableViewController controller
    height: entry.height
    clip: false

    readonly property bool gallery: entry.source !== undefined
    // The card may go while its page still slides away: no controller, no pull.
    readonly property real imageTop: controller ? controller.galleryImageTop : 0
    readonly property real profileY: controller ? controller.profilePicY : 0
    readonly property real pull: -imageTop

    Rectangle {
        id: stage
        y: cell.imageTop
        width: parent.width
        height: cell.height + cell.pull
        color: "#d9cfc0"
        clip: true

        // A picture that can't be read leaves the stage's warm colour and a camera.
        Text {
            anchors.centerIn: parent
            visible: cell.gallery && galleryPicture.status !== Image.Ready
            text: Theme.icons.camera
            font: Theme.font("Velmora-Icons", 44)
            color: "#f4efe7"
            Accessible.ignored: true
        }
        Image {
            id: galleryPicture
            objectName: "lugarGalleryPicture"
            visible: cell.gallery
            anchors.fill: parent
            source: cell.gallery ? cell.entry.source : ""
            sourceSize.width: 780
            fillMode: Image.PreserveAspectCrop
            asynchronous: true
        }
        Image {
            id: blurred
            objectName: "lugarBlurredPicture"
            visible: !cell.gallery
            anchors.fill: parent
            source: cell.gallery ? "" : cell.entry.blur
            fillMode: Image.PreserveAspectCrop
            asynchronous: true
            opacity: status === Image.Ready ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 400 } }
        }
        // Keeps the white texts over any picture readable.
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 70
            gradient: Gradient {
                GradientStop { position: 0; color: "#00000000" }
                GradientStop { position: 1; color: "#66000000" }
            }
        }
        Rectangle {
            anchors.top: parent.top
            width: parent.width
            height: 90
            gradient: Gradient {
                GradientStop { position: 0; color: "#55000000" }
                GradientStop { position: 1; color: "#00000000" }
            }
        }
        Rectangle {
            objectName: "lugarProfilePicture"
            visible: !cell.gallery
            anchors.horizontalCenter: parent.horizontalCenter
            // Below the bar, and following the pull as the controller says.
            y: 56 + (cell.height - 56 - height) / 2 + cell.profileY
            width: 132; height: 132; radius: 10
            color: "white"
            Image {
                anchors { fill: parent; margins: 4 }
                source: cell.gallery ? "" : cell.entry.profile
                fillMode: Image.PreserveAspectCrop
                asynchronous: true
            }
        }
    }

    RichLabel {
        objectName: "lugarPictureCount"
        visible: cell.gallery
        anchors { right: parent.right; rightMargin: 14; bottom: parent.bottom; bottomMargin: 10 }
        text: cell.gallery ? cell.entry.count : ""
        color: "white"
    }

    Accessible.role: cell.gallery ? Accessible.Button : Accessible.Graphic
    Accessible.name: cell.gallery ? qsTrId("lugar_gallery") : qsTrId("a11y_place_picture")
    Accessible.onPressAction: cell.controller.imageTapped()
    // A tap, or a swipe to the left, opens the pictures; a swipe to the right goes back.
    MouseArea {
        anchors.fill: parent
        property point start
        onPressed: (mouse) => start = Qt.point(mouse.x, mouse.y)
        onReleased: (mouse) => {
            const dx = mouse.x - start.x, dy = mouse.y - start.y
            if (Math.abs(dx) < 10 && Math.abs(dy) < 10)
                cell.controller.imageTapped()
            else if (dx < -40 && Math.abs(dy) < Math.abs(dx))
                cell.controller.imageSwipedLeft()
            else if (dx > 40 && Math.abs(dy) < Math.abs(dx))
                cell.controller.dismiss()
        }
    }
}
