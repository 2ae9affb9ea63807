"""Drags with a real pointer, inside the window and out of it."""

import os
import pathlib
import shutil
import subprocess
import urllib.parse

from controls import CARD, FOLDER, TEXT
from program import ProgramCase
from wait import until

PARTNER_PLACE = (1515, 210)
ODD = "100% %20 ünï;#?"


def pointer(*command: object) -> None:
    subprocess.run(["xdotool", *map(str, command)], check=True, timeout=20)


class Drags(ProgramCase):
    def setUp(self) -> None:
        # Where the pointer rests on nothing that the next program shows.
        self.addCleanup(pointer, "mousemove", 2, 2)
        super().setUp()
        self.hits = self.home.vault / "SFX" / "Hits"
        self.home.add_sound(f"SFX/Hits/{ODD}.wav")

    def select(self, *names: str) -> tuple[int, int]:
        """Gives the place of the last card."""
        for name in names:
            place = self.window.find(CARD, name).place()
            pointer("mousemove", *place)
            if name != names[0]:
                pointer("keydown", "ctrl")
            pointer("click", 1)
            pointer("keyup", "ctrl")
            self.window.find(CARD, name, "selected")
        return place

    @staticmethod
    def pull(start: tuple[int, int], end: tuple[int, int], steps: int = 12) -> None:
        pointer("mousemove", *start, "mousedown", 1)
        for step in range(1, steps + 1):
            share = step / steps
            pointer("mousemove", *(round(a + (b - a) * share) for a, b in zip(start, end)), "sleep", "0.03")

    def partner(self, *files: pathlib.Path) -> subprocess.Popen:
        process = subprocess.Popen([os.environ["CRATEWELL_DRAG_PARTNER"], *files], stdout=subprocess.PIPE, text=True,
                                   env=os.environ | {"QT_QPA_PLATFORM": "xcb"})
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait, 20)
        self.addCleanup(process.terminate)
        self.assertEqual(process.stdout.readline(), "ready\n")
        return process

    def test_another_program_gets_every_path_as_a_copy(self) -> None:
        partner = self.partner()
        self.pull(self.select("Amber", "Boom", ODD), PARTNER_PLACE)
        pointer("mouseup", 1)
        lines = [partner.stdout.readline().rstrip("\n") for _ in range(4)]
        self.assertEqual(lines.pop(), "copy")
        given = {urllib.parse.unquote(urllib.parse.urlsplit(line).path) for line in lines}
        amber = self.home.vault / "Overlays" / "Light Leaks" / "Warm" / "Amber.png"
        self.assertEqual(given, {str(amber), str(self.hits / "Boom.wav"), str(self.hits / f"{ODD}.wav")})

        # The pointer has come back to life: the very next click counts.
        self.select("Noir")
        until(lambda: [card.name for card in self.window.all(CARD) if "selected" in card.states] == ["Noir"],
              "one card selected")

    def test_a_folder_from_another_program_is_copied_into_the_folder_in_view(self) -> None:
        pack = self.home.folder / "Desktop" / "Pack"
        (pack / "Low").mkdir(parents=True)
        shutil.copyfile(self.hits / "Boom.wav", pack / "Low" / "Thud.wav")
        self.window.find(FOLDER, "Hits").press()
        self.window.until_cards(ODD, "Boom", "Click")
        self.partner(pack)
        self.pull(PARTNER_PLACE, self.window.find(CARD, "Click").place())
        self.window.find(TEXT, "Copy into Hits")
        pointer("mouseup", 1)
        until((self.hits / "Pack" / "Low" / "Thud.wav").exists, "the copied folder")
        self.assertTrue((pack / "Low" / "Thud.wav").exists())

    def test_a_drag_outlives_its_card_ends_with_escape_and_moves_to_the_folder_it_is_dropped_on(self) -> None:
        folder = self.window.find(FOLDER, "SFX").place()
        self.pull(self.select("Click", "Boom"), folder)
        self.window.find(TEXT, "Move")
        (self.hits / "Boom.wav").unlink()
        self.window.until_gone(CARD, "Boom")
        pointer("key", "Escape")
        self.window.until_gone(TEXT, "Move")
        pointer("mouseup", 1)
        self.assertTrue((self.hits / "Click.wav").exists())

        self.pull(self.select("Click", ODD), folder)
        self.window.find(TEXT, "Move")
        pointer("mouseup", 1)
        for name in ("Click.wav", f"{ODD}.wav"):
            until((self.home.vault / "SFX" / name).exists, f"{name} in its new folder")
        self.assertEqual(list(self.hits.iterdir()), [])
