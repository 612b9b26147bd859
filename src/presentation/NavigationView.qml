import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// Draws a NavigationController: the red bar with the top screen's items and title (or the
// screen's own `titleView`), the stack of screens below it, and a presented sheet above all.
// A screen may paint the bar itself (`barColor`) and run its content up under it.
Item {
    id: root
    objectName: "navigationView"

    required property NavigationController navigation
    readonly property ViewController topController: navigation.topViewController
    readonly property Item topPage: stack.currentItem

    // The stack view makes each page from its controller's view and destroys it once popped:
    // screens that come and go (a place's card) leave nothing behind.
    function componentFor(controller) {
        const component = Qt.createComponent(controller.viewUrl)
        if (component.status !== Component.Ready) {
            console.warn("Can't load", controller.viewUrl, component.errorString())
            return null
        }
        return component
    }

    // Follows the controller's stack: a push, a pop to any depth, or a new root.
    function sync() {
        const controllers = navigation.viewControllers
        const animated = navigation.lastChangeAnimated
        let common = 0
        while (common < controllers.length && common < stack.depth
               && stack.get(common, StackView.DontLoad).controller === controllers[common])
            ++common
        if (common === 0) {
            stack.clear(StackView.Immediate)
        } else if (common < stack.depth) {
            stack.pop(stack.get(common - 1, StackView.DontLoad), animated ? StackView.PopTransition : StackView.Immediate)
        }
        for (let i = common; i < controllers.length; ++i) {
            const component = componentFor(controllers[i])
            if (component)
                stack.push(component, { controller: controllers[i] },
                           animated && i === controllers.length - 1 ? StackView.PushTransition : StackView.Immediate)
        }
    }

    Connections {
        target: root.navigation
        function onStackChanged() { root.sync() }
    }
    Component.onCompleted: sync()

    // A presented sheet or panel covers the bar and the stack: a reader and the keys stay on it.
    Covered {
        anchors.fill: parent
        covered: sheet.item !== null
        Rectangle {
            id: bar
            objectName: "navigationBar"
            width: parent.width
            height: root.topController && root.topController.navigationBarHidden ? 0 : 56
            visible: height > 0
            color: root.topPage && root.topPage.barColor !== undefined ? root.topPage.barColor : Theme.colors.barTintColor
            z: 2

            Row {
                id: leftItems
                anchors { left: parent.left; leftMargin: 6; verticalCenter: parent.verticalCenter }
                Repeater {
                    model: root.topController ? root.topController.leftItems : []
                    BarButton { required property var modelData; item: modelData }
                }
            }
            Row {
                id: rightItems
                anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
                Repeater {
                    model: root.topController ? root.topController.rightItems : []
                    BarButton { required property var modelData; item: modelData }
                }
            }
            // The title keeps the same room on both sides, so it stands in the bar's middle whatever
            // buttons one side has and the other lacks.
            Loader {
                id: titleLoader
                objectName: "navigationTitle"
                readonly property real side: Math.max(leftItems.width + leftItems.anchors.leftMargin,
                                                      rightItems.width + rightItems.anchors.rightMargin) + 4
                anchors {
                    left: parent.left; leftMargin: side; right: parent.right; rightMargin: side
                    top: parent.top; bottom: parent.bottom
                }
                sourceComponent: root.topPage && root.topPage.titleView ? root.topPage.titleView : plainTitle
            }
            Component {
                id: plainTitle
                Text {
                    text: root.topController ? root.topController.title : ""
                    // The screen's name, read first and found by a reader's jump to the next heading.
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                    color: "white"
                    font: Theme.fonts.boldFont
                    fontSizeMode: Text.HorizontalFit
                    minimumPixelSize: 11
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
            }
        }

        StackView {
            id: stack
            anchors { top: bar.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }
            // Unclipped above, so a page can draw under a bar it makes translucent.
            clip: false
        }
    }

    // A presented screen over the dimmed stack, from the edge its presentation names: a sheet
    // rising from the bottom, a screen dropping from the top, a panel sliding in from the right.
    readonly property string edge: navigation.presentedEdge
    readonly property int motion: navigation.lastChangeAnimated ? navigation.presentationDuration : 0
    Rectangle {
        id: dimming
        objectName: "dimming"
        anchors.fill: parent
        z: 3
        color: root.navigation.dimmingColor
        opacity: sheet.item ? 1 : 0
        visible: opacity > 0
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("a11y_dim")
        Accessible.onPressAction: root.navigation.dismissViewController(true)
        Behavior on opacity { NumberAnimation { duration: root.motion } }
        // A tap, or a swipe towards the edge the sheet came from, closes it.
        MouseArea {
            anchors.fill: parent
            property point start
            onPressed: (mouse) => start = Qt.point(mouse.x, mouse.y)
            onReleased: (mouse) => {
                const dx = mouse.x - start.x, dy = mouse.y - start.y
                const tap = Math.abs(dx) < 10 && Math.abs(dy) < 10
                const swipe = root.edge === "right" ? dx > 40 : root.edge === "top" ? dy < -40 : dy > 40
                if (tap || swipe)
                    root.navigation.dismissViewController(true)
            }
        }
    }
    Loader {
        id: sheet
        objectName: "presentedSheet"
        z: 4
        readonly property real extent: root.navigation.presentedExtent
        readonly property bool shown: item !== null
        width: root.edge === "right" ? (extent > 0 ? extent : root.width) : root.width
        height: root.edge === "right" ? root.height : (extent > 0 ? extent : root.height)
        x: root.edge === "right" ? (shown ? root.width - width : root.width) : 0
        y: root.edge === "right" ? 0 : root.edge === "top" ? (shown ? 0 : -height) : (shown ? root.height - height : root.height)
        Behavior on x { NumberAnimation { duration: root.motion; easing.type: Easing.OutCubic } }
        Behavior on y { NumberAnimation { duration: root.motion; easing.type: Easing.OutCubic } }
        active: root.navigation.presentedViewController !== null
        source: active ? root.navigation.presentedViewController.viewUrl : ""
        // The sheet takes the keys: what it covers has left their path.
        onLoaded: {
            item.controller = root.navigation.presentedViewController
            item.forceActiveFocus()
        }
    }
}
