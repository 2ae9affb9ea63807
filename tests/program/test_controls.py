"""Every control is named as it is shown, and does what it is pressed for."""

import json
from collections import Counter

from case import BY_NAME, ProgramCase
from controls import ALERT, BUTTON, CARD, FIELD, FOLDER, HEADING, MENU_ITEM, SLIDER, TAB, TEXT, Control
from program import stand_in_resolve
from wait import until

# Buttons that show a text, which is their name; more may be said beside it.
TEXT_BUTTONS = ["All Assets", "Favorites", "Recently Inserted", "Import", "Trash", "Premiere panel",
                "Resolve panel", "New Folder", "Import", "Name", "Insert at Playhead"]
# Buttons that show a symbol only: their name is the help that shows when the pointer rests on them.
SYMBOL_BUTTONS = ["Close", "Minimize", "Maximize", "Menu", "New folder in Overlays", "New folder in LUTs",
                  "New folder in SFX", "Keep Cratewell above your editor", "Open the vault in Finder",
                  "Customize Cratewell", "Show or hide the preview", "Add to Favorites", "Clear"]
# Arrows of the folder trees; they show no text at all and are named by what they do.
ARROWS = ["Collapse Overlays", "Expand Light Leaks", "Collapse SFX"]
# What a control of each role must offer to be driven.
DRIVEN_BY = {BUTTON: "Press", CARD: "Press", FOLDER: "Press", MENU_ITEM: "Press", TAB: "Press",
             SLIDER: "Increase", "check box": "Press", "radio button": "Press", "toggle button": "Press",
             "combo box": "Press", "spin button": "Increase"}
SILENT = {"application", "frame", "filler", "panel", "image", HEADING, ALERT, TEXT, "list", "tree",
          "popup menu", "separator", "page tab list", "dialog", "tool tip"}


def faults(controls: list[Control]) -> list[str]:
    """What a person who only hears these controls could not use."""
    found = []
    for control in controls:
        if control.role not in SILENT | DRIVEN_BY.keys() | {FIELD}:
            found.append(f"{control}: an unknown role")
        driven = control.role in DRIVEN_BY or control.role == FIELD or set(control.actions) - {"SetFocus"}
        if (driven or "focused" in control.states) and not control.name.strip():
            found.append(f"{control} at {control.place()}: no name")
        if control.role in DRIVEN_BY and DRIVEN_BY[control.role] not in control.actions:
            found.append(f"{control}: cannot be driven")
        if control.role == SLIDER and "Value" not in control.interfaces:
            found.append(f"{control}: has no value")
        if control.role == FIELD and "EditableText" not in control.interfaces:
            found.append(f"{control}: takes no text")
    return found


class Controls(ProgramCase):
    def test_every_control_is_named_and_can_be_driven(self) -> None:
        self.window.find(FIELD, "Search the vault").write("hits")
        self.window.until_cards("Boom", "Click")
        self.window.find(CARD, "Boom").press()
        self.window.find(BUTTON, "Insert at Playhead")
        controls = self.window.controls()
        self.assertEqual(faults(controls), [])

        def named(role: str) -> Counter:
            return Counter(control.name for control in controls if control.role == role)

        self.assertEqual(named(BUTTON), Counter(TEXT_BUTTONS + SYMBOL_BUTTONS + ARROWS))
        self.assertEqual(named(FOLDER), Counter(["Overlays", "Light Leaks", "LUTs", "SFX", "Hits"]))
        self.assertEqual(named(FIELD), Counter(["Search the vault"]))
        self.assertEqual(named(SLIDER), Counter(["Card size"]))
        disabled = {control.name for control in controls
                    if control.role == BUTTON and "sensitive" not in control.states}
        self.assertEqual(disabled, set())
        for name in SYMBOL_BUTTONS:
            with self.subTest(name):
                self.window.find(BUTTON, name).hover()
                self.window.find(TEXT, name)

        self.window.find(BUTTON, "Menu").press()
        self.window.find(MENU_ITEM, "Quit")
        self.assertEqual(faults(self.window.controls()), [])
        self.window.find(MENU_ITEM, "Settings…").press()
        for title in ("Look", "Library", "Preview", "Integrations"):
            self.window.find(TAB, title).press()
            self.window.find(TAB, title, "selected")
        self.assertEqual(faults(self.window.controls()), [])

    def test_controls_do_what_they_are_driven_to(self) -> None:
        def stores(key: str, value: object) -> None:
            until(lambda: self.home.settings().get(key) == value, f"{key} in the settings file")

        field = self.window.find(FIELD, "Search the vault")
        field.write("warm")
        self.window.until_cards("Amber")
        self.window.find(BUTTON, "Clear").press()
        self.window.until_cards(*BY_NAME)
        self.assertEqual(field.text(), "")
        self.window.find(CARD, "Noir").press()
        self.window.find(CARD, "Noir", "selected")
        self.window.find(BUTTON, "Add to Favorites").press()
        stores("favorites", [str(self.home.vault / "LUTs" / "Noir.cube")])
        slider = self.window.find(SLIDER, "Card size")
        slider.set_value(260)
        stores("cardSize", 260)
        slider.act("Increase")
        stores("cardSize", 261)
        self.assertEqual(slider.value(), 261)
        self.window.find(BUTTON, "Show or hide the preview", "checked").press()
        self.window.until_gone(BUTTON, "Insert at Playhead")
        self.assertNotIn("checked", self.window.find(BUTTON, "Show or hide the preview").states)
        self.window.find(BUTTON, "Keep Cratewell above your editor").press()
        self.window.find(BUTTON, "Keep Cratewell above your editor", "checked")
        stores("pinned", True)

    def test_an_insert_lands_on_the_timeline_and_is_announced(self) -> None:
        with stand_in_resolve(self.home):
            until(lambda: self.window.find(TEXT, "Resolve").description == "Running", "Resolve is noticed")
            self.window.find(CARD, "Amber").press()
            self.window.find(BUTTON, "Insert at Playhead").press()
            self.window.find(ALERT, "Inserted Amber on V2 at 01:00:10:12")
        tracks = json.loads(self.home.project_file.read_text())["project"]["timelines"][0]["video"]
        self.assertEqual([[item["name"] for item in track["items"]] for track in tracks], [[], ["Amber.png"]])
