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
            heading: window.app.root === "subscribe-intro" ? qsTrId("root_subscribe_heading") : qsTrId("root_welcome_heading")
            message: window.app.root === "subscribe-intro" ? qsTrId("root_subscribe_message")
                                                           : qsTrId("root_welcome_message").arg(window.app.documentsPath)
            actionText: window.app.root === "subscribe-intro" ? qsTrId("root_subscribe_not_now") : ""
            onActionTriggered: window.app.provinceSelectionDidCancel()
        }
    }
}
