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
    // A phone held sideways: the title comes smaller and closer to the top, and the steps scroll.
    readonly property bool compact: height < 560

    Text {
        id: splash
        objectName: "walkthroughSplash"
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.controller.firstTime ? root.height / 2 - height / 2 : root.compact ? 10 : root.height * 0.12
        Behavior on y { enabled: root.animated; SequentialAnimation { PauseAnimation { duration: 500 } NumberAnimation { duration: 800; easing.type: Easing.InOutQuad } } }
        text: "Velmora"
        color: "white"
        font: Theme.font("OpenSans-Light", root.compact ? 30 : 44)
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    // The steps, no wider than a phone held upright; taller than the window, they scroll.
    Flickable {
        id: container
        objectName: "walkthroughContainer"
        anchors {
            left: parent.left; right: parent.right; bottom: parent.bottom; top: splash.bottom
            leftMargin: Math.max(28, (root.width - 520) / 2); rightMargin: anchors.leftMargin
            bottomMargin: root.compact ? 12 : 28; topMargin: root.compact ? 12 : 36
        }
        opacity: root.controller.firstTime ? 0 : 1
        Behavior on opacity { enabled: root.animated; SequentialAnimation { PauseAnimation { duration: 1500 } NumberAnimation { duration: 800 } } }
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        contentWidth: width
        contentHeight: Math.max(height, selectStep.visible ? selectStep.implicitHeight : copyStep.visible ? copyStep.implicitHeight
                                                                                                   : downloadStep.implicitHeight)

        WTSelectView { id: selectStep; width: container.width; height: container.contentHeight; visible: root.controller.step === "select"; controller: root.controller.selectVC }
        WTiTunesView { id: copyStep; width: container.width; height: container.contentHeight; visible: root.controller.step === "itunes"; controller: root.controller.itunesVC }
        WTDownloadView { id: downloadStep; width: container.width; height: container.contentHeight; visible: root.controller.step === "download"; controller: root.controller.downloadVC }
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
