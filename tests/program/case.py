from __future__ import annotations

import contextlib
import json
import unittest

from program import Home, Program, made_home

BY_NAME = ("Amber", "Boom", "Click", "Noir", "Prism")


def fill(home: Home) -> None:
    """Five assets; no starter folders, so that every row of the sidebar is in view."""
    home.add_picture("Overlays/Light Leaks/Warm/Amber.png")
    home.add_picture("Overlays/Light Leaks/Prism.png", b"\x40\x60\xff")
    home.path("LUTs/Noir.cube").write_text("LUT_3D_SIZE 2\n" + "0 0 0\n" * 8)
    home.add_sound("SFX/Hits/Boom.wav", 9600)
    home.add_sound("SFX/Hits/Click.wav", 480)
    home.settings_file.parent.mkdir(parents=True)
    home.settings_file.write_text(json.dumps({f"seeded.{home.vault}.{name}": True
                                              for name in ("overlays", "luts", "sfx")}))


class ProgramCase(unittest.TestCase):
    """The program on a small vault, sorted by name. At the end of each test it has to end well."""

    def setUp(self) -> None:
        stack = self.enterContext(contextlib.ExitStack())
        self.home = stack.enter_context(made_home())
        fill(self.home)
        self.start()
        stack.callback(self.finish)
        self.window.find("push button", "Added").press()
        self.window.find("menu item", "Name").press()
        self.window.until_gone("menu item", "Name")
        self.window.until_cards(*BY_NAME)

    def start(self) -> None:
        self.program = Program(self.home)

    def finish(self) -> None:
        code = self.program.end()
        self.assertEqual(self.program.complaints(), [], self.program.log())
        self.assertEqual(code, 0, self.program.log())

    @property
    def window(self):
        return self.program.window
