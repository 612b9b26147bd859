import QtQuick
import Velmora

// A place's pictures, full screen and paged: a shaded bar with close, the place's name and
// share; the page count when there is more than one picture.
Rectangle {
    id: root
    objectName: "galleryView"
    property GalleryViewController controller
    color: "black"

    // Left and Right turn the pictures; the gallery takes the keys as it opens.
    Keys.onLeftPressed: pager.decrementCurrentIndex()
    Keys.onRightPressed: pager.incrementCurrentIndex()
    Component.onCompleted: forceActiveFocus()

    ListView {
        id: pager
        objectName: "galleryPager"
        anchors.fill: parent
        orientation: ListView.Horizontal
        snapMode: ListView.SnapOneItem
        highlightRangeMode: ListView.StrictlyEnforceRange
        boundsBehavior: Flickable.StopAtBounds
        // The pages beside the shown one are made ahead, no more: pictures are read as needed.
        cacheBuffer: width
        interactive: !(currentItem && currentItem.zoomed)
        model: root.controller ? root.controller.pageCount : 0
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.restaurantName : ""
        onCurrentIndexChanged: if (root.controller) root.controller.currentPage = currentIndex + 1
        delegate: PictureView {
            required property int index
            width: pager.width
            height: pager.height
            pageNumber: index + 1
            controller: root.controller
        }
    }

    Rectangle {
        id: bar
        objectName: "galleryBar"
        width: parent.width
        height: 72
        opacity: root.controller && root.controller.uihidden ? 0 : 1
        visible: opacity > 0
        Behavior on opacity { NumberAnimation { duration: 400 } }
        gradient: Gradient {
            GradientStop { position: 0; color: "#a0000000" }
            GradientStop { position: 1; color: "#00000000" }
        }
        Item {
            id: close
            objectName: "galleryClose"
            x: 6; y: 6; width: 44; height: 44
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_close")
            Accessible.onPressAction: root.controller.close()
            // Drawn: two strokes make the cross at any size.
            Repeater {
                model: [45, -45]
                Rectangle {
                    required property int modelData
                    anchors.centerIn: parent
                    width: 20; height: 2; radius: 1
                    rotation: modelData
                    color: "white"
                }
            }
            MouseArea { anchors.fill: parent; onClicked: root.controller.close() }
        }
        Column {
            anchors { left: close.right; right: share.left; top: parent.top; topMargin: 10 }
            Text {
                width: parent.width
                text: root.controller ? root.controller.restaurantName : ""
                font: Theme.font("OpenSans-Bold", 18)
                fontSizeMode: Text.HorizontalFit
                minimumPixelSize: 11
                horizontalAlignment: Text.AlignHCenter
                color: "white"
                elide: Text.ElideRight
            }
            Text {
                objectName: "galleryPageIndicator"
                width: parent.width
                visible: root.controller && root.controller.pageIndicatorVisible
                text: root.controller ? root.controller.pageIndicator : ""
                font: Theme.font("OpenSans-Semibold", 12)
                horizontalAlignment: Text.AlignHCenter
                color: "#d0ffffff"
            }
        }
        Item {
            id: share
            objectName: "galleryShare"
            anchors.right: parent.right
            anchors.rightMargin: 6
            y: 6; width: 44; height: 44
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_share")
            Accessible.onPressAction: root.controller.shareButtonTouched()
            Text {
                anchors.centerIn: parent
                text: Theme.icons.share
                font: Theme.font("Velmora-Icons", 24)
                color: "white"
            }
            MouseArea { anchors.fill: parent; onClicked: root.controller.shareButtonTouched() }
        }
    }

    Toast {
        id: toast
        objectName: "gallerySharedToast"
        text: qsTrId("gallery_copied")
    }
    Connections {
        target: root.controller
        function onShared() { toast.show() }
    }
}
