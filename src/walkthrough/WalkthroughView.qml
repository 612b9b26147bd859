import QtQuick
import QtQuick.Controls.Basic
import Velmora

// The first run: the splash rises, then one step at a time. A catalogue file dropped anywhere
// on the window goes to the copy step.
Rectangle {
    id: root
    objectName: "walkthrough"
    required property WTPage1ViewController controller

    color: "#d95b43"
    // The opening animation starts from the laid-out window, not from its first, empty size.
    property bool animated: false

    Text {
        id: splash
        objectName: "walkthroughSplash"
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.controller.firstTime ? root.height / 2 - height / 2 : root.height * 0.12
        Behavior on y { enabled: root.animated; SequentialAnimation { PauseAnimation { duration: 500 } NumberAnimation { duration: 800; easing.type: Easing.InOutQuad } } }
        text: "Velmora"
        color: "white"
        font: Theme.font("OpenSans-Light", 44)
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    Item {
        id: container
        objectName: "walkthroughContainer"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; top: splash.bottom; margins: 28; topMargin: 36 }
        opacity: root.controller.firstTime ? 0 : 1
        Behavior on opacity { enabled: root.animated; SequentialAnimation { PauseAnimation { duration: 1500 } NumberAnimation { duration: 800 } } }

        WTSelectView { anchors.fill: parent; visible: root.controller.step === "select"; controller: root.controller.selectVC }
        WTiTunesView { id: copyStep; anchors.fill: parent; visible: root.controller.step === "itunes"; controller: root.controller.itunesVC }
        WTDownloadView { anchors.fill: parent; visible: root.controller.step === "download"; controller: root.controller.downloadVC }
    }

    // Escape goes back from the copy step to the choice, as its Cancel does, unless the file
    // chooser is open: that takes its own Escape.
    Shortcut {
        sequence: StandardKey.Cancel
        enabled: root.controller.step === "itunes" && !copyStep.chooserOpen
        onActivated: root.controller.itunesVC.cancelTouched()
    }

    DropArea {
        objectName: "catalogueDropArea"
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: drop => {
            if (!drop.hasUrls || root.controller.step === "download")
                return
            root.controller.selectVC.iTunesButtonTouched()
            root.controller.itunesVC.importCatalogue(drop.urls[0])
            drop.acceptProposedAction()
        }
    }

    Component.onCompleted: Qt.callLater(() => {
        root.animated = true
        root.controller.viewDidAppear()
    })
}
