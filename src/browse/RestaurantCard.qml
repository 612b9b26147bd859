import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// One place in a list: picture, name, cuisines with their icon, address; swipe left for the
// list's buttons; a minus button while the list is being edited.
SwipeDelegate {
    id: card
    required property int index
    required property int rid
    required property string name
    required property var cuisines
    required property string address
    required property string warning
    required property string picture
    property LugaresTableViewController list
    // Without a list (the offers list's card of its place) a tap is the owner's, and the card
    // neither swipes nor shows points.
    signal activated()
    property bool showsArrow: true

    objectName: "placeCard-" + rid

    height: 92
    padding: 0
    Accessible.role: Accessible.ListItem
    required property string accessibleName
    Accessible.name: accessibleName
    background: Rectangle {
        color: card.pressed ? "#f4f1ec" : "white"
        // Under the texts, so it moves with them when editing slides the card's content.
        Rectangle {
            objectName: "cardSeparator"
            anchors.bottom: parent.bottom
            x: 92 + (card.list && card.list.customEditing ? minus.width + 12 : 0)
            Behavior on x { NumberAnimation { duration: 300 } }
            width: parent.width - x; height: 1; color: "#ebe6de"
        }
    }

    // A finger's tap and a screen reader's press take the same way in.
    function open() { if (card.list) card.list.didSelectRow(card.index); else card.activated() }
    onClicked: open()
    Accessible.onPressAction: open()
    // A Tab stop (delegates aren't by default): Space or Return opens, and the list scrolls
    // to keep the card with the keys in view.
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: open()
    Keys.onEnterPressed: open()
    // Up and down move the keys card by card through the whole list, past the cards made so far.
    function moveFocus(by) {
        const view = ListView.view
        const target = index + by
        if (!view || target < 0 || target >= view.count)
            return
        view.positionViewAtIndex(target, ListView.Contain)
        const next = view.itemAtIndex(target)
        if (next)
            next.forceActiveFocus(Qt.TabFocusReason)
    }
    Keys.onDownPressed: moveFocus(1)
    Keys.onUpPressed: moveFocus(-1)
    onActiveFocusChanged: if (activeFocus && ListView.view) ListView.view.positionViewAtIndex(index, ListView.Contain)
    swipe.enabled: card.list !== null
    Connections {
        target: card.swipe
        function onPositionChanged() {
            const open = card.swipe.position !== 0
            if (open !== card.swiped) {
                card.swiped = open
                if (open) card.list.swipeWillBegin(card.index); else card.list.swipeWillEnd(card.index)
            }
        }
    }
    property bool swiped: false
    // A card scrolled away and reused for another place comes back closed. While it waits in the
    // pool it is hidden: the view only culls it, and a screen reader would still read it.
    property bool pooled: false
    visible: !pooled && index >= 0
    ListView.onPooled: { card.swipe.close(); card.pooled = true }
    ListView.onReused: { card.swipe.close(); card.pooled = false }
    // Typing rewrites the cards on screen in place: one told another place comes back closed too.
    onRidChanged: if (card.swipe.position !== 0) card.swipe.close()
    // A reader reads the cards in the order they stand, however the list made and reused them.
    onYChanged: ReadingOrder.sortSoon(parent)
    Component.onCompleted: ReadingOrder.sortSoon(parent)

    contentItem: Item {
        // Drawn, not typed: no bundled font has the sign, and a system fallback would differ.
        Rectangle {
            id: minus
            objectName: "minusButton"
            x: card.list && card.list.customEditing ? 12 : -width
            // Off the card's left edge it is gone, for a reader too, not only out of sight.
            visible: x > -width
            Behavior on x { NumberAnimation { duration: 300 } }
            anchors.verticalCenter: parent.verticalCenter
            width: 22; height: 22; radius: 11
            color: "#e0322b"
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_delete")
            Accessible.onPressAction: card.swipe.open(SwipeDelegate.Right)
            Rectangle { anchors.centerIn: parent; width: 12; height: 2.5; radius: 1; color: "white" }
            MouseArea { anchors { fill: parent; margins: -8 } onClicked: card.swipe.open(SwipeDelegate.Right) }
        }
        Rectangle {
            id: frame
            x: minus.x + minus.width + 12
            anchors.verticalCenter: parent.verticalCenter
            width: 68; height: 68; radius: 6
            color: "#f0ede8"
            clip: true
            Image {
                id: photo
                anchors.fill: parent
                source: card.picture
                sourceSize: Qt.size(136, 136)
                fillMode: Image.PreserveAspectCrop
                asynchronous: true
                // A card scrolled away lets its picture go: a province holds tens of thousands.
                cache: false
            }
            Text {
                anchors.centerIn: parent
                Accessible.ignored: true
                visible: photo.status !== Image.Ready
                text: Theme.icons.camera
                font: Theme.font("Velmora-Icons", 26)
                color: "#cfc6b6"
            }
        }
        Item {
            id: nameRow
            anchors { left: frame.right; leftMargin: 12; right: points.visible ? points.left : arrow.left; rightMargin: 6; top: frame.top; topMargin: -2 }
            height: nameLabel.implicitHeight
            Text {
                id: nameLabel
                width: Math.min(implicitWidth, parent.width - (warn.visible ? warn.width + 4 : 0))
                text: card.name
                font: Theme.font("OpenSans-Semibold", 16)
                color: "#3a2a22"
                elide: Text.ElideRight
            }
            Text {
                id: warn
                visible: card.warning !== ""
                anchors { left: nameLabel.right; leftMargin: 4; verticalCenter: nameLabel.verticalCenter }
                text: card.warning
                font: Theme.font("Velmora-Icons", 14)
                color: Theme.colors.warningIconColor
            }
        }
        RichLabel {
            id: cuisinesLabel
            objectName: "cardCuisines"
            anchors { left: nameRow.left; right: nameRow.right; top: nameRow.bottom; topMargin: 2 }
            text: card.cuisines
            color: Theme.colors.barTintColor
            maximumLineCount: 1
        }
        Text {
            id: addressLabel
            anchors { left: nameRow.left; right: nameRow.right; top: cuisinesLabel.bottom; topMargin: 3 }
            text: card.address
            font: Theme.font("OpenSans", 13)
            color: "#8a7f72"
            elide: Text.ElideRight
        }
        Text {
            id: points
            objectName: "pointsLabel"
            visible: text !== ""
            anchors { right: arrow.left; rightMargin: 6; verticalCenter: parent.verticalCenter }
            text: card.list ? card.list.points : ""
            font: Theme.font("OpenSans-Bold", 14)
            color: Theme.colors.selectedRowColor
        }
        Text {
            id: arrow
            anchors { right: parent.right; rightMargin: 30; verticalCenter: parent.verticalCenter }
            visible: !card.swiped && card.showsArrow
            text: Theme.icons.cardRight
            font: Theme.font("Velmora-Icons", 20)
            color: "#cfc6b6"
        }
    }

    // Made when the card is first swiped, not with every card: a list that changes under typing
    // creates many cards, and their buttons' styled titles are rendered only for the one swiped.
    swipe.right: Component {
        Row {
            anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
            Repeater {
                model: card.list ? card.list.swipeButtonsForRow(card.index) : []
                Rectangle {
                    required property var modelData
                    objectName: "swipeButton-" + modelData.type
                    Accessible.role: Accessible.Button
                    // a11y_call, a11y_reserve or a11y_delete
                    Accessible.name: qsTrId(["a11y", modelData.type].join("_"))
                    width: modelData.width
                    height: card.height
                    color: modelData.background
                    RichLabel {
                        anchors.centerIn: parent
                        text: modelData.title
                        color: "white"
                    }
                    // The card takes the finger for its swipe; a tap on its buttons reaches them
                    // through the attached signal, not through a MouseArea.
                    SwipeDelegate.onClicked: press()
                    Accessible.onPressAction: press()
                    function press() { if (card.list.tappedButton(card.index, modelData.index)) card.swipe.close() }
                }
            }
        }
    }
}
