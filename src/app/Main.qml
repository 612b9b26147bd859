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

    Loader {
        anchors.fill: parent
        sourceComponent: window.app.root === "main" ? mainRoot : placeholderRoot
    }

    Component {
        id: mainRoot
        SideDrawerView { drawer: window.app.drawer }
    }

    Component {
        id: placeholderRoot
        PlaceholderScreen {
            heading: window.app.root === "subscribe-intro" ? "Stay in the know" : "Welcome to Velmora"
            message: window.app.root === "subscribe-intro"
                     ? "Get a text message when new places open in your provinces."
                     : "Velmora needs its restaurant catalogue before you can browse.\n\nCopy a catalogue file (a .vmr file, or velmora-YYYYMMDD.db) into:\n\n"
                       + window.app.documentsPath + "\n\nIt opens by itself as soon as it is there."
            actionText: window.app.root === "subscribe-intro" ? "Not now" : ""
            onActionTriggered: window.app.provinceSelectionDidCancel()
        }
    }
}
