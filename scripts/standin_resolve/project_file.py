"""The stand-in's project: one JSON file that a test, the demo and a person can read and edit.

    host      version (a list as GetVersion gives it) and product name; "hollow_overlaps": whether a dropped
              overlap is answered with an item without identity (true) or with an empty list
    failures  call -> "none", "false", "empty", "raise" or "hang"; "import" and "scriptapp" count as calls
    media     what the host knows of a file, by its name, else by its extension: GetClipProperty's texts
    project   null, or: name, pool (a tree of bins with their clips), current_bin, timelines, current_timeline
"""
import json
import os
import uuid

VARIABLE = "CRATEWELL_STANDIN_PROJECT"

VIDEO = {"Type": "Video", "Frames": "120"}
STILL = {"Type": "Still", "Frames": "1"}
AUDIO = {"Type": "Audio", "Frames": "", "Duration": "00:00:03:00"}
MEDIA_BY_EXTENSION = {
    VIDEO["Type"]: (VIDEO, "mov mp4 m4v mkv avi mxf webm gif"),
    STILL["Type"]: (STILL, "png jpg jpeg tif tiff heic webp bmp exr"),
    AUDIO["Type"]: (AUDIO, "wav aif aiff mp3 m4a caf flac aac ogg"),
}


def fresh(rate="24", start="01:00:00:00", playhead="01:00:10:12", video=1, audio=1,
          version=(21, 0, 3, 7, "")):
    timeline = {
        "name": "Timeline 1",
        "rate": rate,
        "start": start,
        "playhead": playhead,
        "video": [{"items": []} for _ in range(video)],
        "audio": [{"type": "stereo", "items": []} for _ in range(audio)],
    }
    return {
        "host": {"version": list(version), "product": "DaVinci Resolve Studio", "hollow_overlaps": True},
        "failures": {},
        "media": {},
        "project": {
            "name": "Stand-in",
            "pool": {"name": "Master", "clips": [], "bins": []},
            "current_bin": "Master",
            "timelines": [timeline],
            "current_timeline": "Timeline 1",
        },
    }


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def write(path, state):
    """Replaces the file in one step: a reader sees the state before or after, never a part."""
    temporary = "%s.%d" % (path, os.getpid())
    with open(temporary, "w", encoding="utf-8") as file:
        json.dump(state, file, indent=2)
        file.write("\n")
    os.replace(temporary, path)


def current_timeline(state):
    project = state.get("project") or {}
    for timeline in project.get("timelines", []):
        if timeline["name"] == project.get("current_timeline"):
            return timeline
    return None


def item(name, path, start, end, source):
    return {"id": str(uuid.uuid4()), "name": name, "path": path, "start": start, "end": end, "source": source,
            "composite": 0}


def place(state, track, name, start, frames):
    """Puts a clip on "V1", "A2"... of the current timeline, whatever lies there."""
    kind = {"V": "video", "A": "audio"}[track[0].upper()]
    items = current_timeline(state)[kind][int(track[1:]) - 1]["items"]
    items.append(item(name, "", start, start + frames, [0, frames]))


def media_properties(state, path):
    """What the host knows of a file; None when it cannot read such files."""
    name = os.path.basename(path)
    extension = os.path.splitext(name)[1][1:].lower()
    for key in (name, "." + extension):
        if key in state.get("media", {}):
            return dict(state["media"][key])
    for properties, extensions in MEDIA_BY_EXTENSION.values():
        if extension in extensions.split():
            return dict(properties)
    return None


def rate_number(text):
    return float(str(text).split()[0])


def frames_of(timecode, rate):
    hours, minutes, seconds, frames = (int(part) for part in timecode.replace(";", ":").split(":"))
    return ((hours * 60 + minutes) * 60 + seconds) * int(round(rate)) + frames


def timecode_of(frame, rate):
    base = int(round(rate))
    seconds, frames = divmod(frame, base)
    return "%02d:%02d:%02d:%02d" % (seconds // 3600, seconds // 60 % 60, seconds % 60, frames)
