import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Dialogs
import Velmora
import Velmora.RichText

// Copying in a file: four instructions, a watch that ticks once the file is found, and the
// desktop's ways in (the dialog, or a drop anywhere on the window).
Item {
    id: root
    required property WTiTunesViewController controller
    // Everything stacked with its gaps: what a short window scrolls through.
    implicitHeight: card.height + 18 + actions.height + 14 + bottomButton.height

    Rectangle {
        id: card
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: steps.height + 40
        radius: 10
        color: "white"
        Column {
            id: steps
            anchors { left: parent.left; right: parent.right; top: parent.top; margins: 20 }
            spacing: 14
            Repeater {
                model: root.controller.steps
                Row {
                    required property var modelData
                    required property int index
                    spacing: 12
                    width: steps.width
                    Rectangle {
                        width: 26; height: 26; radius: 13
                        color: "#d95b43"
                        Text { anchors.centerIn: parent; text: index + 1; color: "white"; font: Theme.font("OpenSans-Semibold", 13) }
                    }
                    RichLabel {
                        objectName: "step" + (index + 1)
                        width: steps.width - 38
                        text: modelData
                    }
                }
            }
        }
    }

    Column {
        id: actions
        anchors { left: parent.left; right: parent.right; top: card.bottom; topMargin: 18 }
        spacing: 14

        WalkthroughButton {
            objectName: "openCatalogueButton"
            width: parent.width
            visible: !root.controller.ready
            enabled: !root.controller.importing
            text: qsTrId("wt_open_catalogue")
            onClicked: if (root.controller.openFileChooser()) fileDialog.open()
        }
        Item {
            width: parent.width
            height: 56
            BusyIndicator {
                objectName: "activityIndicator"
                anchors.centerIn: parent
                running: !root.controller.ready
                visible: running
                palette.dark: "white"
            }
            Text {
                objectName: "checkmark"
                anchors.centerIn: parent
                visible: root.controller.ready
                text: Theme.icons.checkOn
                color: "white"
                font: Theme.font("Velmora-Icons", 48)
                Accessible.role: Accessible.StaticText
                Accessible.name: qsTrId("wt_catalogue_found")
            }
        }
        Text {
            objectName: "importMessage"
            width: parent.width
            visible: text.length > 0
            text: root.controller.ready ? qsTrId("wt_catalogue_found") : root.controller.message
            color: "white"
            font: Theme.font("OpenSans", 15)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
    }

    WalkthroughButton {
        id: bottomButton
        objectName: root.controller.ready ? "startButton" : "cancelButton"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        filled: root.controller.ready
        text: root.controller.ready ? qsTrId("wt_start") : qsTrId("itunes_cancel")
        onClicked: root.controller.ready ? root.controller.startButtonTouched() : root.controller.cancelTouched()
    }

    readonly property bool chooserOpen: fileDialog.visible
    FileDialog {
        id: fileDialog
        title: qsTrId("wt_open_catalogue")
        nameFilters: [qsTrId("wt_catalogue_files") + " (*.vmr *.db)"]
        onAccepted: root.controller.importCatalogue(selectedFile)
    }
}
