import QtQuick
import Velmora

// A short note near the bottom edge that fades away after two seconds.
Rectangle {
    id: toast
    property alias text: label.text
    function show() { opacity = 1; timer.restart() }

    anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 32 }
    width: Math.min(parent.width - 48, label.implicitWidth + 32)
    height: label.implicitHeight + 20
    radius: height / 2
    color: "#e6332a22"
    opacity: 0
    visible: opacity > 0
    z: 10
    Accessible.role: Accessible.AlertMessage
    Accessible.name: label.text
    Behavior on opacity { NumberAnimation { duration: 200 } }
    Text {
        id: label
        anchors.centerIn: parent
        width: Math.min(implicitWidth, toast.parent ? toast.parent.width - 80 : implicitWidth)
        font: Theme.font("OpenSans-Semibold", 14)
        color: "white"
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
    Timer { id: timer; interval: 2000; onTriggered: toast.opacity = 0 }
}
