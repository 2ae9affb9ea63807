"""Every control has a name and can be driven without a pointer, up to the insert."""

import json
import subprocess

from controls import ALERT, BUTTON, CARD, FIELD, FOLDER, HEADING, MENU_ITEM, SLIDER, TAB, TEXT
from program import BY_NAME, END_SECONDS, STAND_IN, ProgramCase
from wait import until

PRESSED = {BUTTON, CARD, FOLDER, MENU_ITEM, TAB, "check box", "radio button", "toggle button", "combo box"}


class Controls(ProgramCase):
    def faults(self) -> list[str]:
        """What a person who only hears the window could not use."""
        found = []
        for control in self.window.controls():
            if control.role in PRESSED and "Press" not in control.actions():
                found.append(f"{control}: cannot be pressed")
            named = control.role in PRESSED | {FIELD, SLIDER, HEADING, ALERT} or "focused" in control.states
            if named and not control.name.strip():
                found.append(f"{control} at {control.place()}: no name")
        return found

    def test_every_control_is_named_and_can_be_driven(self) -> None:
        self.window.find(FIELD, "Search the vault").write("warm")
        self.window.until_cards("Amber")
        self.window.find(CARD, "Amber").press()
        self.window.find(CARD, "Amber", "selected")
        self.window.find(BUTTON, "Insert at Playhead")
        self.assertEqual(self.faults(), [])
        self.window.find(BUTTON, "Clear").press()
        self.window.until_cards(*BY_NAME)
        self.window.find(BUTTON, "Show or hide the preview", "checked").press()
        self.window.until_gone(BUTTON, "Insert at Playhead")
        self.window.find(BUTTON, "Keep Cratewell above your editor").press()
        self.window.find(BUTTON, "Keep Cratewell above your editor", "checked")

        self.window.find(BUTTON, "Menu").press()
        self.window.find(MENU_ITEM, "Quit")
        self.assertEqual(self.faults(), [])
        self.window.find(MENU_ITEM, "Settings…").press()
        for title in ("Look", "Library", "Preview", "Integrations"):
            self.window.find(TAB, title).press()
            self.window.find(TAB, title, "selected")
            self.assertEqual(self.faults(), [])

    def test_an_insert_lands_on_the_timeline_and_is_announced(self) -> None:
        tool = ["/usr/bin/python3", str(STAND_IN / "resolve.py")]
        subprocess.run([*tool, "new", str(self.home.project_file)], check=True, timeout=END_SECONDS)
        editor = subprocess.Popen([*tool, "start", str(self.home.folder)])
        self.addCleanup(editor.wait, END_SECONDS)
        self.addCleanup(editor.terminate)
        until(lambda: self.window.find(TEXT, "Resolve").node.get_description() == "Running", "Resolve is noticed")
        self.window.find(CARD, "Amber").press()
        self.window.find(TEXT, "Goes to DaVinci Resolve at the playhead on a new top track, Screen blend.")
        self.window.find(BUTTON, "Insert at Playhead").press()
        self.window.find(ALERT, "Inserted Amber on V2 at 01:00:10:12")
        tracks = json.loads(self.home.project_file.read_text())["project"]["timelines"][0]["video"]
        placed = [(item["name"], item["start"], item["composite"]) for item in tracks[1]["items"]]
        self.assertEqual(placed, [("Amber.png", (3600 + 10) * 24 + 12, 5)])
