import QtQuick
import QtQuick.Controls.Basic
import Velmora

// Stand-in for the main interface: the catalogue's provinces with their place counts.
Item {
    id: root
    objectName: "mainScreen"

    required property AppDelegate app

    Rectangle {
        id: bar
        width: parent.width
        height: 56
        color: "#d95b43"
        Text {
            anchors.centerIn: parent
            text: "Velmora"
            color: "white"
            font.pixelSize: 19
            font.weight: Font.DemiBold
        }
    }

    ListView {
        id: list
        anchors { top: bar.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }
        clip: true
        model: root.app.provinceSummaries()
        header: Text {
            width: list.width
            padding: 16
            text: "Catalogue " + root.app.catalogueVersion
            color: "#897C5E"
            font.pixelSize: 13
        }
        delegate: Rectangle {
            required property var modelData
            width: list.width
            height: 52
            color: "white"
            Text {
                anchors { left: parent.left; leftMargin: 16; right: count.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: modelData.name
                elide: Text.ElideRight
                color: "#333333"
                font.pixelSize: 17
            }
            Text {
                id: count
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                text: qsTrId("provinces_number_of_places").replace("{N}", modelData.places)
                color: "#A29476"
                font.pixelSize: 14
            }
            Rectangle { anchors.bottom: parent.bottom; x: 16; width: parent.width - 16; height: 1; color: "#ebe6de" }
        }
    }
}
