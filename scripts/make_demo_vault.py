#!/usr/bin/env python3
"""Makes the demo vault: a folder of generated media as an editor would hoard it.

usage: make_demo_vault.py FOLDER

What is there already and was made by the same recipe is kept, so a second run is instant.
"""

import concurrent.futures
import json
import os
import pathlib
import sys
import tempfile

from demo_media import clips, layers, luts, sounds, stills
from demo_media.recipe import Recipe


def all_recipes() -> list[Recipe]:
    return [*clips.recipes(), *layers.recipes(), *stills.recipes(), *luts.recipes(), *sounds.recipes()]


def cook(recipe: Recipe, vault: pathlib.Path) -> None:
    """The file appears complete or not at all."""
    target = vault / recipe.path
    target.parent.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=vault.parent) as scratch:
        fresh = pathlib.Path(scratch) / target.name
        recipe.make(fresh, pathlib.Path(scratch))
        fresh.replace(target)


def read_record(path: pathlib.Path) -> dict[str, str]:
    try:
        return json.loads(path.read_text())
    except (OSError, ValueError):
        return {}


def make_vault(vault: pathlib.Path) -> list[str]:
    """Returns the paths below the vault, in the order of the recipes."""
    vault.mkdir(parents=True, exist_ok=True)
    record_file = vault.parent / f"{vault.name}.json"
    record = read_record(record_file)
    recipes = all_recipes()
    wanted = {recipe.path for recipe in recipes}
    for stale in set(record) - wanted:
        (vault / stale).unlink(missing_ok=True)
    waiting = [
        recipe
        for recipe in recipes
        if record.get(recipe.path) != recipe.fingerprint or not (vault / recipe.path).exists()
    ]
    record = {path: print_ for path, print_ in record.items() if path in wanted}
    if waiting:
        print(f"demo vault: making {len(waiting)} of {len(recipes)} files", flush=True)
    try:
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            jobs = {pool.submit(cook, recipe, vault): recipe for recipe in waiting}
            for job in concurrent.futures.as_completed(jobs):
                job.result()
                record[jobs[job].path] = jobs[job].fingerprint
    finally:
        record_file.write_text(json.dumps(record, indent=1, ensure_ascii=False))
    return [recipe.path for recipe in recipes]


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    paths = make_vault(pathlib.Path(sys.argv[1]))
    print(f"demo vault: {len(paths)} files in {sys.argv[1]}")
