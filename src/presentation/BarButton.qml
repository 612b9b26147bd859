import QtQuick
import QtQuick.Controls.Basic
import Velmora

// One bar button: its glyph or title in its own font and tint, a 44-point touch target.
Item {
    id: button
    required property BarButtonItem item
    objectName: item ? "barButton-" + item.name : "barButton"
    width: Math.max(44, label.implicitWidth + 12)
    height: 44
    Accessible.role: Accessible.Button
    // The button names its key: a11y_menu, a11y_search, a11y_cancel, a11y_filter, a11y_back.
    Accessible.name: item ? qsTrId(["a11y", item.name].join("_")) : ""
    Accessible.onPressAction: button.item.trigger()
    activeFocusOnTab: true

    Rectangle {
        anchors.centerIn: parent
        width: label.implicitWidth + 10
        height: label.implicitHeight + 4
        radius: 3
        color: button.item ? button.item.backgroundColor : "transparent"
        visible: !busy.running
        opacity: area.pressed ? 0.5 : 1
    }
    Text {
        id: label
        anchors.centerIn: parent
        text: button.item ? button.item.title : ""
        font: button.item ? button.item.font : Theme.fonts.iconFont
        color: button.item ? button.item.tintColor : "white"
        visible: !busy.running
        opacity: area.pressed ? 0.5 : 1
    }
    BusyIndicator {
        id: busy
        anchors.centerIn: parent
        width: 26
        height: 26
        running: button.item ? button.item.busy : false
        visible: running
        palette.dark: "white"
    }
    MouseArea {
        id: area
        anchors.fill: parent
        onClicked: button.item.trigger()
    }
}
