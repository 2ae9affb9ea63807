#!/usr/bin/env python3
"""Measures Cratewell beside tools that do the same work, prints a table and writes build/bench.json.

usage: bench.py [FILTER]    FILTER: scan, window, start, worker, files, decode, page or lut, or a part of a row's name

Every figure is a median of at least five, ours and the peer's taken in turn. A row holds when its ratio, or where it
has no peer our own figure, is at most the bar; `bar_on` says which. A row without a bar is there to be looked at.
"""

import contextlib
import dataclasses
import functools
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import threading
import time
from collections.abc import Iterator

from make_big_vault import ensure_big_vault
from make_decode_media import ensure_decode_media
from make_demo_vault import make_vault

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = ROOT / "build" / "release" / "bin"
HOME = ROOT / "build" / "bench" / "home"
VAULT = HOME / "Movies" / "Cratewell Vault"
# Another home, whose vault is the demo's overlays: workers have pictures to make from the first page on.
PICTURE_HOME = ROOT / "build" / "bench" / "picture home"
DEMO_VAULT = ROOT / "build" / "demo" / "vault"

STARTS = 7
SETTLING_SECONDS = 3
PATIENCE_SECONDS = 60


@dataclasses.dataclass
class Row:
    name: str
    ours: float
    peer: float | None = None
    unit: str = "ms"
    bar: float | None = None

    def as_json(self) -> dict:
        ratio = self.ours / self.peer if self.peer else None
        judged = self.ours if ratio is None else ratio
        return {
            "name": self.name,
            "ours": round(self.ours, 3),
            "peer": self.peer and round(self.peer, 3),
            "unit": self.unit,
            "ratio": ratio and round(ratio, 3),
            "bar": self.bar,
            "bar_on": "ours" if ratio is None else "ratio",
            "held": None if self.bar is None else judged <= self.bar,
        }


def environment(home: pathlib.Path = HOME) -> dict[str, str]:
    runtime = home / "runtime"
    runtime.mkdir(mode=0o700, parents=True, exist_ok=True)
    return {
        "PATH": os.environ["PATH"],
        "HOME": str(home),
        "XDG_RUNTIME_DIR": str(runtime),
        "LANG": "C.UTF-8",
        "QT_QPA_PLATFORM": "offscreen",
        "QT_QUICK_BACKEND": "software",
    }


def figures_of(program: str, *arguments: str) -> dict[str, dict]:
    result = subprocess.run(
        [PROGRAMS / program, *arguments], env=environment(), check=True, stdout=subprocess.PIPE
    )
    return {row["name"]: row for row in json.loads(result.stdout)}


@functools.cache
def scan_rows() -> list[Row]:
    VAULT.parent.mkdir(parents=True, exist_ok=True)
    ensure_big_vault(VAULT)
    figures = figures_of("vault_scan_bench", str(VAULT))
    first = figures["first scan"]
    rest = [
        Row(name, row["ours"], row["peer"], row["unit"])
        for name, row in figures.items()
        if name != "first scan"
    ]
    return [Row("first scan, beside find", first["ours"], first["peer"], bar=0.7), *rest]


def window_rows(scan: float) -> list[Row]:
    figures = {name: row["ours"] for name, row in figures_of("window_bench", str(HOME)).items()}
    letters = [
        Row(name, figure, bar=16) for name, figure in figures.items() if name.startswith("typed letter")
    ]
    return [
        *letters,
        Row("first sort by name", figures["first sort by name"], bar=16),
        Row(
            "added file shown after the coalescing delay, beside the first scan",
            figures["added file, after the coalescing delay"],
            scan,
            bar=1.0,
        ),
        Row("main thread held by an added file", figures["main thread held by an added file"], bar=8),
    ]


@contextlib.contextmanager
def started(program: str, home: pathlib.Path = HOME) -> Iterator[tuple[subprocess.Popen, float]]:
    """The running program and the milliseconds until its first page."""
    begin = time.perf_counter()
    process = subprocess.Popen(
        [PROGRAMS / program],
        env=environment(home) | {"CRATEWELL_TRACE_START": "1"},
        stderr=subprocess.PIPE,
        text=True,
    )
    impatience = threading.Timer(PATIENCE_SECONDS, process.kill)
    impatience.start()
    try:
        if not any(line.strip() == "first-page" for line in process.stderr):
            sys.exit(f"bench: {program} showed no first page in {PATIENCE_SECONDS} seconds")
        yield process, (time.perf_counter() - begin) * 1000
    finally:
        impatience.cancel()
        process.terminate()
        process.communicate()


def status_of(process: int) -> dict[str, str]:
    lines = pathlib.Path(f"/proc/{process}/status").read_text().splitlines()
    return {key: value.strip() for key, _, value in (line.partition(":") for line in lines)}


def resident_megabytes(process: int) -> float:
    return int(status_of(process)["VmRSS"].split()[0]) * 1024 / 1e6


def worker_megabytes(program: int) -> float:
    """The largest of the helper programs of this one."""
    workers = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            status = status_of(int(folder.name))
            if int(status["PPid"]) == program and status["Name"].startswith("cratewell-work"):
                workers.append(int(folder.name))
    if not workers:
        sys.exit("bench: the program runs no worker")
    return max(map(resident_megabytes, workers))


def worker_rows() -> list[Row]:
    make_vault(DEMO_VAULT)
    overlays = PICTURE_HOME / "vault" / "Overlays"
    overlays.parent.mkdir(parents=True, exist_ok=True)
    if not overlays.is_symlink():
        overlays.symlink_to(DEMO_VAULT / "Overlays")
    settings = PICTURE_HOME / ".config" / "cratewell" / "defaults.json"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text(json.dumps({"vaultPath": str(overlays.parent), "cardSize": 140}))
    figures = []
    for _ in range(STARTS):
        shutil.rmtree(PICTURE_HOME / ".cache", ignore_errors=True)  # pictures from there need no worker
        with started("cratewell", PICTURE_HOME) as (process, _milliseconds):
            time.sleep(2 * SETTLING_SECONDS)
            figures.append(worker_megabytes(process.pid))
    return [
        Row(
            "resident memory of an idle worker that has made pictures",
            statistics.median(figures),
            unit="MB",
            bar=40,
        )
    ]


def start_rows(scan: float) -> list[Row]:
    times: dict[str, list[float]] = {"cratewell": [], "empty_window": []}
    memory: dict[str, list[float]] = {"cratewell": [], "empty_window": []}
    for turn in range(STARTS + 1):
        for program in times:
            with started(program) as (process, milliseconds):
                time.sleep(SETTLING_SECONDS)
                if turn == 0:  # fills the disk cache, and the program's settings
                    continue
                times[program].append(milliseconds)
                memory[program].append(resident_megabytes(process.pid))
    ours, empty = (statistics.median(times[name]) for name in times)
    ours_memory, empty_memory = (statistics.median(memory[name]) for name in memory)
    return [
        Row("start to the first page, beside an empty window", ours, empty),
        Row(
            "start to the first page, beside the scan and three empty windows",
            ours,
            scan + 3 * empty,
            bar=1.0,
        ),
        Row("resident memory, beside an empty window", ours_memory, empty_memory, "MB"),
        Row("resident memory above an empty window's", ours_memory - empty_memory, unit="MB", bar=80),
    ]


def file_rows() -> list[Row]:
    figures = figures_of("file_bench", str(ROOT / "build" / "bench" / "file home"))
    bars = {
        "import of 2,000 files of 100 KiB": 1.3,
        "import of one file of 2 GiB": 1.1,
        "trashing 5,000 assets": 1000,
        "main thread held by trashing 5,000 assets": 16,
    }
    return [Row(name, figures[name]["ours"], figures[name]["peer"], bar=bar) for name, bar in bars.items()]


def decode_rows() -> list[Row]:
    media = ROOT / "build" / "bench" / "decode"
    ensure_decode_media(media)
    bars = {
        "60 photographs": 1.0,
        "H.264 frame": 0.8,
        "ProRes 4444 frame": 0.8,
        "peaks of sound.wav": 0.1,
        "peaks of sound.flac": 1.0,
        "peaks of sound.mp3": 1.0,
        "peaks of sound.m4a": 1.0,
        "page of 60 videos": 1.0,
    }
    peers = {"60 photographs": "vipsthumbnail"}
    figures = figures_of("decode_bench", str(media))
    return [
        Row(f"{name}, beside {peers.get(name, 'ffmpeg')}", figures[name]["ours"], figures[name]["peer"], bar=bar)
        for name, bar in bars.items()
    ]


def page_rows() -> list[Row]:
    media = ROOT / "build" / "bench" / "decode"
    ensure_decode_media(media)
    home = ROOT / "build" / "bench" / "page home"
    folder = home / "Movies" / "Cratewell Vault" / "Overlays" / "Page"
    shutil.rmtree(home, ignore_errors=True)
    folder.mkdir(parents=True)
    for film in sorted(media.glob("film *")):
        os.link(film.resolve(), folder / film.name)
    bars = {"page of 60 videos in the window, after a restart": 200}
    figures = figures_of("page_bench", str(home))
    return [Row(name, row["ours"], bar=bars.get(name)) for name, row in figures.items()]


def lut_rows() -> list[Row]:
    figures = figures_of("lut_bench", str(ROOT / "build" / "bench" / "lut"))

    def bar(name: str) -> float:
        if name.startswith("reading"):
            return 0.1
        return 0.33 if name.endswith("FFmpeg") else 0.25

    return [Row(name, row["ours"], row["peer"], bar=bar(name)) for name, row in figures.items()]


def print_table(rows: list[dict]) -> None:
    width = max(len(row["name"]) for row in rows)
    print(f"{'':{width}}  {'ours':>10}  {'peer':>10}        {'ratio':>6}  {'bar':>6}")
    for row in rows:
        peer = "" if row["peer"] is None else f"{row['peer']:10.1f}"
        ratio = "" if row["ratio"] is None else f"{row['ratio']:.2f}"
        bar = "" if row["bar"] is None else f"{row['bar']:g}"
        held = {True: "held", False: "MISSED", None: ""}[row["held"]]
        print(
            f"{row['name']:{width}}  {row['ours']:10.1f}  {peer:>10}  {row['unit']:4}  {ratio:>6}  {bar:>6}  {held}"
        )


def main() -> int:
    wanted = sys.argv[1].lower() if len(sys.argv) > 1 else ""
    groups = {
        "scan": scan_rows,
        "window": lambda: window_rows(scan_rows()[0].ours),
        "start": lambda: start_rows(scan_rows()[0].ours),
        "worker": worker_rows,
        "files": file_rows,
        "decode": decode_rows,
        "page": page_rows,
        "lut": lut_rows,
    }
    if wanted in groups:
        results = [row.as_json() for row in groups[wanted]()]
    else:
        rows = (row for group in groups.values() for row in group())
        results = [row.as_json() for row in rows if wanted in row.name.lower()]
    if not results:
        sys.exit(f"bench: no row is called like {wanted}")
    print_table(results)
    (ROOT / "build" / "bench.json").write_text(json.dumps(results, indent=1) + "\n")
    return 0 if all(row["held"] is not False for row in results) else 1


if __name__ == "__main__":
    sys.exit(main())
