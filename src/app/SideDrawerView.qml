import QtQuick
import Velmora

// The drawer: the menu behind, the content in front sliding right by the controller's offset.
// Taps and drags on the open drawer go back to the controller, which holds every rule.
Item {
    id: root
    objectName: "sideDrawer"

    required property SideDrawer drawer

    // What stands behind the menu: a warm dark gradient.
    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0; color: "#5e190b" }
            GradientStop { position: 1; color: "#2b0b05" }
        }
    }

    Loader {
        objectName: "sideMenuLoader"
        width: root.drawer.menuWidth
        height: parent.height
        active: root.drawer.menuViewPresent
        sourceComponent: SideMenuView { menu: root.drawer.menuController }
    }

    Item {
        id: container
        width: parent.width
        height: parent.height
        x: root.drawer.offset
        Behavior on x {
            NumberAnimation {
                id: slide
                duration: root.drawer.animationDuration
                easing.type: Easing.OutCubic
                onRunningChanged: if (!running && root.drawer.offset === 0) root.drawer.hideAnimationFinished()
            }
        }

        // The content's shadow on the menu while open.
        Rectangle {
            anchors { right: parent.left; top: parent.top; bottom: parent.bottom }
            width: 12
            opacity: root.drawer.shadowOpacity
            gradient: Gradient {
                orientation: Gradient.Horizontal
                GradientStop { position: 0; color: "transparent" }
                GradientStop { position: 1; color: "#80000000" }
            }
        }

        // With the menu open, the content behind it is not read and takes no keys.
        Covered {
            anchors.fill: parent
            covered: !root.drawer.contentInteractive
            NavigationView {
                anchors.fill: parent
                navigation: root.drawer.contentController
            }
        }

        // The tap and pan recognizers exist only while the drawer is open.
        MouseArea {
            objectName: "drawerRecognizers"
            anchors.fill: parent
            enabled: root.drawer.recognizersAttached
            // Over the content while the menu is open: a reader's press closes the menu, as a tap does.
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_drawer")
            Accessible.ignored: !enabled
            Accessible.onPressAction: root.drawer.tapRecognized()
            property real startX: 0
            property real startOffset: 0
            property real lastX: 0
            property real lastTime: 0
            property real velocity: 0
            property bool dragging: false
            // Positions in the drawer's coordinates: the container itself moves under the finger.
            onPressed: (mouse) => { startX = mouse.x + container.x; startOffset = container.x; lastX = startX; lastTime = Date.now(); dragging = false; velocity = 0 }
            onPositionChanged: (mouse) => {
                const x = mouse.x + container.x
                if (!dragging && Math.abs(x - startX) > 6) { dragging = true; root.drawer.panBegan() }
                if (!dragging)
                    return
                const now = Date.now()
                if (now > lastTime)
                    velocity = (x - lastX) / ((now - lastTime) / 1000)
                lastX = x
                lastTime = now
                root.drawer.panChanged(startOffset + x - startX)
            }
            onReleased: (mouse) => {
                if (dragging)
                    root.drawer.panEnded(startOffset + mouse.x + container.x - startX, velocity)
                else
                    root.drawer.tapRecognized()
                dragging = false
            }
        }
    }
}
