import QtQuick
import QtQuick.Controls.Basic
import Velmora
import Velmora.RichText

// The search screen: the current tab's screen above a tab bar, the province button or the
// search field as the bar's title.
Item {
    id: root
    objectName: "buscarView"
    property BuscarViewController controller

    // The navigation bar shows this in place of a plain title.
    property Component titleView: controller && controller.searchVisible ? searchField : provinceButton

    Component {
        id: provinceButton
        Item {
            objectName: "provinceButton"
            Accessible.role: Accessible.Button
            Accessible.name: qsTrId("a11y_province_button").arg(root.controller ? root.controller.provinceName : "")
            Accessible.onPressAction: root.controller.toggleProvinces()
            RichLabel {
                id: provinceLabel
                anchors.centerIn: parent
                width: Math.min(implicitWidth, parent.width)
                text: root.controller ? root.controller.provinceTitle : undefined
                color: "white"
                maximumLineCount: 1
                opacity: provinceArea.pressed ? 0.5 : 1
            }
            MouseArea { id: provinceArea; anchors.fill: parent; onClicked: root.controller.toggleProvinces() }
        }
    }

    Component {
        id: searchField
        Item {
            TextField {
                id: field
                objectName: "searchField"
                anchors { fill: parent; topMargin: 10; bottomMargin: 10 }
                text: root.controller.searchText
                font: Theme.font("OpenSans", 15)
                color: "#3a2a22"
                leftPadding: 12
                rightPadding: clear.visible ? 30 : 12
                placeholderText: qsTrId("sidemenu_search")
                Accessible.role: Accessible.EditableText
                Accessible.name: qsTrId("a11y_search_field")
                placeholderTextColor: "#a29476"
                background: Rectangle { radius: 6; color: "white" }
                property string previousText: text
                onTextEdited: {
                    root.controller.textFieldShouldChange(previousText, text)
                    root.controller.textFieldChanged(text)
                    previousText = text
                }
                onAccepted: focus = false
                Component.onCompleted: forceActiveFocus()
                // A drawn cross: no bundled font has one, and a system fallback would differ.
                Item {
                    id: clear
                    objectName: "clearSearchButton"
                    visible: field.text.length > 0
                    anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                    width: 14; height: 14
                    Accessible.role: Accessible.Button
                    Accessible.name: qsTrId("a11y_clear_search")
                    Accessible.onPressAction: clearText()
                    function clearText() { root.controller.textFieldShouldClear(); field.clear(); field.previousText = "" }
                    Repeater {
                        model: [45, -45]
                        Rectangle {
                            required property int modelData
                            anchors.centerIn: parent
                            width: 14; height: 2; radius: 1
                            rotation: modelData
                            color: "#a29476"
                        }
                    }
                    MouseArea {
                        anchors { fill: parent; margins: -8 }
                        onClicked: clear.clearText()
                    }
                }
                Connections {
                    target: root.controller
                    function onSearchFieldFocusRequested() { field.forceActiveFocus() }
                    function onSearchFieldFocusReleased() { field.focus = false }
                }
            }
        }
    }

    TabPages {
        id: pages
        anchors { top: parent.top; left: parent.left; right: parent.right; bottom: tabBar.top }
        controllers: root.controller ? root.controller.tabControllers : []
        currentIndex: root.controller ? root.controller.selectedTab : 0
    }

    Rectangle {
        id: tabBar
        objectName: "tabBar"
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: root.controller && !root.controller.tabBarHidden ? 44 : 0
        visible: height > 0
        color: Theme.colors.barTintColor
        Row {
            anchors.fill: parent
            Repeater {
                model: root.controller ? root.controller.tabTitles : []
                Item {
                    required property int index
                    required property string modelData
                    objectName: "tab-" + index
                    width: tabBar.width / Math.max(1, root.controller.tabTitles.length)
                    height: tabBar.height
                    Accessible.role: Accessible.PageTab
                    Accessible.name: qsTrId("a11y_tab").arg(modelData)
                    Accessible.selected: index === root.controller.selectedTab
                    Accessible.onPressAction: root.controller.selectedTab = index
                    Text {
                        anchors.centerIn: parent
                        text: modelData
                        font: Theme.fonts.tabFont
                        color: index === root.controller.selectedTab ? Theme.colors.tabTitleSelectedColor
                                                                     : Theme.colors.tabTitleColor
                    }
                    Rectangle {
                        visible: index === root.controller.selectedTab
                        anchors { bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
                        width: parent.width * 0.5; height: 3; radius: 1.5
                        color: "white"
                    }
                    MouseArea { anchors.fill: parent; onClicked: root.controller.selectedTab = index }
                }
            }
        }
    }
}
