#!/usr/bin/env python3
"""Makes a vault of 100,000 tiny files in 600 folders for the benchmarks; nothing when it is there already.

usage: make_big_vault.py FOLDER
"""

import pathlib
import random
import sys

FILES, FOLDERS = 100_000, 600

# category folder, its share of the files, its starter folders, extensions
CATEGORIES = [
    (
        "Overlays",
        0.55,
        ["Light Leaks", "Glitches", "Flashes", "Grains", "Transitions"],
        ["mov", "mp4", "MOV", "png", "jpg"],
    ),
    ("LUTs", 0.10, [], ["cube", "cube", "cube", "3dl"]),
    (
        "SFX",
        0.35,
        ["Sports", "Whooshes", "Risers", "Hits", "Clicks", "Buttons", "Cameras", "Shutters"],
        ["wav", "wav", "mp3", "aif", "flac"],
    ),
]
MOODS = (
    "Amber Aurora Bright Cold Dark Deep Dusty Été Fast Golden Hazy Icy Löwe Muted Neon Noir Old Prism Rosy Slow Soft "
    "Teal Warm Wide".split()
)
THINGS = (
    "Bloom Burn Click Drift Edge Fade Flare Flash Glitch Grain Hit Leak Look Print Pulse Riser Scratch Shift Shutter "
    "Streak Sweep Swell Whoosh Wipe".split()
)
MAKERS = ["", "", "", "CC_", "final ", "v2 ", "Pack 3 - "]


def file_name(chance: random.Random, extensions: list[str]) -> str:
    name = f"{chance.choice(MAKERS)}{chance.choice(MOODS)} {chance.choice(THINGS)}"
    number = chance.choice(["", f" {chance.randrange(1, 400)}", f"_{chance.randrange(1, 400):03}"])
    if chance.random() < 0.2:
        name = name.replace(" ", "_")
    return f"{name}{number}.{chance.choice(extensions)}"


def folders_of(
    chance: random.Random, root: pathlib.Path, starters: list[str], count: int
) -> list[pathlib.Path]:
    """Starter folders first, then new ones below any of those there are."""
    folders = [root, *(root / name for name in starters)]
    while len(folders) < count:
        parent = chance.choice(folders[:60])
        folders.append(parent / f"{chance.choice(MOODS)} {len(folders)}")
    return folders


def make(vault: pathlib.Path) -> None:
    chance = random.Random(4)
    for category, share, starters, extensions in CATEGORIES:
        folders = folders_of(chance, vault / category, starters, round(FOLDERS * share))
        for folder in folders:
            folder.mkdir(parents=True, exist_ok=True)
        taken: set[pathlib.Path] = set()
        while len(taken) < round(FILES * share):
            path = chance.choice(folders) / file_name(chance, extensions)
            if path not in taken:
                taken.add(path)
                path.write_bytes(b"0123456789abcdef"[: chance.randrange(1, 17)])


def ensure_big_vault(vault: pathlib.Path) -> None:
    done = vault.parent / f".{vault.name} of {FILES} files"
    if done.exists():
        return
    print(f"bench: making {FILES} files in {FOLDERS} folders, once", flush=True)
    make(vault)
    done.touch()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    ensure_big_vault(pathlib.Path(sys.argv[1]))
