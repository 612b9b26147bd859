import QtQuick

// Child screens side by side in one place, only the current one shown; each is made once from
// its controller's view and kept, so a tab keeps its scroll position.
Item {
    id: root
    property var controllers: []
    property int currentIndex: 0

    Repeater {
        model: root.controllers
        Loader {
            required property int index
            required property var modelData
            anchors.fill: parent
            visible: index === root.currentIndex
            active: visible || status === Loader.Ready
            source: modelData ? modelData.viewUrl : ""
            onLoaded: item.controller = modelData
        }
    }
}
