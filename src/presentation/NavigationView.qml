import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// Draws a NavigationController: the red bar with the top screen's items and title (or the
// screen's own `titleView`), the stack of screens below it, and a presented sheet above all.
Item {
    id: root
    objectName: "navigationView"

    required property NavigationController navigation
    readonly property ViewController topController: navigation.topViewController
    readonly property Item topPage: stack.currentItem

    function pageFor(controller) {
        const component = Qt.createComponent(controller.viewUrl)
        if (component.status !== Component.Ready) {
            console.warn("Can't load", controller.viewUrl, component.errorString())
            return null
        }
        return component.createObject(null, { controller: controller })
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
            const page = pageFor(controllers[i])
            if (page)
                stack.push(page, {}, animated && i === controllers.length - 1 ? StackView.PushTransition : StackView.Immediate)
        }
    }

    Connections {
        target: root.navigation
        function onStackChanged() { root.sync() }
    }
    Component.onCompleted: sync()

    Rectangle {
        id: bar
        objectName: "navigationBar"
        width: parent.width
        height: root.topController && root.topController.navigationBarHidden ? 0 : 56
        visible: height > 0
        color: Theme.colors.barTintColor
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
        Loader {
            id: titleLoader
            anchors {
                left: leftItems.right; leftMargin: 4; right: rightItems.left; rightMargin: 4
                top: parent.top; bottom: parent.bottom
            }
            sourceComponent: root.topPage && root.topPage.titleView ? root.topPage.titleView : plainTitle
        }
        Component {
            id: plainTitle
            Text {
                text: root.topController ? root.topController.title : ""
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
        clip: true
    }

    // A presented screen: a sheet from the bottom over the dimmed stack.
    Rectangle {
        id: dimming
        anchors.fill: parent
        z: 3
        color: Theme.colors.filtersDimColor
        opacity: sheet.item ? 1 : 0
        visible: opacity > 0
        Accessible.role: Accessible.Button
        Accessible.name: qsTrId("a11y_dim")
        Behavior on opacity { NumberAnimation { duration: root.navigation.lastChangeAnimated ? 250 : 0 } }
        MouseArea { anchors.fill: parent; onClicked: root.navigation.dismissViewController(true) }
    }
    Loader {
        id: sheet
        objectName: "presentedSheet"
        z: 4
        width: parent.width
        height: root.navigation.presentedViewController
                ? (root.navigation.presentedHeight() > 0 ? root.navigation.presentedHeight() : root.height) : 0
        y: item ? root.height - height : root.height
        Behavior on y { NumberAnimation { duration: 250; easing.type: Easing.OutCubic } }
        active: root.navigation.presentedViewController !== null
        source: active ? root.navigation.presentedViewController.viewUrl : ""
        onLoaded: item.controller = root.navigation.presentedViewController
    }
}
