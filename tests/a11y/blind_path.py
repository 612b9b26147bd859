#!/usr/bin/python3
"""A user who cannot see the screen, and one who has no pointer, through the accessibility bus.

Usage: blind_path.py TRANSLATIONS.ts
First by a screen reader's actions alone (and typed keys where a user types): the drawer, search,
a place, its phone numbers, saving it, a cuisine filter, My places. Then the same journey by the
keyboard alone, read back through the bus. After each step every object the reader is shown must
lie in the window, every one that can be acted on must have a name, and while a drawer, panel or
sheet is open nothing of the screen it covers may be shown.
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


class Gone(Exception):
    """An object left the tree between being listed and being read: the screen is changing."""


def wait_for(what, find, timeout=8.0):
    end = time.time() + timeout
    while time.time() < end:
        try:
            found = find()
        except (GLib.Error, Gone):  # an object left the tree while it was read: the screen is changing
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
    if node is None:
        fail("nothing to " + name)
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


def top(node):
    box = extents(node)
    if box is None:
        raise Gone(node)
    return box.y


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
        except (GLib.Error, Gone):
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
    # A list's rows come in the order they stand, top to bottom, as a reader goes through them.
    rows = [top(n) for n in nodes if n.getRoleName() == "list item" and "Press" in actions(n)]
    if rows != sorted(rows):
        fail(f"{step}: a list's rows are read out of their order on screen: {rows}")
    print(f"ok: {step} ({len(nodes)} objects shown)")


def keys(*names):
    subprocess.run(["xdotool", "key", "--delay", "80", *names], check=True)


def type_text(value):
    subprocess.run(["xdotool", "type", "--delay", "80", value], check=True)


def place_rows():
    rows = [n for n in shown_nodes() if n.getRoleName() == "list item" and "Press" in actions(n)]
    return sorted(rows, key=top)


def open_card_of(row):
    """Presses a place's row; the card shows its name and a way back."""
    place = row.name.split(". ")[0]
    act(row, "Press")
    wait_for("the card of " + place, lambda: find("push button", text("a11y_back")) and any(
        n.name == place for n in shown_nodes() if n.getRoleName() != "list item"))
    check_tree("the card of " + place)


def all_nodes():
    """The whole tree, shown or not: what a reader can still reach by moving its focus."""
    out = []

    def walk(node, depth):
        if node is None or depth > 60:
            return
        try:
            out.append(node)
            for child in node:
                walk(child, depth + 1)
        except GLib.Error:
            pass

    walk(application(), 0)
    return out


def checked(node):
    return node.getState().contains(pyatspi.STATE_CHECKED)


def seen(where=False):
    """What the reader is shown now, by role and name, and where when asked: a sheet may have a
    button of the same name as one of the screen it covers."""
    def key(n):
        box = extents(n) if where else None
        return (n.getRoleName(), n.name) + ((box.x, box.y, box.width, box.height) if box else ())
    return {key(n) for n in shown_nodes()[2:] if n.name}


def check_covered(step, behind):
    """A modal's background leaves the tree: nothing shown before it opened is shown now."""
    still = seen(len(next(iter(behind), ())) > 2) & behind
    if still:
        fail(f"{step}: the covered screen is still read: {sorted(still)[:5]}")
    print(f"ok: {step} covers what is behind it")


def focused():
    found = [n for n in shown_nodes() if n.getState().contains(pyatspi.STATE_FOCUSED)]
    return found[-1] if found else None


def tab_until(what, matches, limit=40):
    """Tab, as a keyboard user does, until the object with the keys is the one wanted."""
    visited = []
    for _ in range(limit):
        keys("Tab")
        time.sleep(0.15)
        try:
            node = focused()
            if node is not None and matches(node):
                return node
            visited.append(f"{node.getRoleName()} {node.name!r}" if node is not None else "nothing")
        except GLib.Error:
            pass
    fail(f"Tab never reached {what}; it went to: {', '.join(visited[:12])}")


def is_(role, name=None, where=None):
    return lambda n: n.getRoleName() == role and (name is None or n.name == name) and (where is None or where(n))


def card_of(place):
    return lambda: find("push button", text("a11y_back")) and find("heading", place)


wait_for("the app on the bus", application, 20)
wait_for("the place list", place_rows, 15)
check_tree("the place list")

# ---- By the reader's actions ----
behind = seen()
act(find("push button", text("a11y_menu")), "Press")
wait_for("the menu", lambda: find("list", text("a11y_menu_list")))
check_tree("the menu")
check_covered("the menu", behind)
act(wait_for("Search in the menu", lambda: find("list item", text("sidemenu_search"))), "Press")
wait_for("the menu closed", lambda: find("list", text("a11y_menu_list")) is None and find("push button", text("a11y_search")))

act(find("push button", text("a11y_search")), "Press")
wait_for("the search field", lambda: find("text", text("a11y_search_field")))
type_text("casa")
wait_for("places matching the search", lambda: place_rows() and all("casa" in r.name.lower() for r in place_rows()[:3]))
check_tree("search results")
# The first place that has a phone number.
for index in range(len(wait_for("the results", place_rows))):
    row = wait_for("the results", place_rows)[index]
    saved = row.name.split(". ")[0]
    open_card_of(row)
    time.sleep(0.5)
    if find("push button", text("lugar_make_a_call")):
        break
    act(find("push button", text("a11y_back")), "Press")
    wait_for("the results again", lambda: find("heading", saved) is None and place_rows())

behind = seen(where=True)
act(find("push button", text("lugar_make_a_call")), "Press")
cancel = wait_for("the phone numbers", lambda: find("push button", text("phones_cancel")))
check_tree("the phone numbers")
check_covered("the phone numbers", behind)
act(cancel, "Press")
wait_for("the card again", lambda: find("push button", text("phones_cancel")) is None and card_of(saved)())

# Saving: the row lies below the fold; the reader's focus brings it into view.
save = wait_for("the save row", lambda: next((n for n in all_nodes() if n.getRoleName() == "push button"
                                               and n.name == text("lugar_add_to_my_places")), None))
act(save, "SetFocus")
wait_for("the save row in view", lambda: find("push button", text("lugar_add_to_my_places"))
         and find("push button", text("a11y_dim")) is None)
behind = seen(where=True)
act(find("push button", text("lugar_add_to_my_places")), "Press")
box = wait_for("the save sheet", lambda: find("check box", text("save_myplaces_favorite")))
check_covered("the save sheet", behind)
if not checked(box):
    act(box, "Toggle")
wait_for("favourite ticked", lambda: find("check box", text("save_myplaces_favorite"), checked))
check_tree("the save sheet")
act(wait_for("the save button", lambda: find("push button", text("save_myplaces_done"))), "Press")
wait_for("the sheet closed", lambda: find("check box") is None and card_of(saved)())
act(find("push button", text("a11y_back")), "Press")
wait_for("the results again", lambda: find("heading", saved) is None and place_rows())

behind = seen(where=True)
act(find("push button", text("a11y_filter")), "Press")
act(wait_for("the cuisine page", lambda: find("page tab", text("filters_page_cuisines"))), "Press")
wait_for("the cuisine page chosen", lambda: find("page tab", text("filters_page_cuisines"),
                                                 lambda n: n.getState().contains(pyatspi.STATE_SELECTED)))
box = wait_for("a cuisine", lambda: find("check box", where=lambda n: not checked(n)))
cuisine = box.name
act(box, "Toggle")
wait_for(cuisine + " ticked", lambda: find("check box", cuisine, checked))
check_tree("the filters")
check_covered("the filters", behind)
act(find("push button", text("filters_filter_action")), "Press")
wait_for("the filters closed", lambda: find("check box") is None and place_rows())
act(wait_for("the search's cancel", lambda: find("push button", text("a11y_cancel"))), "Press")

act(wait_for("the menu button", lambda: find("push button", text("a11y_menu"))), "Press")
act(wait_for("My places in the menu", lambda: find("list item", text("sidemenu_myplaces"))), "Press")
wait_for("the screen's title as a heading", lambda: find("heading", text("myplaces_title")))
wait_for(saved + " among the favourites", lambda: any(r.name.startswith(saved + ".") for r in place_rows()))
check_tree("My places")
print("ok: the reader's journey")

# ---- By the keyboard alone ----
keys("ctrl+f")
wait_for("search by the keyboard", lambda: find("text", text("a11y_search_field"),
                                                 lambda n: n.getState().contains(pyatspi.STATE_FOCUSED)))
keys("ctrl+a")  # the last search is kept; typing replaces it
type_text("bar")
wait_for("places matching", lambda: place_rows() and all("bar" in r.name.lower() for r in place_rows()[:3]))
row = tab_until("a place", is_("list item", where=lambda n: "Press" in actions(n)))
place = row.name.split(". ")[0]
keys("Return")
wait_for("the card of " + place + " by the keyboard", card_of(place))
check_tree("the card by the keyboard")

tab_until("the call button", is_("push button", text("lugar_make_a_call")))
keys("Return")
wait_for("the phone numbers by the keyboard", lambda: find("push button", text("phones_cancel")))
inside = tab_until("a control of the sheet", lambda n: True)
if inside.name not in {text("phones_cancel"), text("a11y_dim")} and not inside.name.strip().replace(" ", "").isdigit():
    fail("Tab left the phone sheet for " + inside.name)
keys("Escape")
wait_for("the sheet closed by Escape", lambda: find("push button", text("phones_cancel")) is None and card_of(place)())

tab_until("the save row", is_("push button", text("lugar_add_to_my_places")))
keys("Return")
wait_for("the save sheet by the keyboard", lambda: find("check box", text("save_myplaces_visited")))
box = tab_until("Visited", is_("check box", text("save_myplaces_visited")))
visited = checked(box)
keys("space")
wait_for("Visited changed by Space", lambda: find("check box", text("save_myplaces_visited"), lambda n: checked(n) != visited))
tab_until("the save button", is_("push button", text("save_myplaces_done")))
keys("Return")
wait_for("the sheet closed", lambda: find("check box") is None and card_of(place)())
keys("Escape")
wait_for("the results by Escape", lambda: find("heading", place) is None and place_rows())

tab_until("the filters button", is_("push button", text("a11y_filter")))
keys("Return")
wait_for("the filters by the keyboard", lambda: find("page tab", text("filters_page_cuisines")))
keys("Left", "Left")  # to the first page, wherever the panel was left
wait_for("Left turns to the areas", lambda: find("page tab", text("filters_page_location"),
                                                 lambda n: n.getState().contains(pyatspi.STATE_SELECTED)))
keys("Right")
wait_for("Right turns to the cuisines", lambda: find("page tab", text("filters_page_cuisines"),
                                                     lambda n: n.getState().contains(pyatspi.STATE_SELECTED)))
box = tab_until("a cuisine", is_("check box", where=lambda n: n.name != text("filters_row_all")))
cuisine, was = box.name, checked(box)
keys("space")
wait_for(cuisine + " changed by Space", lambda: find("check box", cuisine, lambda n: checked(n) != was))
tab_until("Show places", is_("push button", text("filters_filter_action")))
keys("Return")
wait_for("the filters closed by the keyboard", lambda: find("check box") is None and place_rows())
keys("Escape")
wait_for("search left by Escape", lambda: find("push button", text("a11y_cancel")) is None)

tab_until("the menu button", is_("push button", text("a11y_menu")))
keys("Return")
wait_for("the menu by the keyboard", lambda: find("list", text("a11y_menu_list")))
tab_until("My places", is_("list item", text("sidemenu_myplaces")))
keys("Return")
wait_for("My places by the keyboard", lambda: find("heading", text("myplaces_title")))
tab_until("the Visited list", is_("page tab", where=lambda n: n.name.startswith(text("myplaces_visited"))))
keys("Return")
wait_for(place + " among the visited" if not visited else "the visited list without " + place,
         lambda: any(r.name.startswith(place + ".") for r in place_rows()) != visited)
check_tree("My places by the keyboard")
print("PASS")
