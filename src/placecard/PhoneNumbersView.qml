import QtQuick
import Velmora

// The phone numbers of a place, one row each: a tap dials, holding a row offers to copy its
// number. The cancel button below closes the sheet.
Rectangle {
    id: root
    objectName: "phoneNumbersView"
    property PhoneNumbersViewController controller
    color: "white"
    property int menuRow: -1
    readonly property real rowHeight: controller ? controller.cellHeight : 75

    Column {
        anchors.fill: parent
        Repeater {
            model: root.controller ? root.controller.numbers : []
            Rectangle {
                id: phoneRow
                required property int index
                required property string modelData
                objectName: "phoneRow-" + index
                width: root.width
                height: root.rowHeight
                color: rowArea.pressed ? "#f4f1ec" : "white"
                Accessible.role: Accessible.Button
                Accessible.name: modelData.trim()
                Accessible.onPressAction: root.controller.didSelectRow(index)
                Text {
                    anchors { left: parent.left; leftMargin: 24; verticalCenter: parent.verticalCenter }
                    text: Theme.icons.call
                    font: Theme.font("Velmora-Icons", 22)
                    color: Theme.colors.swipeCallColor
                }
                Text {
                    anchors { left: parent.left; leftMargin: 64; right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                    text: phoneRow.modelData.trim()
                    font: Theme.font("OpenSans-Semibold", 18)
                    color: "#3a2a22"
                    elide: Text.ElideRight
                }
                Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: "#ebe6de" }
                MouseArea {
                    id: rowArea
                    anchors.fill: parent
                    pressAndHoldInterval: 500
                    onClicked: if (root.menuRow < 0) root.controller.didSelectRow(phoneRow.index); else root.menuRow = -1
                    onPressAndHold: root.controller.cellLongPress(phoneRow.index)
                }
            }
        }
        Rectangle {
            objectName: "phonesCancel"
            width: root.width
            height: 50
            color: cancelArea.pressed ? "#f4f1ec" : "white"
            Accessible.role: Accessible.Button
            Accessible.name: root.controller ? root.controller.cancelTitle : ""
            Accessible.onPressAction: root.controller.cancel()
            Text {
                anchors.centerIn: parent
                text: root.controller ? root.controller.cancelTitle : ""
                font: Theme.font("OpenSans-Semibold", 16)
                color: Theme.colors.barTintColor
            }
            MouseArea { id: cancelArea; anchors.fill: parent; onClicked: root.controller.cancel() }
        }
    }

    // The copy menu: one command over the held row, as a phone's edit menu shows it.
    Rectangle {
        id: copyMenu
        objectName: "phoneCopyMenu"
        visible: root.menuRow >= 0
        x: (root.width - width) / 2
        y: Math.max(4, root.menuRow * rowHeight + 4)
        width: copyText.implicitWidth + 36
        height: 38
        radius: 8
        color: "#2b2b2b"
        Accessible.role: Accessible.Button
        Accessible.name: copyText.text
        Accessible.onPressAction: copyMenu.copy()
        function copy() {
            root.controller.copyPhone()
            root.menuRow = -1
        }
        Text {
            id: copyText
            anchors.centerIn: parent
            text: root.controller ? root.controller.copyTitle : ""
            font: Theme.font("OpenSans-Semibold", 14)
            color: "white"
        }
        MouseArea { anchors.fill: parent; onClicked: copyMenu.copy() }
    }
    Connections {
        target: root.controller
        function onCopyMenuRequested(row) { root.menuRow = row }
    }
}
