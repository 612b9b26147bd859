import QtQuick

// Content that a drawer, a panel or a sheet can cover. While covered it leaves the accessibility
// tree, the keys' path and the touch, as a modal's background must: a reader reads only what is
// on top. It still shows, drawn from a live picture of itself.
Item {
    id: root
    property bool covered: false
    default property alias content: holder.data

    Item {
        id: holder
        objectName: "coveredContent"
        anchors.fill: parent
        visible: !root.covered
    }
    ShaderEffectSource {
        anchors.fill: parent
        visible: root.covered
        // Only while covered: an effect's hold on its source costs a render pass of its own.
        sourceItem: root.covered ? holder : null
        live: true
    }
}
