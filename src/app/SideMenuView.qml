import QtQuick
import Velmora
import Velmora.RichText

// The side menu: the logo row, the screens with their icons, and the SMS invitation below.
Item {
    id: root
    objectName: "sideMenu"
    required property SideMenuViewController menu

    ListView {
        id: rows
        anchors { top: parent.top; left: parent.left; right: parent.right; bottom: moreInfo.top }
        interactive: false
        model: root.menu.tableVC
        Accessible.role: Accessible.List
        Accessible.name: qsTrId("a11y_menu_list")
        delegate: Item {
            id: row
            required property int index
            required property string key
            required property var title
            required property string icon
            required property bool selected
            required property bool logo
            required property string badge
            objectName: "menuRow-" + key
            width: rows.width
            height: logo ? 120 : 56
            Accessible.role: Accessible.ListItem
            Accessible.name: logo ? "Velmora" : (titleLabel.plainText + (badge !== "" ? " (" + badge + ")" : ""))
            Accessible.selected: selected
            Accessible.onPressAction: root.menu.tableVC.didSelectRow(row.index)
            activeFocusOnTab: !row.logo

            Rectangle {
                id: flash
                anchors.fill: parent
                color: "white"
                opacity: 0
                NumberAnimation on opacity { id: fade; running: false; from: 0.2; to: 0; duration: 400 }
                Connections {
                    target: root.menu.tableVC
                    function onRowFlashed(flashed) { if (flashed === row.index) fade.restart() }
                }
            }
            Column {
                visible: row.logo
                anchors { left: parent.left; leftMargin: 22; verticalCenter: parent.verticalCenter; verticalCenterOffset: 8 }
                Text { text: "Velmora"; color: "white"; font: Theme.font("OpenSans-Extrabold", 28) }
            }
            Text {
                id: iconLabel
                visible: !row.logo
                anchors { left: parent.left; leftMargin: 22; verticalCenter: parent.verticalCenter }
                width: 28
                text: row.icon
                color: row.selected ? "white" : Theme.colors.unselectedIconColor
                font: Theme.fonts.iconFont
                horizontalAlignment: Text.AlignHCenter
            }
            RichLabel {
                id: titleLabel
                visible: !row.logo
                anchors { left: iconLabel.right; leftMargin: 14; right: parent.right; verticalCenter: parent.verticalCenter }
                text: row.title
                color: "white"
                maximumLineCount: 1
            }
            Rectangle {
                visible: row.badge !== ""
                anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                width: 28; height: 20; radius: 10
                color: Theme.colors.barTintColor
                Text { anchors.centerIn: parent; text: row.badge; color: "white"; font: Theme.font("OpenSans-Bold", 11) }
            }
            MouseArea { anchors.fill: parent; onClicked: root.menu.tableVC.didSelectRow(row.index) }
        }
    }

    Text {
        id: moreInfo
        objectName: "moreInfoButton"
        visible: !root.menu.moreInfoButtonHidden
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: 20 }
        height: visible ? implicitHeight : 0
        text: root.menu.moreInfoTitle
        color: "white"
        wrapMode: Text.WordWrap
        font: Theme.font("OpenSans-Semibold", 13)
        Accessible.role: Accessible.Button
        Accessible.name: text
        Accessible.onPressAction: root.menu.moreInfoTouched()
        MouseArea { anchors.fill: parent; onClicked: root.menu.moreInfoTouched() }
    }
}
