import QtQuick
import Velmora

// An advertisement as the card and the more-info screen show it: the picture across the row,
// as tall as its proportions ask, with its badge; nothing at all if the picture can't be read.
Item {
    id: adRow
    required property string source
    required property string badge
    signal tapped()
    signal built()
    Component.onCompleted: built()

    height: picture.status === Image.Ready ? picture.paintedHeight + 24 : 0
    visible: height > 0
    Accessible.role: Accessible.Button
    Accessible.name: badge
    Accessible.onPressAction: adRow.tapped()
    Image {
        id: picture
        objectName: "adPicture"
        anchors { left: parent.left; right: parent.right; margins: 12; verticalCenter: parent.verticalCenter }
        source: adRow.source
        sourceSize.width: 2 * width
        fillMode: Image.PreserveAspectFit
        asynchronous: true
    }
    Rectangle {
        anchors { right: picture.right; top: picture.top; margins: 6 }
        width: badgeText.implicitWidth + 12; height: 18; radius: 4
        color: "#99000000"
        Text { id: badgeText; anchors.centerIn: parent; text: adRow.badge; font: Theme.font("OpenSans-Semibold", 10); color: "white" }
    }
    MouseArea { anchors.fill: picture; onClicked: adRow.tapped() }
}
