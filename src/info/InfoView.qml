import QtQuick
import Velmora
import Velmora.RichText

// The info screen: a table of rows drawn by reuse identifier.
Rectangle {
    id: root
    objectName: "infoView"
    property InfoTableViewController controller
    color: "#f4f1ec"

    Flickable {
        anchors.fill: parent
        Accessible.role: Accessible.List
        Accessible.name: root.controller ? root.controller.title : ""
        contentHeight: rows.height + 24
        clip: true
        Column {
            id: rows
            width: parent.width
            Repeater {
                model: root.controller ? root.controller.cells : []
                Loader {
                    required property string modelData
                    required property int index
                    width: rows.width
                    sourceComponent: ({
                        "info-version-header": header,
                        "info-contact-header": header,
                        "info-update-cell": updateRow,
                        "info-progress-cell": progressRow,
                        "info-separator-cell": separatorRow,
                        "info-social-cell": socialRow
                    })[modelData] || plainRow
                    property string kind: modelData
                    property int row: index
                }
            }
        }
    }

    Component {
        id: header
        Item {
            height: 48
            Text {
                anchors { left: parent.left; leftMargin: 18; bottom: parent.bottom; bottomMargin: 8 }
                text: parent.parent.kind === "info-version-header" ? qsTrId("info_header_version") : qsTrId("info_header_contact")
                color: "#8a7a70"
                font: Theme.font("OpenSans-Semibold", 13)
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
        }
    }

    Component {
        id: updateRow
        Rectangle {
            objectName: "infoUpdateRow"
            height: Math.max(92, versions.height + 28)
            color: updateArea.pressed ? "#efe9e2" : "white"
            // A tap on the versions asks the server again.
            Accessible.role: Accessible.Button
            Accessible.name: root.controller.appVersion + ", " + root.controller.databaseVersion
                             + (root.controller.updateWarning ? ", " + root.controller.updateWarning : "")
            Accessible.onPressAction: root.controller.didSelectRow(1)
            MouseArea { id: updateArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(1) }
            Column {
                id: versions
                anchors { left: parent.left; leftMargin: 18; right: action.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                spacing: 4
                Text { text: root.controller.appVersion; color: "#3a2a22"; font: Theme.font("OpenSans-Semibold", 15) }
                Text {
                    objectName: "databaseVersionLabel"
                    width: parent.width
                    text: root.controller.databaseVersion
                    color: "#5a4a42"
                    font: Theme.font("OpenSans-Light", 14)
                    wrapMode: Text.Wrap
                }
                Text {
                    objectName: "updateWarningLabel"
                    visible: text !== ""
                    width: parent.width
                    text: root.controller.updateWarning
                    color: "#b3261e"
                    font: Theme.font("OpenSans-Semibold", 13)
                    wrapMode: Text.Wrap
                }
            }
            Item {
                id: action
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                width: root.controller.offer ? updateButton.width : 36
                height: 40
                Rectangle {
                    id: updateButton
                    objectName: "updateButton"
                    visible: root.controller.offer
                    anchors.right: parent.right
                    width: updateLabel.implicitWidth + 28
                    height: 36
                    radius: 18
                    color: buttonArea.pressed ? Qt.darker(Theme.colors.barTintColor, 1.15) : Theme.colors.barTintColor
                    Accessible.role: Accessible.Button
                    Accessible.name: updateLabel.text
                    Accessible.onPressAction: root.controller.updateButtonTouched()
                    Text {
                        id: updateLabel
                        anchors.centerIn: parent
                        text: qsTrId("info_update_db")
                        color: "white"
                        font: Theme.font("OpenSans-Semibold", 14)
                    }
                    MouseArea { id: buttonArea; anchors.fill: parent; onClicked: root.controller.updateButtonTouched() }
                }
                Text {
                    objectName: "upToDateMark"
                    visible: !root.controller.offer
                    anchors.centerIn: parent
                    text: Theme.icons.checkOn
                    color: Theme.colors.barTintColor
                    font: Theme.font("Velmora-Icons", 26)
                    Accessible.role: Accessible.StaticText
                    Accessible.name: qsTrId("info_db_up_to_date")
                }
            }
        }
    }

    Component {
        id: progressRow
        Rectangle {
            objectName: "infoProgressRow"
            readonly property ProgressCell cell: root.controller.progressCell
            height: 104
            color: "white"
            Text {
                objectName: "progressTitle"
                anchors { left: parent.left; leftMargin: 18; top: parent.top; topMargin: 14; right: cancel.left; rightMargin: 10 }
                text: parent.cell.title
                color: "#3a2a22"
                font: Theme.font("OpenSans-Semibold", 15)
                elide: Text.ElideRight
            }
            DownloadProgressView {
                objectName: "progressView"
                anchors { left: parent.left; leftMargin: 18; right: cancel.left; rightMargin: 10; top: parent.top; topMargin: 48 }
                progress: parent.cell.progress
            }
            RichLabel {
                objectName: "progressStatus"
                anchors { left: parent.left; leftMargin: 18; right: cancel.left; rightMargin: 10; top: parent.top; topMargin: 62 }
                text: parent.cell.status
                Accessible.role: Accessible.StaticText
                Accessible.name: parent.cell.statusText
            }
            Rectangle {
                id: cancel
                objectName: "cancelUpdateButton"
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                width: cancelLabel.implicitWidth + 24
                height: 34
                radius: 17
                color: "transparent"
                border { color: Theme.colors.barTintColor; width: 1 }
                enabled: parent.cell.cancelEnabled
                opacity: enabled ? 1 : 0.75
                Accessible.role: Accessible.Button
                Accessible.name: cancelLabel.text
                Accessible.onPressAction: parent.cell.cancelButtonTouched()
                Text {
                    id: cancelLabel
                    anchors.centerIn: parent
                    text: qsTrId("info_cancel_update")
                    color: Theme.colors.barTintColor
                    font: Theme.font("OpenSans-Semibold", 13)
                }
                MouseArea { anchors.fill: parent; onClicked: cancel.parent.cell.cancelButtonTouched() }
            }
        }
    }

    Component {
        id: separatorRow
        Item { height: 18 }
    }

    Component {
        id: socialRow
        Rectangle {
            height: 96
            color: "white"
            Text {
                anchors { left: parent.left; leftMargin: 18; top: parent.top; topMargin: 12 }
                text: qsTrId("info_subheader_social_networks")
                color: "#3a2a22"
                font: Theme.font("OpenSans", 15)
            }
            Row {
                anchors { left: parent.left; leftMargin: 18; bottom: parent.bottom; bottomMargin: 14 }
                spacing: 10
                Repeater {
                    model: [["facebook", "info_social_facebook"], ["twitter", "info_social_twitter"], ["googleplus", "info_social_googleplus"]]
                    Rectangle {
                        required property var modelData
                        objectName: "social-" + modelData[0]
                        width: networkLabel.implicitWidth + 24
                        height: 34
                        radius: 17
                        color: socialArea.pressed ? "#efe9e2" : "#f4f1ec"
                        Accessible.role: Accessible.Button
                        Accessible.name: networkLabel.text
                        Accessible.onPressAction: root.controller.socialButtonTouched(modelData[0])
                        Text {
                            id: networkLabel
                            anchors.centerIn: parent
                            text: qsTrId(parent.modelData[1])
                            color: "#3a2a22"
                            font: Theme.font("OpenSans-Semibold", 13)
                        }
                        MouseArea { id: socialArea; anchors.fill: parent; onClicked: root.controller.socialButtonTouched(parent.modelData[0]) }
                    }
                }
            }
        }
    }

    Component {
        id: plainRow
        Rectangle {
            objectName: parent ? parent.kind : ""
            readonly property string kind: parent ? parent.kind : ""
            height: 54
            color: plainArea.pressed ? "#efe9e2" : "white"
            Accessible.role: kind === "info-shake-cell" ? Accessible.StaticText : Accessible.Button
            Accessible.name: plainLabel.text
            Accessible.onPressAction: root.controller.didSelectRow(parent.row)
            Rectangle { anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: 18 } height: 1; color: "#efe9e2" }
            Text {
                id: plainLabel
                anchors { left: parent.left; leftMargin: 18; right: arrow.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: ({
                    "info-website-cell": qsTrId("info_subheader_website"),
                    "info-email-cell": qsTrId("info_subheader_email"),
                    "info-rateapp-cell": qsTrId("info_rate_app"),
                    "info-shake-cell": qsTrId("info_shake_app_to_get_fortunes")
                })[parent.kind] || ""
                color: "#3a2a22"
                font: Theme.font(parent.kind === "info-shake-cell" ? "OpenSans-Light" : "OpenSans", 15)
                wrapMode: Text.Wrap
            }
            Text {
                id: arrow
                visible: parent.kind !== "info-shake-cell"
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                text: Theme.icons.cardRight
                color: "#b8aaa0"
                font: Theme.font("Velmora-Icons", 16)
            }
            MouseArea { id: plainArea; anchors.fill: parent; onClicked: root.controller.didSelectRow(parent.parent.row) }
        }
    }
}
