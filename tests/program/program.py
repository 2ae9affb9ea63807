"""The real program in a home of its own."""

from __future__ import annotations

import contextlib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import wave
import zlib
from collections.abc import Iterator

from controls import Window

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
STAND_IN = ROOT / "scripts" / "standin_resolve"
PYTHON = "/usr/bin/python3"
END_SECONDS = 30


def png(width: int, height: int, color: bytes) -> bytes:
    def chunk(kind: bytes, data: bytes) -> bytes:
        return len(data).to_bytes(4, "big") + kind + data + zlib.crc32(kind + data).to_bytes(4, "big")

    header = width.to_bytes(4, "big") + height.to_bytes(4, "big") + bytes([8, 2, 0, 0, 0])
    lines = (b"\0" + color * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines))
            + chunk(b"IEND", b""))


class Home:
    def __init__(self, folder: pathlib.Path):
        self.folder = folder
        self.vault = folder / "Movies" / "Cratewell Vault"
        self.settings_file = folder / ".config" / "cratewell" / "defaults.json"
        self.project_file = folder / "project.json"

    def path(self, name: str) -> pathlib.Path:
        path = self.vault / name
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def add_picture(self, name: str, color: bytes = b"\xff\x80\x20") -> None:
        self.path(name).write_bytes(png(64, 36, color))

    def add_sound(self, name: str, samples: int = 4800) -> None:
        with wave.open(str(self.path(name)), "wb") as sound:
            sound.setnchannels(1)
            sound.setsampwidth(2)
            sound.setframerate(48000)
            sound.writeframes(b"\0\0" * samples)

    def settings(self) -> dict:
        """What is stored now; the file is replaced whole, so it can be read at any time."""
        try:
            return json.loads(self.settings_file.read_text())
        except FileNotFoundError:
            return {}

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


@contextlib.contextmanager
def made_home() -> Iterator[Home]:
    with tempfile.TemporaryDirectory(prefix="home-") as folder:
        yield Home(pathlib.Path(folder))


class Program:
    """One run of it."""

    def __init__(self, home: Home, variables: dict[str, str] | None = None):
        self._log = tempfile.TemporaryFile("w+", errors="replace")
        self._process = subprocess.Popen([os.environ["CRATEWELL_PROGRAM"]], env=home.environment() | (variables or {}),
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
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError("the program did not end when it was asked to") from None

    def kill(self) -> None:
        """At once: it can save nothing more."""
        self._process.kill()
        self._process.wait()


@contextlib.contextmanager
def stand_in_resolve(home: Home) -> Iterator[None]:
    """A project with one timeline, and a process that looks like the editor's."""
    tool = [PYTHON, str(STAND_IN / "resolve.py")]
    subprocess.run([*tool, "new", str(home.project_file)], check=True, timeout=END_SECONDS)
    editor = subprocess.Popen([*tool, "start", str(home.folder), "--while", str(os.getpid())])
    try:
        yield
    finally:
        editor.send_signal(signal.SIGTERM)
        editor.wait(END_SECONDS)
