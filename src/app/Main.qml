import QtQuick
import QtQuick.Controls.Basic
import Velmora

// The window shows whichever root the application object chose.
ApplicationWindow {
    id: window

    required property AppDelegate app

    width: 390
    height: 844
    visible: true
    title: "Velmora"
    color: "#f4f1ec"
    font.family: "Open Sans"

    // Where there is no accelerometer to shake, Ctrl+Shift+F asks for a fortune.
    Shortcut {
        sequence: "Ctrl+Shift+F"
        context: Qt.ApplicationShortcut
        onActivated: window.app.shaken()
    }

    Loader {
        anchors.fill: parent
        sourceComponent: window.app.root === "main" ? mainRoot : window.app.root === "walkthrough" ? walkthroughRoot : subscribeRoot
    }

    Component {
        id: walkthroughRoot
        WalkthroughView { controller: window.app.walkthrough }
    }

    Component {
        id: mainRoot
        SideDrawerView { drawer: window.app.drawer }
    }

    Component {
        id: subscribeRoot
        NavigationView { navigation: window.app.subscribeNavigation }
    }
}
