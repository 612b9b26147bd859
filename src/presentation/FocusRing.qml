import QtQuick

// The ring round the control that has the keys. Placed inside the control, it follows its size.
Rectangle {
    objectName: "focusRing"
    property color ringColor: "white"
    anchors { fill: parent; margins: 3 }
    radius: 6
    color: "transparent"
    border { width: 2; color: ringColor }
    visible: parent.activeFocus
}
