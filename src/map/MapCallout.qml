import QtQuick
import Velmora
import Velmora.RichText

// The one callout of the map: the place's picture, its name and address, and a button that
// opens its card. Its arrow points at the map's callout point.
Item {
    id: callout
    required property MapView map
    readonly property MapCalloutView content: map ? map.calloutView : null
    objectName: "mapCallout"
    width: map ? map.calloutSize.width : 0
    height: map ? map.calloutSize.height : 0
    x: map ? Math.round(map.calloutPoint.x - width / 2) : 0
    y: map ? Math.round(map.calloutPoint.y - height) : 0
    visible: map !== null && map.calloutVisible

    // A tap on the callout's body is the callout's, not the map's below it.
    MouseArea { anchors.fill: body }

    Rectangle {
        id: body
        width: parent.width
        height: 45
        radius: 6
        color: "white"
        border.color: "#d8d0c2"
        Image {
            objectName: "mapCalloutImage"
            x: 7
            y: 2.5
            width: 40
            height: 40
            fillMode: Image.PreserveAspectCrop
            clip: true
            asynchronous: true
            source: callout.content ? callout.content.leftImage : ""
            Accessible.ignored: true
        }
        RichLabel {
            objectName: "mapCalloutTitle"
            Accessible.role: Accessible.StaticText
            Accessible.name: callout.content ? callout.content.spokenTitle : ""
            x: 55
            y: 3
            width: parent.width - x - rightButton.width
            maximumLineCount: 1
            text: callout.content ? callout.content.title : undefined
        }
        RichLabel {
            objectName: "mapCalloutSubtitle"
            x: 55
            y: 25
            width: parent.width - x - rightButton.width
            maximumLineCount: 1
            text: callout.content ? callout.content.subtitle : undefined
        }
        Item {
            id: rightButton
            objectName: "mapCalloutButton"
            anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
            width: 44
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_map_open_card")
            Accessible.onPressAction: callout.content.tapRightButton()
            RichLabel {
                anchors.centerIn: parent
                text: callout.content ? callout.content.rightButtonTitle : undefined
                opacity: buttonArea.pressed ? 0.5 : 1
            }
            MouseArea {
                id: buttonArea
                anchors.fill: parent
                onClicked: callout.content.tapRightButton()
            }
        }
    }
    Canvas {
        id: arrow
        anchors { top: body.bottom; topMargin: -1; horizontalCenter: parent.horizontalCenter }
        width: 18
        height: 9
        onPaint: {
            const context = getContext("2d")
            context.fillStyle = "white"
            context.beginPath()
            context.moveTo(0, 0)
            context.lineTo(width / 2, height)
            context.lineTo(width, 0)
            context.closePath()
            context.fill()
        }
    }
}
