"""A stand-in for the host's scripting module, for tests and the demo: put this folder on PYTHONPATH and name
a project file (see project_file.py) in CRATEWELL_STANDIN_PROJECT.

It fails as the host does: with None, False or an empty list, hardly ever with an exception. Tracks count from
1, record frames are absolute, a clip that would overlap another is dropped without a word, and what the end
frame of a range means depends on the version. Every change is in the file before the call returns.
"""
import functools
import os
import time

import project_file

STILL_SECONDS = 5
AUDIO_LAYOUTS = ["mono", "stereo", "lrc", "lcr", "quad", "5.1", "7.1"]
FAILURES = {"none": None, "false": False, "empty": []}


class Host:
    def __init__(self, path):
        self.path = path
        self.state = project_file.read(path)

    @property
    def version(self):
        return tuple(self.state["host"]["version"][:3])

    def save(self):
        project_file.write(self.path, self.state)

    def failure(self, call):
        """Carries out the failure that the file orders for a call: (True, answer) when there is one."""
        order = self.state.get("failures", {}).get(call)
        if order == "raise":
            raise RuntimeError("%s failed" % call)
        while order == "hang":
            time.sleep(60)
        return order in FAILURES, FAILURES.get(order)


def host_call(method):
    @functools.wraps(method)
    def call(self, *arguments):
        fails, answer = self._host.failure(method.__name__)
        return answer if fails else method(self, *arguments)

    return call


def not_callable(*_):
    raise TypeError("'NoneType' object is not callable")


class Proxy:
    """Any name seems to be there, as on the host; only a call shows that it is not."""

    def __init__(self, host, data=None):
        self._host = host
        self._data = data

    def __init_subclass__(cls, **_):
        for name, member in list(vars(cls).items()):
            if name[0].isupper() and callable(member):
                setattr(cls, name, host_call(member))

    def __getattr__(self, name):
        if name.startswith("__"):
            raise AttributeError(name)
        return not_callable


class Resolve(Proxy):
    def GetVersion(self):
        return list(self._host.state["host"]["version"])

    def GetProductName(self):
        return self._host.state["host"]["product"]

    def GetProjectManager(self):
        return ProjectManager(self._host)


class ProjectManager(Proxy):
    def GetCurrentProject(self):
        project = self._host.state.get("project")
        return Project(self._host, project) if project else None


class Project(Proxy):
    def GetName(self):
        return self._data["name"]

    def GetMediaPool(self):
        return MediaPool(self._host, self._data)

    def GetCurrentTimeline(self):
        timeline = project_file.current_timeline(self._host.state)
        return Timeline(self._host, timeline) if timeline else None


class Folder(Proxy):
    def __init__(self, host, data, path):
        super().__init__(host, data)
        self._path = path

    def _children(self):
        return [Folder(self._host, bin_, self._path + "/" + bin_["name"]) for bin_ in self._data["bins"]]

    def _find(self, path):
        if self._path == path:
            return self
        return next((found for child in self._children() for found in [child._find(path)] if found), None)

    def GetName(self):
        return self._data["name"]

    def GetSubFolderList(self):
        return self._children()

    def GetClipList(self):
        return [MediaPoolItem(self._host, clip) for clip in self._data["clips"]]


class MediaPoolItem(Proxy):
    def GetName(self):
        return self._data["name"]

    def GetClipProperty(self, name=None):
        return dict(self._data["properties"]) if name is None else self._data["properties"].get(name, "")


class TimelineItem(Proxy):
    def GetName(self):
        return self._data["name"]

    def GetUniqueId(self):
        return self._data["id"]

    def GetStart(self, _subframes=False):
        return self._data["start"]

    def GetEnd(self, _subframes=False):
        return self._data["end"]

    def GetProperty(self, key):
        return self._data["composite"] if key == "CompositeMode" else None

    def SetProperty(self, key, value):
        if key != "CompositeMode" or not 0 <= value <= 31 or not self._data["id"]:
            return False
        self._data["composite"] = int(value)
        self._host.save()
        return True


class Timeline(Proxy):
    def GetName(self):
        return self._data["name"]

    def GetSetting(self, name):
        return self._data["rate"] if name == "timelineFrameRate" else ""

    def GetStartTimecode(self):
        return self._data["start"]

    def GetCurrentTimecode(self):
        return self._data["playhead"]

    def GetTrackCount(self, kind):
        return len(self._data.get(kind, []))

    def AddTrack(self, kind, layout=None):
        if kind not in ("video", "audio") or (kind == "audio" and layout not in [None] + AUDIO_LAYOUTS):
            return False
        self._data[kind].append({"items": []} if kind == "video" else {"type": layout or "mono", "items": []})
        self._host.save()
        return True

    def GetItemListInTrack(self, kind, index):
        tracks = self._data.get(kind, [])
        if not 1 <= index <= len(tracks):
            return None
        return [TimelineItem(self._host, item) for item in tracks[index - 1]["items"]]


class MediaPool(Proxy):
    def _root(self):
        return Folder(self._host, self._data["pool"], self._data["pool"]["name"])

    def GetRootFolder(self):
        return self._root()

    def GetCurrentFolder(self):
        return self._root()._find(self._data["current_bin"])

    def SetCurrentFolder(self, folder):
        if not isinstance(folder, Folder):
            return False
        self._data["current_bin"] = folder._path
        self._host.save()
        return True

    def AddSubFolder(self, folder, name):
        if not isinstance(folder, Folder) or any(bin_["name"] == name for bin_ in folder._data["bins"]):
            return None
        folder._data["bins"].append({"name": name, "clips": [], "bins": []})
        self._host.save()
        return folder._children()[-1]

    def ImportMedia(self, paths):
        bin_ = self._root()._find(self._data["current_bin"])
        clips = []
        for path in paths:
            properties = project_file.media_properties(self._host.state, path)
            if properties is None or not os.path.isfile(path):
                continue
            clip = {"name": os.path.basename(path), "path": path, "properties": properties}
            bin_._data["clips"].append(clip)
            clips.append(MediaPoolItem(self._host, clip))
        self._host.save()
        return clips

    def AppendToTimeline(self, placements):
        timeline = project_file.current_timeline(self._host.state)
        fractional = any(placement.get(key, 0) % 1 for placement in placements
                         for key in ("recordFrame", "startFrame", "endFrame"))
        if timeline is None or (fractional and self._host.version >= (21,)):
            return []
        items = [item for item in (self._place(timeline, placement) for placement in placements) if item]
        self._host.save()
        return items

    def _place(self, timeline, placement):
        clip = placement["mediaPoolItem"]._data
        kind = "audio" if clip["properties"].get("Type") == "Audio" else "video"
        if placement.get("mediaType") not in (None, 2 if kind == "audio" else 1):
            return None
        # Audio tracks were counted by the video tracks for a long time.
        counted = "video" if self._host.version < (20, 2, 2) else kind
        index = placement["trackIndex"]
        if not 1 <= index <= min(len(timeline[kind]), len(timeline[counted])):
            return None
        first, source = self._source_range(clip["properties"], placement, timeline)
        rate = project_file.rate_number(timeline["rate"])
        clip_rate = float(clip["properties"].get("FPS") or rate)
        start = int(placement["recordFrame"])
        end = start + int(source * rate / clip_rate + 1e-6)
        if end <= start:
            return None
        item = project_file.item(clip["name"], clip["path"], start, end, [first, first + source])
        items = timeline[kind][index - 1]["items"]
        if any(other["start"] < end and start < other["end"] for other in items):
            hollow = self._host.state["host"].get("hollow_overlaps", True)
            return TimelineItem(self._host, dict(item, id="")) if hollow else None
        items.append(item)
        items.sort(key=lambda other: other["start"])
        return TimelineItem(self._host, item)

    def _source_range(self, properties, placement, timeline):
        """First source frame and number of source frames."""
        rate = project_file.rate_number(timeline["rate"])
        if properties.get("Type") == "Still":
            whole = int(STILL_SECONDS * rate)
        elif properties.get("Frames"):
            whole = int(properties["Frames"])
        else:
            whole = project_file.frames_of(properties["Duration"], float(properties.get("FPS") or rate))
        if "startFrame" not in placement or "endFrame" not in placement:
            return 0, whole
        first = int(placement["startFrame"])
        end = int(placement["endFrame"]) + (0 if self._host.version >= (19,) else 1)
        return first, min(end, whole) - first


def scriptapp(name):
    host = open_host()
    if name != "Resolve" or host is None:
        return None
    fails, answer = host.failure("scriptapp")
    return answer if fails else Resolve(host)


def open_host():
    try:
        return Host(os.environ[project_file.VARIABLE])
    except (KeyError, OSError, ValueError):
        return None


_host = open_host()
if _host:
    _host.failure("import")
