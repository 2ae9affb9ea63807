"""Every control is named as it is shown, and does what it is pressed for."""

import json
from collections import Counter

from case import BY_NAME, ProgramCase
from controls import ALERT, BUTTON, CARD, FIELD, FOLDER, HEADING, MENU_ITEM, SLIDER, TAB, TEXT, Control
from program import stand_in_resolve
from wait import until

# Buttons that show a text, which is their name; what a text stands for may be told beside it.
TEXT_BUTTONS = ["All Assets", "Favorites", "Recently Inserted", "Import", "Trash", "Premiere panel",
                "Resolve panel", "New Folder", "Import", "Name", "Insert at Playhead"]
# Buttons that show a symbol only: their name is the help that shows when the pointer rests on them.
SYMBOL_BUTTONS = ["Close", "Minimize", "Maximize", "Menu", "New folder in Overlays", "New folder in LUTs",
                  "New folder in SFX", "Keep Cratewell above your editor", "Open the vault in Finder",
                  "Customize Cratewell", "Show or hide the preview", "Add to Favorites", "Clear"]
# Arrows of the folder trees; they show no text at all and are named by what they do.
ARROWS = ["Collapse Overlays", "Expand Light Leaks", "Collapse SFX"]
COMMANDS = ["New Folder", "Import Assets…", "Insert at Playhead", "Play / Pause Preview", "Reveal in Finder",
            "Toggle Favorite", "New Folder with Selection…", "Move to Trash", "Select All", "Settings…",
            "Quit"]
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
            found.append(f"{control}: a role nothing is known of")
        driven = control.role in DRIVEN_BY or control.role == FIELD or set(control.actions) - {"SetFocus"}
        if driven and not control.name.strip():
            found.append(f"{control} at {control.place()}: no name")
        if control.role in DRIVEN_BY and DRIVEN_BY[control.role] not in control.actions:
            found.append(f"{control}: cannot be driven")
        if control.role == SLIDER and "Value" not in control.interfaces:
            found.append(f"{control}: has no value")
        if control.role == FIELD and "EditableText" not in control.interfaces:
            found.append(f"{control}: takes no text")
        if "focused" in control.states and not control.name.strip():
            found.append(f"{control} at {control.place()}: has the keyboard and no name")
    return found


class Names(ProgramCase):
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
        self.assertEqual(named(CARD), Counter(["Boom", "Click"]))
        self.assertEqual(named(FIELD), Counter(["Search the vault"]))
        self.assertEqual(named(SLIDER), Counter(["Card size"]))
        disabled = {control.name for control in controls
                    if control.role == BUTTON and "sensitive" not in control.states}
        self.assertEqual(disabled, set())

    def test_symbols_show_their_name_as_help(self) -> None:
        self.window.find(FIELD, "Search the vault").write("hits")
        self.window.find(CARD, "Boom").press()
        for name in SYMBOL_BUTTONS:
            button = self.window.find(BUTTON, name)
            with self.subTest(name):
                button.hover()
                if "sensitive" in button.states:
                    self.window.find(TEXT, name)

    def test_menus_and_settings_are_named_and_can_be_driven(self) -> None:
        self.window.find(CARD, "Boom").press()
        self.window.find(BUTTON, "Menu").press()
        self.window.find(MENU_ITEM, "Quit")
        items = self.window.all(MENU_ITEM)
        self.assertEqual(faults(self.window.controls()), [])
        self.assertEqual([item.name for item in items], COMMANDS)
        self.assertEqual({item.name for item in items if "sensitive" not in item.states}, set())
        self.window.find(MENU_ITEM, "Settings…").press()
        for title in ("Look", "Library", "Preview", "Integrations"):
            self.window.find(TAB, title).press()
            self.window.find(TAB, title, "selected")
        self.assertEqual(faults(self.window.controls()), [])


class Presses(ProgramCase):
    def test_sidebar_rows_choose_what_the_grid_shows(self) -> None:
        self.window.find(FOLDER, "SFX").press()
        self.window.until_cards("Boom", "Click")
        self.window.find(HEADING, "SFX")
        self.window.find(TEXT, "2 assets")
        self.window.find(FOLDER, "Light Leaks", "collapsed")
        self.window.find(BUTTON, "Expand Light Leaks").press()
        self.window.find(FOLDER, "Light Leaks", "expanded")
        self.window.find(FOLDER, "Warm").press()
        self.window.until_cards("Amber")
        self.window.find(BUTTON, "Trash").press()
        self.window.find(HEADING, "Trash")
        self.window.until_cards()
        self.window.find(BUTTON, "All Assets").press()
        self.window.until_cards(*BY_NAME)

    def test_a_favorite_is_stored(self) -> None:
        self.window.find(CARD, "Noir").press()
        self.window.find(CARD, "Noir", "selected")
        self.window.find(BUTTON, "Add to Favorites").press()
        self.window.find(BUTTON, "Remove from Favorites")
        stored = [str(self.home.vault / "LUTs" / "Noir.cube")]
        until(lambda: self.home.settings().get("favorites") == stored, "the favorite in the settings file")
        self.window.find(BUTTON, "Favorites").press()
        self.window.until_cards("Noir")

    def test_menus_carry_out_their_commands(self) -> None:
        self.window.find(BUTTON, "Name").press()
        self.window.find(MENU_ITEM, "Size").press()
        self.window.find(BUTTON, "Size")
        self.window.until_gone(MENU_ITEM, "Size")
        until(lambda: self.window.cards()[:2] == ["Boom", "Click"], "the largest first")
        self.window.find(BUTTON, "Menu").press()
        self.window.find(MENU_ITEM, "Select All").press()
        until(lambda: sum("selected" in card.states for card in self.window.all(CARD)) == len(BY_NAME),
              "all cards selected")

    def test_search_takes_text(self) -> None:
        field = self.window.find(FIELD, "Search the vault")
        field.write("warm")
        self.window.until_cards("Amber")
        self.window.find(TEXT, "1 assets")
        field.write("hits")
        self.assertEqual(field.text(), "hits")
        self.window.until_cards("Boom", "Click")
        self.window.find(BUTTON, "Clear").press()
        self.window.until_cards(*BY_NAME)
        self.assertEqual(field.text(), "")

    def test_the_card_size_takes_values_and_steps(self) -> None:
        slider = self.window.find(SLIDER, "Card size")
        slider.set_value(260)
        until(lambda: self.home.settings().get("cardSize") == 260, "the card size in the settings file")
        slider.act("Increase")
        until(lambda: self.home.settings().get("cardSize") == 261, "one step more in the settings file")
        self.assertEqual(slider.value(), 261)

    def test_buttons_show_their_state(self) -> None:
        self.window.find(BUTTON, "Show or hide the preview", "checked").press()
        self.window.until_gone(TEXT, "Nothing selected")
        self.assertNotIn("checked", self.window.find(BUTTON, "Show or hide the preview").states)
        self.window.find(BUTTON, "Keep Cratewell above your editor").press()
        self.window.find(BUTTON, "Keep Cratewell above your editor", "checked")
        until(lambda: self.home.settings().get("pinned") is True, "the pin in the settings file")

    def test_insert_lands_on_the_timeline_and_is_told(self) -> None:
        with stand_in_resolve(self.home):
            until(lambda: self.window.find(TEXT, "Resolve").description == "Running", "Resolve is noticed")
            self.window.find(CARD, "Amber").press()
            button = self.window.find(BUTTON, "Insert at Playhead")
            self.assertIn("Resolve", button.description)
            button.press()
            self.window.find(ALERT, "Inserted Amber on V2 at 01:00:10:12")
        tracks = json.loads(self.home.project_file.read_text())["project"]["timelines"][0]["video"]
        self.assertEqual([[item["name"] for item in track["items"]] for track in tracks], [[], ["Amber.png"]])
