#!/usr/bin/env python3
"""The stand-in editor by hand.

    resolve.py new FILE [--rate 24] [--start TC] [--playhead TC] [--video N] [--audio N] [--version 21.0.3]
    resolve.py show FILE                            what lies where on the timeline
    resolve.py playhead FILE TIMECODE
    resolve.py place FILE TRACK NAME START FRAMES   a clip there: place p.json V1 Interview 01:00:00:00 480
    resolve.py fail FILE CALL HOW                   none, false, empty, raise, hang; "ok" ends it
    resolve.py start HOME [--while PID]             turns into a waiting program HOME/opt/resolve/bin/resolve
"""
import argparse
import os
import shutil
import sys

import project_file

MODES = {0: "Normal", 1: "Add", 4: "Multiply", 5: "Screen", 6: "Overlay", 8: "Soft Light"}


def new(options):
    version = [int(part) for part in options.version.split(".")] + [0, 0, 0]
    state = project_file.fresh(options.rate, options.start, options.playhead, options.video, options.audio,
                               version[:4] + [""])
    project_file.write(options.file, state)


def show(options):
    state = project_file.read(options.file)
    timeline = project_file.current_timeline(state)
    if timeline is None:
        print("No timeline is open.")
        return
    rate = project_file.rate_number(timeline["rate"])
    print("%s · %s · %s fps · playhead %s" % (state["project"]["name"], timeline["name"], timeline["rate"],
                                              timeline["playhead"]))
    tracks = [("V%d" % (i + 1), track) for i, track in enumerate(timeline["video"])][::-1]
    tracks += [("A%d" % (i + 1), track) for i, track in enumerate(timeline["audio"])]
    for name, track in tracks:
        if not track["items"]:
            print("%-3s  empty" % name)
        for item in track["items"]:
            start, end = (project_file.timecode_of(item[key], rate) for key in ("start", "end"))
            mode = MODES.get(item["composite"], "mode %d" % item["composite"]) if name[0] == "V" else ""
            print("%-3s  %s - %s  %s  %s" % (name, start, end, item["name"], mode))


def playhead(options):
    state = project_file.read(options.file)
    project_file.current_timeline(state)["playhead"] = options.timecode
    project_file.write(options.file, state)


def place(options):
    state = project_file.read(options.file)
    rate = project_file.rate_number(project_file.current_timeline(state)["rate"])
    first = project_file.frames_of(options.start, rate)
    project_file.place(state, options.track, options.name, first, options.frames)
    project_file.write(options.file, state)


def fail(options):
    state = project_file.read(options.file)
    state["failures"].pop(options.call, None)
    if options.how != "ok":
        state["failures"][options.call] = options.how
    project_file.write(options.file, state)


def start(options):
    """Copies the interpreter to the editor's place, so that the process list shows the editor there."""
    program = os.path.join(os.path.abspath(options.home), "opt", "resolve", "bin", "resolve")
    os.makedirs(os.path.dirname(program), exist_ok=True)
    shutil.copy2(os.path.realpath(sys.executable), program + ".new")
    os.replace(program + ".new", program)
    waiting = os.path.join(os.path.dirname(os.path.abspath(__file__)), "waiting.py")
    environment = dict(os.environ, PYTHONHOME="%s:%s" % (sys.base_prefix, sys.base_exec_prefix))
    arguments = [program, waiting] + ([str(options.companion)] if options.companion else [])
    os.execve(program, arguments, environment)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    commands = parser.add_subparsers(dest="command")
    commands.required = True

    def command(function, *positional):
        sub = commands.add_parser(function.__name__)
        sub.set_defaults(function=function)
        for name in positional:
            sub.add_argument(name, type=int if name == "frames" else str)
        return sub

    options = command(new, "file")
    for name, default in (("rate", "24"), ("start", "01:00:00:00"), ("playhead", "01:00:10:12"), ("video", 1),
                          ("audio", 1), ("version", "21.0.3")):
        options.add_argument("--" + name, default=default, type=type(default))
    command(show, "file")
    command(playhead, "file", "timecode")
    command(place, "file", "track", "name", "start", "frames")
    command(fail, "file", "call", "how")
    command(start, "home").add_argument("--while", dest="companion", type=int)

    parsed = parser.parse_args()
    parsed.function(parsed)


if __name__ == "__main__":
    main()
