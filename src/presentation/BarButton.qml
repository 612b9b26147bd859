import QtQuick
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

    Text {
        id: label
        anchors.centerIn: parent
        text: button.item ? button.item.title : ""
        font: button.item ? button.item.font : Theme.fonts.iconFont
        color: button.item ? button.item.tintColor : "white"
        opacity: area.pressed ? 0.5 : 1
    }
    MouseArea {
        id: area
        anchors.fill: parent
        onClicked: button.item.trigger()
    }
}
