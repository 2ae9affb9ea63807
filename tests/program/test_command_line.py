"""What the program does for those who start it by hand or without a person."""

import os
import pathlib
import struct
import subprocess
import unittest

from case import fill
from program import Program, made_home
from wait import until

START_SECONDS = 60


def run(*arguments: str) -> subprocess.CompletedProcess:
    return subprocess.run([os.environ["CRATEWELL_PROGRAM"], *arguments], capture_output=True, text=True,
                          timeout=START_SECONDS)


def png_size(file: pathlib.Path) -> tuple[int, int]:
    head = file.read_bytes()[:24]
    assert head.startswith(b"\x89PNG"), file
    return struct.unpack(">II", head[16:])


class CommandLine(unittest.TestCase):
    def test_options_print_and_end(self) -> None:
        for arguments, code, out, error in (
                (("--help",), 0, "Usage: cratewell", ""),
                (("-h", "--nonsense"), 0, "Usage: cratewell", ""),
                (("--version",), 0, "Cratewell ", ""),
                (("--nonsense",), 2, "", "cratewell: unknown argument: --nonsense\nUsage: cratewell"),
                (("vault",), 2, "", "cratewell: unknown argument: vault\nUsage: cratewell")):
            with self.subTest(arguments):
                result = run(*arguments)
                self.assertEqual(result.returncode, code)
                self.assertTrue(result.stdout.startswith(out) and bool(result.stdout) == bool(out), result)
                self.assertIn(error, result.stderr)

    def test_the_icon_is_written_in_the_size_asked_for(self) -> None:
        with made_home() as home:
            icon = home.folder / "icon.png"
            for size, wanted in ((("64",), 64), (("x",), 1024), ((), 1024)):
                self.assertEqual(run("--render-icon", str(icon), *size).returncode, 0)
                self.assertEqual(png_size(icon), (wanted, wanted))
                icon.unlink()
            self.assertEqual(run("--render-icon", str(home.folder / "none" / "icon.png")).returncode, 0)

    def test_two_pictures_of_the_window_show_what_is_selected(self) -> None:
        with made_home() as home:
            fill(home)
            prefix = home.folder / "shot"
            shots = [pathlib.Path(f"{prefix}-{number}.png") for number in (1, 2)]
            program = Program(home, {"CRATEWELL_SNAPSHOT": str(prefix),
                                     "CRATEWELL_SELECT": "Amber.png,Prism.png,none.wav"})
            try:
                program.window.find("label", "2 selected")
                until(lambda: all(shot.exists() and shot.stat().st_size > 0 for shot in shots), "pictures")
            finally:
                self.assertEqual(program.end(), 0, program.log())
            for shot in shots:
                self.assertEqual(png_size(shot), (1320, 840))
