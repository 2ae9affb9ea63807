#!/usr/bin/env python3
"""Cratewell in a throw-away home, on the demo vault, beside a stand-in Resolve that runs as a real process.

usage: demo.py [--snapshot DIR]

With --snapshot nothing needs a screen: the window is put into several states and saved as PNG files in DIR.
"""

import argparse
import contextlib
import datetime
import json
import os
import pathlib
import shutil
import subprocess
import sys
import time
import uuid
from collections.abc import Iterator

from make_demo_vault import make_vault

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build" / "run" / "bin" / "cratewell"
STAND_IN = ROOT / "scripts" / "standin_resolve"
DEMO = ROOT / "build" / "demo"
HOME = DEMO / "home"
VAULT = HOME / "Movies" / "Cratewell Vault"
PROJECT = HOME / "Stand-in Resolve project.json"

LEAKS, FILM = "Overlays/Light Leaks", "LUTs/Film"
# The library opens on what was added last, so these arrive last, the first of them at the very end.
SHELF_FRONT = [
    f"{LEAKS}/Amber Sweep 04.mov",
    f"{LEAKS}/Prism Edge.mov",
    f"{LEAKS}/Streak Warm 2.mov",
    f"{FILM}/Teal & Orange 33.cube",
    "SFX/Whooshes/Whoosh Deep 07.wav",
    f"{LEAKS}/Aurora Bloom.png",
    f"{LEAKS}/Sun Flare Soft.mp4",
    f"{FILM}/Dusk Fade.cube",
    "Overlays/Glitches/Scan Glitch.mp4",
    "SFX/Hits/Impact Low.wav",
    f"{FILM}/Noir.cube",
    "SFX/Risers/Riser 12.wav",
    "Overlays/Bokeh/Bokeh Drift.mp4",
    "Overlays/Flashes/Lightning Cold.mp4",
    f"{FILM}/Neon Night.cube",
    f"{LEAKS}/Film Burns/Burn Edge 02.mp4",
    "SFX/Whooshes/Vortex.wav",
    f"{LEAKS}/Lens Ghosts.mov",
    "Overlays/Transitions/Light Wipe.mp4",
    "Overlays/Bokeh/Bokeh Lights 7.jpg",
]
FAVORITES = [SHELF_FRONT[0], SHELF_FRONT[4], f"{FILM}/Cold Harbor.cube", "Overlays/Bokeh/Bokeh Lights 3.jpg"]
RECENT = [SHELF_FRONT[2], "SFX/Hits/Impact Low.wav", "Overlays/Flashes/White Pop.mov"]
FOLDER_COLORS = {
    "Overlays/Flashes": "#FF9F43",
    "Overlays/Glitches": "#FF4ECD",
    LEAKS: "#FFD54A",
    "SFX/Whooshes": "#2FD6FF",
    FILM: "#4A5CFF",
}
# Asset whose copy lies in the trash, where that was once, days since it was deleted.
TRASHED = [
    ("Overlays/Glitches/Scan Glitch.mp4", "Overlays/Glitches/Glitch Burst 11.mp4", 0),
    ("Overlays/Bokeh/Bokeh Lights 7.jpg", f"{LEAKS}/Old Leak.jpg", 12),
    ("SFX/Hits/Impact Low.wav", "SFX/Hits/Hit 2.wav", 27),
    (f"{FILM}/Noir.cube", "LUTs/Bleach.cube", 29.5),
]

# name of the picture, settings that differ from the demo's own, place, selected files
SNAPSHOTS = [
    ("main", {}, "", ["Amber Sweep 04.mov"]),
    (
        "light",
        {"appearance": "light"},
        "",
        ["Amber Sweep 04.mov", "Streak Warm 2.mov", "Teal & Orange 33.cube"],
    ),
    ("lut-midnight", {"background": "midnight", "accentHex": "#2FD6FF"}, "", ["Teal & Orange 33.cube"]),
    ("sound-chrome", {"background": "chrome", "accentHex": "#62D991"}, "", ["Whoosh Deep 07.wav"]),
    ("small-plain", {"background": "plain", "cardSize": 140, "cornerRadius": 6}, "", ["Lens Ghosts.mov"]),
    (
        "large-light-chrome",
        {"appearance": "light", "background": "chrome", "cardSize": 320, "accentHex": "#FF5A5F"},
        "",
        ["Aurora Bloom.png"],
    ),
    ("import", {}, "importer", []),
    ("trash", {}, "trash", []),
]


def in_vault(path: str) -> str:
    return str(VAULT / path)


def demo_settings() -> dict:
    return {
        "favorites": [in_vault(path) for path in FAVORITES],
        "recent": [in_vault(path) for path in RECENT],
        "folderColors": {in_vault(path): color for path, color in FOLDER_COLORS.items()},
    }


def write_settings(settings: dict) -> None:
    folder = HOME / ".config" / "cratewell"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "defaults.json").write_text(json.dumps(settings, indent=1, ensure_ascii=False))


def furnish_home() -> None:
    """The made vault stays as it is; the home gets copies, and with them birth times in the order wanted."""
    paths = make_vault(DEMO / "vault")
    shutil.rmtree(HOME, ignore_errors=True)
    missing = set(SHELF_FRONT + FAVORITES + RECENT) - set(paths)
    if missing:
        sys.exit(f"demo: the vault has no {', '.join(sorted(missing))}")
    for path in [*(path for path in paths if path not in SHELF_FRONT), *reversed(SHELF_FRONT)]:
        target = VAULT / path
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(DEMO / "vault" / path, target)
    fill_trash()
    write_settings(demo_settings())


def fill_trash() -> None:
    trash = VAULT / ".Cratewell Trash"
    reference = datetime.datetime(2001, 1, 1, tzinfo=datetime.timezone.utc)
    records = []
    for asset, original, days in TRASHED:
        record = {"id": str(uuid.uuid4()).upper(), "name": pathlib.Path(original).name, "isFolder": False}
        slot = trash / record["id"]
        slot.mkdir(parents=True)
        shutil.copyfile(DEMO / "vault" / asset, slot / record["name"])
        deleted = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(days=days)
        record["original"] = in_vault(original)
        record["deletedAt"] = (deleted - reference).total_seconds()
        record["size"] = (slot / record["name"]).stat().st_size
        records.append(record)
    (trash / "index.json").write_text(json.dumps(records))


def environment() -> dict[str, str]:
    inherited = {
        name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "CRATEWELL_"))
    }
    runtime = os.environ.get("XDG_RUNTIME_DIR")
    if not runtime:
        runtime = str(DEMO / "runtime")
        pathlib.Path(runtime).mkdir(mode=0o700, parents=True, exist_ok=True)
    return inherited | {
        "HOME": str(HOME),
        "XDG_CONFIG_HOME": str(HOME / ".config"),
        "XDG_CACHE_HOME": str(HOME / ".cache"),
        "XDG_DATA_HOME": str(HOME / ".local" / "share"),
        "XDG_RUNTIME_DIR": runtime,
        "PYTHONPATH": str(STAND_IN),
        "CRATEWELL_STANDIN_PROJECT": str(PROJECT),
    }


@contextlib.contextmanager
def stand_in_resolve() -> Iterator[None]:
    """A timeline to insert into, and a process that looks like the editor's. It ends when this program does."""
    tool = [sys.executable, str(STAND_IN / "resolve.py")]
    subprocess.run([*tool, "new", str(PROJECT), "--rate", "25", "--video", "2"], check=True)
    waiting = subprocess.Popen([*tool, "start", str(HOME), "--while", str(os.getpid())])
    try:
        yield
    finally:
        waiting.terminate()
        waiting.wait()


def show() -> int:
    print(
        f"demo: a home of its own in {HOME}\n"
        f"demo: what lands on the stand-in's timeline: {STAND_IN.relative_to(ROOT)}/resolve.py show '{PROJECT}'",
        flush=True,
    )
    return subprocess.run([PROGRAM], env=environment()).returncode


def wait_for_file(path: pathlib.Path, program: subprocess.Popen, seconds: float) -> bool:
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline and program.poll() is None:
        # The end of a PNG file: then it is complete.
        if path.exists() and path.read_bytes().endswith(b"IEND\xaeB`\x82"):
            return True
        time.sleep(0.1)
    return False


def take_snapshot(folder: pathlib.Path, name: str, settings: dict, place: str, selected: list[str]) -> bool:
    write_settings(demo_settings() | settings)
    early, final = folder / f"{name}-1.png", folder / f"{name}-2.png"
    picture = folder / f"{name}.png"
    for old in (early, final, picture):
        old.unlink(missing_ok=True)
    settled = environment() | {
        "QT_QPA_PLATFORM": "offscreen",
        "QT_QUICK_BACKEND": "software",
        "CRATEWELL_SNAPSHOT": str(folder / name),
        "CRATEWELL_SCOPE": place,
        "CRATEWELL_SELECT": ",".join(selected),
    }
    program = subprocess.Popen([PROGRAM], env=settled)
    taken = wait_for_file(final, program, 60)
    program.terminate()
    code = program.wait(20)
    if not taken or code != 0:
        print(f"demo: no picture {name}: the program ended with {code}", file=sys.stderr)
        return False
    # Two are taken some seconds apart; the later one has every thumbnail.
    final.rename(picture)
    early.unlink(missing_ok=True)
    print(picture, flush=True)
    return True


def main() -> int:
    parser = argparse.ArgumentParser(prog="./dev demo")
    parser.add_argument(
        "--snapshot", metavar="DIR", type=pathlib.Path, help="save pictures of the window into DIR"
    )
    options = parser.parse_args()
    furnish_home()
    with stand_in_resolve():
        if options.snapshot is None:
            return show()
        options.snapshot.mkdir(parents=True, exist_ok=True)
        folder = options.snapshot.resolve()
        taken = [take_snapshot(folder, *snapshot) for snapshot in SNAPSHOTS]
    return 0 if all(taken) else 1


if __name__ == "__main__":
    sys.exit(main())
