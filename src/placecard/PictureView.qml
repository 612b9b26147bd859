import QtQuick
import QtQuick.Window
import Velmora

// One page of the gallery: the picture fitted to the view, zoomed with two fingers, a double
// tap or the wheel, its caption below. A tap shows or hides the bars and captions.
Item {
    id: page
    required property int pageNumber
    required property GalleryViewController controller
    objectName: "galleryPage-" + pageNumber
    clip: true

    readonly property size pictureSize: Qt.size(picture.implicitWidth, picture.implicitHeight)
    readonly property var limits: controller.zoomFor(Qt.size(width, height), pictureSize)
    readonly property var insets: controller.insetsFor(zoom, Qt.size(width, height), pictureSize)
    property real zoom: 1
    readonly property bool zoomed: picture.status === Image.Ready && zoom > limits.minimum + 0.001

    // Zooms to `target`, keeping the picture's point under `at` there, or bringing it to the
    // middle when `centre` is set.
    function zoomTo(target, at, centre) {
        const z = Math.max(limits.minimum, Math.min(limits.maximum, target))
        const px = (flick.contentX + at.x) / zoom
        const py = (flick.contentY + at.y) / zoom
        zoom = z
        flick.contentWidth = pictureSize.width * z
        flick.contentHeight = pictureSize.height * z
        flick.contentX = px * z - (centre ? width / 2 : at.x)
        flick.contentY = py * z - (centre ? height / 2 : at.y)
        flick.returnToBounds()
    }
    // The fit for this size: after the picture arrives and whenever the window turns.
    function adjustToSize() {
        if (picture.status !== Image.Ready)
            return
        const view = Qt.size(width, height)
        zoom = controller.zoomFor(view, pictureSize).minimum
        flick.contentWidth = pictureSize.width * zoom
        flick.contentHeight = pictureSize.height * zoom
        const margins = controller.insetsFor(zoom, view, pictureSize)
        flick.contentX = -margins.x
        flick.contentY = -margins.y
    }
    // A single tap waits until it can't be the first of a double one; a double tap zooms in
    // around the spot, or back to the fit.
    function tapped(count, at) {
        if (count === 1) {
            singleTapDelay.restart()
            return
        }
        singleTapDelay.stop()
        const target = controller.doubleTapZoom(zoom, Qt.size(width, height), pictureSize)
        zoomTo(target, at, target > zoom)
    }
    // Once both sides have changed: a turn of the window changes them one after the other.
    onWidthChanged: Qt.callLater(adjustToSize)
    onHeightChanged: Qt.callLater(adjustToSize)

    Flickable {
        id: flick
        objectName: "galleryZoom"
        anchors.fill: parent
        interactive: page.zoomed
        boundsBehavior: Flickable.StopAtBounds
        leftMargin: page.insets.x
        rightMargin: page.insets.x
        topMargin: page.insets.y
        bottomMargin: page.insets.y
        Image {
            id: picture
            objectName: "galleryPicture"
            width: flick.contentWidth
            height: flick.contentHeight
            source: page.controller.sourceForPage(page.pageNumber)
            // Decoded no larger than twice the window's long side: enough to zoom into, and a
            // large photograph doesn't become a huge texture.
            sourceSize.width: 2 * Math.max(Screen.width, Screen.height)
            asynchronous: true
            smooth: true
            onStatusChanged: page.adjustToSize()
        }
        // Taps while zoomed: heard by the flickable itself, so the margins around the picture
        // take them as the picture does (the flickable grabs the press for its drags).
        TapHandler {
            parent: flick
            enabled: page.zoomed
            onTapped: (eventPoint) => page.tapped(tapCount, flick.mapToItem(page, eventPoint.position))
        }
    }

    // A picture that can't be read: the stand-in, and the pager goes on.
    Text {
        objectName: "galleryPlaceholder"
        anchors.centerIn: parent
        visible: picture.status === Image.Error || (picture.status === Image.Ready && picture.implicitWidth === 0)
        text: Theme.icons.camera
        font: Theme.font("Velmora-Icons", 64)
        color: "#5c554c"
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTrId("a11y_picture_unreadable")
    }

    PinchArea {
        anchors.fill: parent
        property real startZoom: 1
        onPinchStarted: startZoom = page.zoom
        onPinchUpdated: (pinch) => page.zoomTo(startZoom * pinch.scale, pinch.center, false)
        MouseArea {
            anchors.fill: parent
            // Taps pass to the handlers below; drags belong to the zoomed picture or the pager.
            acceptedButtons: Qt.NoButton
            onWheel: (wheel) => page.zoomTo(page.zoom * Math.pow(1.0015, wheel.angleDelta.y), Qt.point(wheel.x, wheel.y), false)
        }
    }
    // Taps: while the picture is zoomed the flickable takes the press, so its content's handler
    // hears them; otherwise this one does.
    TapHandler {
        enabled: !page.zoomed
        onTapped: (eventPoint) => page.tapped(tapCount, eventPoint.position)
    }
    Timer {
        id: singleTapDelay
        interval: Qt.styleHints.mouseDoubleClickInterval
        onTriggered: page.controller.singleTap()
    }

    // The caption over a shade, hidden with the bars.
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: caption.implicitHeight + 48
        opacity: page.controller.uihidden ? 0 : 1
        visible: caption.text !== "" && opacity > 0
        Behavior on opacity { NumberAnimation { duration: 400 } }
        gradient: Gradient {
            GradientStop { position: 0; color: "#00000000" }
            GradientStop { position: 1; color: "#b0000000" }
        }
        Text {
            id: caption
            objectName: "galleryCaption"
            anchors { left: parent.left; leftMargin: 20; right: parent.right; rightMargin: 20; bottom: parent.bottom; bottomMargin: 18 }
            text: page.controller.textForPage(page.pageNumber)
            font: Theme.font("OpenSans", 15)
            color: "white"
            wrapMode: Text.Wrap
        }
    }
}
