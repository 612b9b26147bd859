import QtQuick
import Velmora

// Download the catalogue, or copy in a file.
Item {
    id: root
    required property WTSelectViewController controller
    implicitHeight: choices.height

    Column {
        id: choices
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        spacing: 22

        Text {
            objectName: "captionLabel"
            width: parent.width
            text: qsTrId("wt_help_us_find_the_database")
            color: "white"
            font: Theme.font("OpenSans-Light", 20)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            lineHeight: 1.15
        }
        Item { width: 1; height: 12 }
        WalkthroughButton {
            objectName: "downloadButton"
            width: parent.width
            filled: true
            text: qsTrId("wt_action_download")
            onClicked: root.controller.downloadButtonTouched()
        }
        WalkthroughButton {
            objectName: "itunesButton"
            width: parent.width
            text: qsTrId("wt_action_copy_with_itunes")
            onClicked: root.controller.iTunesButtonTouched()
        }
    }
}
