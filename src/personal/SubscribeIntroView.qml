import QtQuick
import Velmora

// The invitation to the SMS notifications: the offer, "not now" and "yes, sure".
Rectangle {
    id: root
    objectName: "subscribeIntroView"
    property SubscribeIntroViewController controller
    color: Theme.colors.barTintColor

    Column {
        anchors { left: parent.left; right: parent.right; margins: 32; verticalCenter: parent.verticalCenter }
        spacing: 22
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: Theme.icons.notifications || ""
            visible: text !== ""
            color: "white"
            font: Theme.font("Velmora-Icons", 64)
            Accessible.ignored: true
        }
        Text {
            objectName: "introLabel"
            width: parent.width
            text: root.controller ? root.controller.introText : ""
            color: "white"
            font: Theme.font("OpenSans-Light", 20)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            lineHeight: 1.15
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Item { width: 1; height: 12 }
        WalkthroughButton {
            objectName: "yeahSureButton"
            width: parent.width
            filled: true
            text: root.controller ? root.controller.yesSureText : ""
            onClicked: root.controller.yeahSureTouched()
        }
        WalkthroughButton {
            objectName: "notNowButton"
            width: parent.width
            text: root.controller ? root.controller.notNowText : ""
            onClicked: root.controller.cancelButtonTouched()
        }
    }
}
