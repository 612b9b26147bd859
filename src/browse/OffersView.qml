import QtQuick
import Velmora
import Velmora.RichText

// Today's offers: a header per place, then each offer with its name and description and the
// price drawn as a whole part and raised cents. Pushed for one place, that place comes first.
Rectangle {
    id: root
    objectName: "offersView"
    property OfertasTableViewController controller
    color: "white"

    Text {
        objectName: "noOffers"
        visible: root.controller && root.controller.rows.length === 0
        anchors.centerIn: parent
        width: parent.width - 64
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        text: qsTrId("offers_none_today")
        font: Theme.font("OpenSans-Light", 16)
        color: Theme.colors.settingsTextColor
    }

    ListView {
        id: list
        objectName: "offerList"
        anchors.fill: parent
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: root.controller ? root.controller.rows : []
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("search_offers")
        delegate: Loader {
            id: row
            required property int index
            required property var modelData
            width: list.width
            sourceComponent: modelData.kind === "card" ? card : modelData.kind === "header" ? header : offer

            Component {
                id: card
                RestaurantCard {
                    objectName: "offersPlaceCard"
                    index: row.index
                    rid: row.modelData.rid
                    name: row.modelData.name
                    cuisines: row.modelData.cuisines
                    address: row.modelData.address
                    warning: row.modelData.warning
                    picture: row.modelData.picture
                    accessibleName: row.modelData.spoken
                    showsArrow: !row.modelData.inert
                    onActivated: if (!row.modelData.inert) root.controller.didSelectRow(row.index)
                }
            }
            Component {
                id: header
                Rectangle {
                    height: 30
                    color: "#f4f1ec"
                    Accessible.role: Accessible.Heading
                    Accessible.name: row.modelData.title
                    Text {
                        anchors { left: parent.left; leftMargin: 14; right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                        text: row.modelData.title
                        font: Theme.font("OpenSans-Semibold", 12)
                        color: Theme.colors.barTintColor
                        elide: Text.ElideRight
                    }
                }
            }
            Component {
                id: offer
                Rectangle {
                    objectName: "offerRow-" + row.index
                    height: Math.max(56, offerText.implicitHeight + 20)
                    color: offerArea.pressed ? "#f4f1ec" : "white"
                    Accessible.role: root.controller.restaurantMode ? Accessible.StaticText : Accessible.Button
                    Accessible.name: row.modelData.spoken + (row.modelData.whole !== "" ? ". " + row.modelData.whole + row.modelData.cents : "")
                    RichLabel {
                        id: offerText
                        objectName: "offerText"
                        anchors { left: parent.left; leftMargin: 14; right: price.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
                        text: root.controller.offerText(row.index)
                        color: "#3a2a22"
                        maximumLineCount: root.controller.restaurantMode ? 0 : 3
                    }
                    Row {
                        id: price
                        anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                        Text { text: row.modelData.whole; font: Theme.font("OpenSans-Bold", 20); color: Theme.colors.barTintColor }
                        Text { text: row.modelData.cents; font: Theme.font("OpenSans-Bold", 12); color: Theme.colors.barTintColor }
                    }
                    Rectangle { anchors.bottom: parent.bottom; x: 14; width: parent.width - 14; height: 1; color: "#ebe6de" }
                    MouseArea { id: offerArea; anchors.fill: parent; enabled: !root.controller.restaurantMode; onClicked: root.controller.didSelectRow(row.index) }
                }
            }
        }
    }
}
