#!/usr/bin/python3
"""A user who cannot see the screen, through the accessibility bus a screen reader reads.

Usage: blind_path.py TRANSLATIONS.ts
Drives the running app by AT-SPI actions alone (and typed keys where a user types): search, open
a place, come back, tick a filter, open My places; then the same kind of journey by the keyboard
alone. After each step, every object the reader is shown must lie in the window, and every one
that can be acted on must have a name.
"""
import subprocess
import sys
import time
import xml.etree.ElementTree as ET

import pyatspi
from gi.repository import GLib

TEXTS = {m.get("id"): m.findtext("translation") for m in ET.parse(sys.argv[1]).getroot().iter("message")}


def text(key):
    return TEXTS[key]


def fail(message):
    print("FAIL:", message)
    sys.exit(1)


def wait_for(what, find, timeout=8.0):
    end = time.time() + timeout
    while time.time() < end:
        try:
            found = find()
        except GLib.Error:  # an object left the tree while it was read: the screen is changing
            found = None
        if found:
            return found
        time.sleep(0.2)
    fail("waited in vain for " + what)


def application():
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == "Velmora":
            return app
    return None


def showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def actions(node):
    try:
        action = node.queryAction()
    except NotImplementedError:
        return []
    return [action.getName(i) for i in range(action.nActions)]


def act(node, name):
    action = node.queryAction()
    for i in range(action.nActions):
        if action.getName(i) == name:
            action.doAction(i)
            return
    fail(f"{node.getRoleName()} {node.name!r} offers no {name}")


def extents(node):
    try:
        return node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    except NotImplementedError:
        return None


def shown_nodes():
    """What a reader is shown: showing objects, depth first, in the tree's order."""
    app = application()
    out = []

    def walk(node, depth):
        if node is None or depth > 60:
            return
        try:
            if node is not app and not showing(node):
                return
            out.append(node)
            for child in node:
                walk(child, depth + 1)
        except GLib.Error:
            pass  # gone while it was read

    if app:
        walk(app, 0)
    return out


def find(role, name=None, where=None):
    for node in shown_nodes():
        if node.getRoleName() == role and (name is None or node.name == name) and (where is None or where(node)):
            return node
    return None


def check_tree(step):
    # Read once the screen has settled; a slide still under way replaces objects as they are read.
    for attempt in range(4):
        time.sleep(0.5)
        try:
            return check_tree_once(step)
        except GLib.Error:
            continue
    fail(step + ": the tree never settled")


def check_tree_once(step):
    nodes = shown_nodes()
    frame = next((n for n in nodes if n.getRoleName() == "frame"), None)
    if frame is None:
        fail(step + ": no window in the tree")
    window = extents(frame)
    for node in nodes[2:]:
        box = extents(node)
        if box is not None and box.width > 0 and box.height > 0:
            # A row cut by the list's edge is fine; one wholly outside is a ghost the user can't find.
            if box.x + box.width <= window.x or box.y + box.height <= window.y or box.x >= window.x + window.width \
                    or box.y >= window.y + window.height:
                fail(f"{step}: {node.getRoleName()} {node.name!r} is shown outside the window at {box.x},{box.y}")
        if ({"Press", "Toggle"} & set(actions(node))) and not node.name.strip():
            fail(f"{step}: an unnamed {node.getRoleName()} can be acted on")
    print(f"ok: {step} ({len(nodes)} objects shown)")


def keys(*names):
    subprocess.run(["xdotool", "key", "--delay", "80", *names], check=True)


def type_text(value):
    subprocess.run(["xdotool", "type", "--delay", "80", value], check=True)


def place_rows():
    rows = [n for n in shown_nodes() if n.getRoleName() == "list item" and "Press" in actions(n)]
    return sorted(rows, key=lambda n: extents(n).y)


def open_card_of(row):
    """Presses a place's row; the card shows its name and a way back."""
    place = row.name.split(". ")[0]
    act(row, "Press")
    wait_for("the card of " + place, lambda: find("push button", text("a11y_back")) and any(
        n.name == place for n in shown_nodes() if n.getRoleName() != "list item"))
    check_tree("the card of " + place)


wait_for("the app on the bus", application, 20)
wait_for("the place list", place_rows, 15)
check_tree("the place list")

# By the reader's actions.
act(find("push button", text("a11y_search")), "Press")
wait_for("the search field", lambda: find("text", text("a11y_search_field")))
type_text("casa")
wait_for("places matching the search", lambda: place_rows() and all("casa" in r.name.lower() for r in place_rows()[:3]))
check_tree("search results")
open_card_of(place_rows()[0])
act(find("push button", text("a11y_back")), "Press")
wait_for("the results again", place_rows)

act(find("push button", text("a11y_filter")), "Press")
box = wait_for("the filters", lambda: find("check box", where=lambda n: not n.getState().contains(pyatspi.STATE_CHECKED)))
ticked = box.name
act(box, "Toggle")
wait_for(ticked + " ticked", lambda: find("check box", ticked, lambda n: n.getState().contains(pyatspi.STATE_CHECKED)))
check_tree("the filters")
act(find("push button", text("filters_filter_action")), "Press")
wait_for("the filters closed", lambda: find("check box") is None)
act(wait_for("the search's cancel", lambda: find("push button", text("a11y_cancel"))), "Press")

act(wait_for("the menu button", lambda: find("push button", text("a11y_menu"))), "Press")
row = wait_for("My places in the menu", lambda: next((n for n in shown_nodes()
                                                       if n.name == text("sidemenu_myplaces") and "Press" in actions(n)), None))
check_tree("the menu")
act(row, "Press")
wait_for("My places", lambda: find("push button", text("myplaces_explore")))
wait_for("the screen's title as a heading", lambda: find("heading", text("myplaces_title")))
check_tree("My places")
act(find("push button", text("myplaces_explore")), "Press")
wait_for("the guide again", lambda: find("push button", text("a11y_search")))

# By the keyboard alone: Tab to the first place, Return opens it, Escape comes back.
wait_for("the places tab", lambda: find("page tab"))
act(find("page tab", where=lambda n: text("search_places") in n.name), "Press")
wait_for("the place list", place_rows)
first = place_rows()[0].name.split(". ")[0]
keys("Tab", "Tab", "Tab")
keys("Return")
wait_for("the card of " + first + " by the keyboard", lambda: find("push button", text("a11y_back")) and any(
    n.name == first for n in shown_nodes() if n.getRoleName() != "list item"))
keys("Escape")
wait_for("the list by the keyboard", lambda: find("push button", text("a11y_back")) is None and place_rows())
keys("ctrl+f")
wait_for("search by the keyboard", lambda: find("text", text("a11y_search_field"),
                                                 lambda n: n.getState().contains(pyatspi.STATE_FOCUSED)))
print("PASS")
