import QtQuick
import QtQuick.Controls.Basic

// A full-screen message with an optional button, for roots that aren't built yet.
Rectangle {
    id: screen
    objectName: "placeholderScreen"

    property string heading
    property string message
    property string actionText
    signal actionTriggered()

    color: "#d95b43"

    Column {
        anchors.centerIn: parent
        width: parent.width - 64
        spacing: 20

        Text {
            width: parent.width
            text: screen.heading
            color: "white"
            font.pixelSize: 30
            font.weight: Font.Light
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Text {
            width: parent.width
            text: screen.message
            color: "#fbe9e4"
            font.pixelSize: 16
            lineHeight: 1.25
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Button {
            visible: screen.actionText.length > 0
            anchors.horizontalCenter: parent.horizontalCenter
            text: screen.actionText
            onClicked: screen.actionTriggered()
        }
    }
}
