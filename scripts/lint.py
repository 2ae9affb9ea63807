#!/usr/bin/env python3
"""Everything `./dev lint` looks at. Prints what it finds and ends with 1 when there was anything.

usage: lint.py [--deep]

clang's path-sensitive analyzer takes as long as all other checks together and seldom finds what the sanitizers
do not: it runs with --deep only.

clang-tidy is slow, so a clean verdict on a file is kept in build/lint, named by the content it was given
on: the file, every header of the tree it includes, its compile command and the rules.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "release"
CACHE = ROOT / "build" / "lint"

# GCC's own; clang 14 does not announce the coroutines that libstdc++ asks for.
FOREIGN_FLAGS = {"-fcoroutines", "-mno-direct-extern-access"}
TIDY_ARGUMENTS = ["--quiet", "--extra-arg=-D__cpp_impl_coroutine=201902L",
                  "--extra-arg=-Wno-unknown-warning-option",
                  # GCC says what its own warnings are; clang would add some on macros of C headers.
                  "--extra-arg=-Wno-error"]
if "--deep" not in sys.argv[1:]:
    TIDY_ARGUMENTS.append("--checks=-clang-analyzer-*")

LEFTOVERS = r"\bqDebug\(|\bqInfo\(|\bconsole\.(log|debug)\(|\b(TODO|FIXME|XXX)\b"


def tracked(*patterns: str) -> list[str]:
    listing = subprocess.run(["git", "ls-files", "-z", *patterns], cwd=ROOT, check=True, capture_output=True)
    names = listing.stdout.decode().split("\0")
    return [name for name in names if name and (ROOT / name).is_file()]


def passes(*command: str) -> bool:
    return subprocess.run(command, cwd=ROOT).returncode == 0


def finds_nothing(*grep: str) -> bool:
    """A search that has to come back empty; git grep ends with 1 then."""
    return subprocess.run(["git", "grep", "-nI", *grep], cwd=ROOT).returncode == 1


def check_formatting() -> bool:
    return passes("clang-format", "--dry-run", "-Werror", *tracked("*.h", "*.cpp"))


def check_tree() -> bool:
    """White space, merge marks, what was left in from a search for a fault, and paths of this machine."""
    empty_tree = subprocess.run(["git", "hash-object", "-t", "tree", os.devnull], cwd=ROOT, check=True,
                                capture_output=True, text=True).stdout.strip()
    clean = passes("git", "--no-pager", "diff", "--check", empty_tree, "--", ":!*.svg")
    clean &= finds_nothing("-E", LEFTOVERS, "--", "src", "tests", "bench", "resources")
    clean &= finds_nothing("-F", str(ROOT))
    return clean


def check_scripts() -> bool:
    clean = passes("shellcheck", "dev", ".ci/run", *tracked("*.sh"))
    # The editors' scripts are parts that are joined when they run; their tests run every line.
    return clean & passes("pyflakes3", *tracked("*.py", ":!resources/scripts"))


def check_qml() -> bool:
    if not tracked("*.qml"):
        return True
    return passes("cmake", "--build", "--preset", "release", "--target", "all_qmllint")


def included_headers() -> dict[str, list[str]]:
    """Object file -> headers of this tree, as the last build recorded them."""
    listing = subprocess.run(["ninja", "-C", str(BUILD), "-t", "deps"], check=True, capture_output=True,
                             text=True).stdout
    headers: dict[str, list[str]] = {}
    current: list[str] = []
    for line in listing.splitlines():
        if line.startswith("    "):
            name = os.path.normpath(BUILD / line.strip())
            if name.startswith(f"{ROOT}/"):
                current.append(name)
        elif ": #deps" in line:
            current = headers.setdefault(line.split(": #deps")[0], [])
    return headers


def for_clang(entry: dict) -> dict:
    words = [word for word in shlex.split(entry["command"]) if word not in FOREIGN_FLAGS]
    # Without the precompiled headers, which are GCC's own: each file includes what it uses.
    while "-include" in words:
        at = words.index("-include")
        del words[at:at + 2]
    if pathlib.Path(words[0]).name == "ccache":
        words = words[1:]
    return {"directory": entry["directory"], "file": entry["file"], "arguments": words}


def verdict_name(entry: dict, headers: list[str], rules: bytes) -> str:
    digest = hashlib.sha256(rules)
    digest.update("\0".join(entry["arguments"]).encode())
    for name in [entry["file"], *sorted(headers)]:
        digest.update(name.encode())
        digest.update(pathlib.Path(name).read_bytes() if os.path.isfile(name) else b"")
    return digest.hexdigest()


def check_cpp() -> bool:
    known = {str(ROOT / name) for name in tracked("*.cpp")}
    entries = {}
    objects = {}
    for raw in json.loads((BUILD / "compile_commands.json").read_text()):
        if raw["file"] in known:
            entries[raw["file"]] = for_clang(raw)
            objects[raw["file"]] = re.search(r" -o (\S+)", raw["command"]).group(1)
    CACHE.mkdir(parents=True, exist_ok=True)
    (CACHE / "compile_commands.json").write_text(json.dumps(list(entries.values())))

    version = subprocess.run(["clang-tidy", "--version"], check=True, capture_output=True).stdout
    rules = version + "".join(TIDY_ARGUMENTS).encode()
    for name in tracked("*.clang-tidy"):
        rules += (ROOT / name).read_bytes()
    headers = included_headers()
    verdicts = {name: CACHE / verdict_name(entry, headers.get(objects[name], []), rules)
                for name, entry in entries.items()}
    # The largest first, so that no core is left with one of them at the end.
    waiting = sorted((name for name in entries if not verdicts[name].exists()), key=os.path.getsize, reverse=True)
    print(f"clang-tidy: {len(waiting)} of {len(entries)} files changed since they were last found clean",
          flush=True)

    def tidy(name: str) -> bool:
        result = subprocess.run(["clang-tidy", "-p", str(CACHE), *TIDY_ARGUMENTS, name], capture_output=True,
                                text=True)
        if result.returncode:
            print(result.stdout + result.stderr, flush=True)
            return False
        verdicts[name].touch()
        return True

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        clean = all(list(pool.map(tidy, waiting)))
    for old in CACHE.iterdir():
        if len(old.name) == 64 and old not in verdicts.values():
            old.unlink()
    return clean


def main() -> int:
    failed = []
    for check in (check_formatting, check_tree, check_scripts, check_qml, check_cpp):
        name = check.__name__.removeprefix("check_")
        print(f"lint: {name}", flush=True)
        if not check():
            failed.append(name)
    print("lint: clean" if not failed else f"lint: findings in {', '.join(failed)}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
