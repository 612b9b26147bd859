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

    // Escape closes what is on top or goes back, as a phone's back gesture does. Only over the
    // main interface: the first run's file chooser takes its own Escape.
    Shortcut {
        sequence: StandardKey.Cancel
        context: Qt.ApplicationShortcut
        enabled: window.app.root === "main"
        onActivated: window.app.escapePressed()
    }

    // Ctrl+F, or "/" where no text field takes it, goes to search from anywhere.
    Shortcut {
        sequences: [StandardKey.Find, "/"]
        context: Qt.ApplicationShortcut
        enabled: window.app.root === "main"
        onActivated: window.app.findPressed()
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
