import QtQuick

// A progress bar; a negative value means "under way, amount unknown": a block runs from one
// end to the other and back until a real value arrives.
Item {
    id: bar
    property real progress: 0
    property color tint: "#d95b43"
    readonly property bool bouncing: progress < 0

    implicitHeight: 4
    Accessible.role: Accessible.ProgressBar
    Accessible.name: bouncing ? "" : Math.round(progress * 100) + " %"

    Rectangle { anchors.fill: parent; radius: height / 2; color: Qt.rgba(0, 0, 0, 0.12) }
    Rectangle {
        visible: !bar.bouncing
        width: parent.width * Math.max(0, Math.min(1, bar.progress))
        height: parent.height
        radius: height / 2
        color: bar.tint
    }
    Rectangle {
        id: bouncer
        visible: bar.bouncing
        width: parent.width / 3
        height: parent.height
        radius: height / 2
        color: bar.tint
        SequentialAnimation on x {
            running: bar.bouncing && bar.visible
            loops: Animation.Infinite
            NumberAnimation { from: 0; to: bar.width - bouncer.width; duration: 1000; easing.type: Easing.InOutQuad }
            NumberAnimation { from: bar.width - bouncer.width; to: 0; duration: 1000; easing.type: Easing.InOutQuad }
        }
    }
}
