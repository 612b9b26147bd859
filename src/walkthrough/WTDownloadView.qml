import QtQuick
import Velmora

// The download: a bar and its figures, then the check mark and start; or the failure, with a
// way to try again.
Item {
    id: root
    required property WTDownloadViewController controller
    implicitHeight: progress.height + 24 + actions.height

    Column {
        id: progress
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        spacing: 18

        Text {
            objectName: "captionLabel"
            width: parent.width
            text: root.controller.caption
            color: "white"
            font: Theme.font("OpenSans-Light", 20)
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        DownloadProgressView {
            objectName: "progressView"
            width: parent.width
            visible: !root.controller.finished
            progress: root.controller.progress
            tint: "white"
        }
        Text {
            objectName: "downloadLabel"
            width: parent.width
            visible: !root.controller.finished
            text: root.controller.downloadLabel
            color: "white"
            font: Theme.font("OpenSans", 14)
            horizontalAlignment: root.controller.failed ? Text.AlignHCenter : Text.AlignRight
            wrapMode: Text.Wrap
        }
        Text {
            objectName: "checkmark"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.controller.finished
            text: Theme.icons.checkOn
            color: "white"
            font: Theme.font("Velmora-Icons", 48)
            Accessible.role: Accessible.StaticText
            Accessible.name: qsTrId("wt_catalogue_found")
        }
    }

    Column {
        id: actions
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        spacing: 14
        WalkthroughButton {
            objectName: "retryButton"
            width: parent.width
            visible: root.controller.failed
            text: qsTrId("wt_retry")
            onClicked: root.controller.retryTouched()
        }
        WalkthroughButton {
            objectName: root.controller.finished ? "startButton" : "cancelButton"
            width: parent.width
            filled: root.controller.finished
            text: root.controller.finished ? qsTrId("wt_start") : qsTrId("download_cancel")
            onClicked: root.controller.finished ? root.controller.startButtonTouched() : root.controller.cancelTouched()
        }
    }
}
