"""What the modules of this package hand out: how one file of the vault is made."""

import dataclasses
import hashlib
import pathlib
import subprocess
from collections.abc import Callable


@dataclasses.dataclass(frozen=True)
class Recipe:
    path: str  # below the vault, with its extension
    make: Callable[[pathlib.Path, pathlib.Path], None]  # (file to write, empty folder for what lies between)
    ingredients: str  # changes when the file has to be made again

    @property
    def fingerprint(self) -> str:
        return hashlib.sha256(f"{self.path}\0{self.ingredients}".encode()).hexdigest()[:16]


def run(*command: str | pathlib.Path) -> None:
    """Runs a tool and shows its words only when it fails."""
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True)
    if result.returncode:
        raise RuntimeError(f"{command[0]} failed:\n{result.stderr.strip()}")


def ffmpeg(*arguments: str | pathlib.Path) -> None:
    run("ffmpeg", "-nostdin", "-v", "error", "-y", "-threads", "2", *arguments)


def ffmpeg_recipe(path: str, *arguments: str) -> Recipe:
    return Recipe(path, lambda target, _: ffmpeg(*arguments, target), "\0".join(arguments))
