"""The real program in a home of its own."""

from __future__ import annotations

import base64
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import wave

from controls import Window

STAND_IN = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "standin_resolve"
END_SECONDS = 30
# One gray pixel.
PICTURE = base64.b64decode("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5E"
                           "rkJggg==")
BY_NAME = ("Amber", "Boom", "Click", "Noir", "Prism")


class Home:
    """With a vault of five assets; no starter folders, so that every row of the sidebar is in view."""

    def __init__(self, folder: str):
        self.folder = pathlib.Path(folder)
        self.vault = self.folder / "Movies" / "Cratewell Vault"
        self.settings_file = self.folder / ".config" / "cratewell" / "defaults.json"
        self.project_file = self.folder / "project.json"
        for name in ("Overlays/Light Leaks/Warm", "LUTs", "SFX/Hits"):
            (self.vault / name).mkdir(parents=True)
        for name in ("Warm/Amber.png", "Prism.png"):
            (self.vault / "Overlays" / "Light Leaks" / name).write_bytes(PICTURE)
        (self.vault / "LUTs" / "Noir.cube").write_text("LUT_3D_SIZE 2\n" + "0 0 0\n" * 8)
        for name in ("Boom", "Click"):
            self.add_sound(f"SFX/Hits/{name}.wav")
        self.settings_file.parent.mkdir(parents=True)
        self.settings_file.write_text(json.dumps({f"seeded.{self.vault}.{name}": True
                                                  for name in ("overlays", "luts", "sfx")}))

    def add_sound(self, name: str) -> None:
        with wave.open(str(self.vault / name), "wb") as sound:
            sound.setparams((1, 2, 48000, 0, "NONE", ""))
            sound.writeframes(bytes(9600))

    def settings(self) -> dict:
        """What is stored now; the file is replaced whole, so it can be read at any time."""
        return json.loads(self.settings_file.read_text())

    def environment(self) -> dict[str, str]:
        return os.environ | {
            "HOME": str(self.folder),
            "QT_QPA_PLATFORM": "xcb",
            "QT_QUICK_BACKEND": "software",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_FORCE_STDERR_LOGGING": "1",
            "PYTHONPATH": str(STAND_IN),
            "CRATEWELL_STANDIN_PROJECT": str(self.project_file),
        }


class Program:
    """One run of it."""

    def __init__(self, home: Home, **variables: str):
        self._log = tempfile.TemporaryFile("w+", errors="replace")
        self._process = subprocess.Popen([os.environ["CRATEWELL_PROGRAM"]], env=home.environment() | variables,
                                         stdin=subprocess.DEVNULL, stdout=self._log, stderr=self._log)
        try:
            self.window = Window(self._process.pid, lambda: self._process.poll() is None)
        except BaseException:
            self.kill()
            print(self.log(), file=sys.stderr)
            raise

    def log(self) -> str:
        self._log.seek(0)
        return self._log.read()

    def complaints(self) -> list[str]:
        """Of the views and of the sanitizers."""
        return [line for line in self.log().splitlines() if "qrc:" in line or "ERROR:" in line
                or "runtime error:" in line]

    def end(self) -> int:
        """As at the end of a session; gives the exit code."""
        self._process.terminate()
        try:
            return self._process.wait(END_SECONDS)
        finally:
            self.kill()

    def kill(self) -> None:
        """At once: it can save nothing more."""
        self._process.kill()
        self._process.wait()


class HomeCase(unittest.TestCase):
    def setUp(self) -> None:
        self.home = Home(self.enterContext(tempfile.TemporaryDirectory(prefix="home-")))

    def start(self, **variables: str) -> None:
        """The program, which has to end well at the end of the test unless it is killed before."""
        self.program = Program(self.home, **variables)
        self.window = self.program.window

    def finish(self) -> None:
        code = self.program.end()
        self.assertEqual((code, self.program.complaints()), (0, []), self.program.log())


class ProgramCase(HomeCase):
    """The program on its vault, sorted by name."""

    def setUp(self) -> None:
        super().setUp()
        self.start()
        self.addCleanup(self.finish)
        self.window.find("push button", "Added").press()
        self.window.find("menu item", "Name").press()
        self.window.until_gone("menu item", "Name")
        self.window.until_cards(*BY_NAME)
