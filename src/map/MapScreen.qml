import QtQuick
import QtQuick.Controls.Basic
import Velmora

// The map screen: the process's one map view, borrowed whenever this screen appears, with the
// callout over it and a spinner while the pins are first made.
Rectangle {
    id: root
    objectName: "mapScreen"
    property MapViewController controller
    color: "#ece8df"

    Item {
        id: holder
        objectName: "mapHolder"
        anchors.fill: parent
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTrId("a11y_map")
    }

    function grabMapView() {
        const view = root.controller ? root.controller.mapView : null
        if (!view)
            return
        view.parent = holder
        view.x = 0
        view.y = 0
        view.z = 0
        view.width = Qt.binding(function () { return holder.width })
        view.height = Qt.binding(function () { return holder.height })
        // The keys go to the map as it shows: arrows pan, + and - zoom.
        view.forceActiveFocus()
    }
    Connections {
        target: root.controller
        function onMapViewGrabbed() { root.grabMapView() }
    }
    Component.onCompleted: grabMapView()

    // The pins a reader is offered, where they stand: a press opens a pin's callout as a tap does.
    // In the holder itself, so the pins it makes are born there as the Repeater's siblings.
    Repeater {
        parent: holder
        model: root.controller && root.controller.mapView ? root.controller.mapView.readablePins : []
        Item {
            required property var modelData
            objectName: "readablePin-" + modelData.identifier
            x: modelData.x - 11
            y: modelData.y - 30
            width: 22
            height: 30
            Accessible.role: Accessible.Button
            Accessible.name: modelData.name
            Accessible.onPressAction: root.controller.mapView.selectAnnotation(modelData.identifier)
        }
    }

    MapCallout {
        z: 2
        parent: holder
        map: root.controller ? root.controller.mapView : null
    }

    BusyIndicator {
        objectName: "mapActivityIndicator"
        anchors.centerIn: parent
        running: root.controller ? root.controller.loading : false
        visible: running
        Accessible.name: qsTrId("a11y_map_loading")
    }
}
