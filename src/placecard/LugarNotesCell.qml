import QtQuick
import QtQuick.Controls.Basic
import Velmora

// The private note on a place: one paragraph, kept when editing ends. The return key ends the
// editing instead of breaking the line; the placeholder names the place while the note is empty.
Item {
    id: cell
    objectName: "lugarNotesCell"
    required property var entry
    required property LugarTableViewController controller
    height: Math.max(96, note.implicitHeight + 36)

    Rectangle {
        anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
        color: "white"
        radius: 6
        Text {
            objectName: "lugarNotesPlaceholder"
            anchors { left: parent.left; leftMargin: 16; right: parent.right; rightMargin: 16; top: parent.top; topMargin: 16 }
            visible: cell.controller ? cell.controller.notePlaceholderVisible : false
            text: cell.entry.placeholder
            font: Theme.font("OpenSans-Semibold", 12)
            color: "#b2a489"
            wrapMode: Text.Wrap
        }
        TextArea {
            id: note
            objectName: "lugarNotes"
            // The whole box is the field: a tap below the first line starts editing too.
            anchors { fill: parent; leftMargin: 8; rightMargin: 8; topMargin: 6; bottomMargin: 6 }
            text: cell.controller ? cell.controller.noteText : ""
            font: Theme.font("OpenSans", 15)
            color: "#3a2a22"
            wrapMode: TextEdit.Wrap
            background: null
            Accessible.name: cell.entry.placeholder
            onActiveFocusChanged: {
                if (!cell.controller)
                    return
                if (activeFocus)
                    cell.controller.textViewDidBeginEditing()
                else
                    cell.controller.textViewDidEndEditing(text)
            }
            // Tab leaves the note for the next control, as in any form; it never types a tab.
            function leave(forward) {
                const next = note.nextItemInFocusChain(forward)
                if (next && next !== note)
                    next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason)
                else
                    note.focus = false
            }
            Keys.onTabPressed: (event) => { leave(true); event.accepted = true }
            Keys.onBacktabPressed: (event) => { leave(false); event.accepted = true }
            Keys.onPressed: (event) => {
                if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                        && !cell.controller.textViewShouldChangeText("\n"))
                    event.accepted = true
            }
            Connections {
                target: cell.controller
                function onNoteEditingShouldEnd() { note.focus = false }
            }
        }
    }
}
