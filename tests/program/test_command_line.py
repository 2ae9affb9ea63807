"""What the program does for those who start it by hand or without a person."""

import os
import pathlib
import struct
import subprocess

from program import HomeCase
from wait import until

START_SECONDS = 60


def run(*arguments: str) -> subprocess.CompletedProcess:
    return subprocess.run([os.environ["CRATEWELL_PROGRAM"], *arguments], capture_output=True, text=True,
                          timeout=START_SECONDS)


def png_size(file: pathlib.Path) -> tuple[int, int]:
    head = file.read_bytes()[:24]
    assert head.startswith(b"\x89PNG"), file
    return struct.unpack(">II", head[16:])


class CommandLine(HomeCase):
    def test_options_print_and_end(self) -> None:
        for arguments, code, out, error in (
                (("-h", "--nonsense"), 0, "Usage: cratewell", ""),
                (("--version",), 0, "Cratewell ", ""),
                (("--nonsense",), 2, "", "cratewell: unknown argument: --nonsense\nUsage: cratewell")):
            with self.subTest(arguments):
                result = run(*arguments)
                self.assertEqual(result.returncode, code)
                self.assertTrue(result.stdout.startswith(out) and bool(result.stdout) == bool(out), result)
                self.assertIn(error, result.stderr)

    def test_the_icon_is_written_in_the_size_asked_for(self) -> None:
        icon = self.home.folder / "icon.png"
        for size, wanted in ((("64",), 64), (("x",), 1024), ((), 1024)):
            self.assertEqual(run("--render-icon", str(icon), *size).returncode, 0)
            self.assertEqual(png_size(icon), (wanted, wanted))

    def test_two_pictures_of_the_window_show_what_is_selected(self) -> None:
        shots = [self.home.folder / f"shot-{number}.png" for number in (1, 2)]
        self.start(CRATEWELL_SNAPSHOT=str(self.home.folder / "shot"),
                   CRATEWELL_SELECT="Amber.png,Prism.png,none.wav")
        self.addCleanup(self.finish)
        self.window.find("label", "2 selected")
        until(lambda: all(shot.exists() and shot.stat().st_size > 0 for shot in shots), "pictures")
        for shot in shots:
            self.assertEqual(png_size(shot), (1320, 840))
