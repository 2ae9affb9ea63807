# Cratewell by Tolvan: places a vault asset at the playhead in DaVinci Resolve.
import sys

# An empty entry is the current folder, whose modules are none of ours.
sys.path[:] = [entry for entry in sys.path if entry]

import os, json, shutil, time

SUPPORT = os.path.expanduser("~/Library/Application Support/Cratewell")

# Rates that some hosts cut to whole numbers; none of them is a rate of its own.
CUT_RATES = {23: 23.976, 29: 29.97, 47: 47.952, 59: 59.94, 95: 95.904, 119: 119.88}


def frame_rate(setting, otherwise=24.0):
    """The number that a setting such as "29.97 DF" begins with."""
    number = ""
    for character in str(setting).strip():
        if character not in "0123456789.":
            break
        number += character
    try:
        rate = float(number)
    except ValueError:
        rate = 0.0
    return CUT_RATES.get(rate, rate) or otherwise


def tc_to_frames(tc, rate):
    base = int(round(rate))
    h, m, s, f = [int(part) for part in tc.replace(";", ":").split(":")]
    return ((h * 60 + m) * 60 + s) * base + f


def find_bin(mp, name):
    root = mp.GetRootFolder()
    for folder in root.GetSubFolderList() or []:
        if folder.GetName() == name:
            return folder
    return mp.AddSubFolder(root, name)


def import_clip(mp, path):
    """The imported clip or None; the media pool's current bin is afterwards what it was before."""
    before = mp.GetCurrentFolder()
    try:
        folder = find_bin(mp, "Cratewell")
        if folder:
            mp.SetCurrentFolder(folder)
        clips = mp.ImportMedia([path]) or []
    finally:
        if before:
            mp.SetCurrentFolder(before)
    return clips[0] if clips else None


def is_still(clip):
    try:
        return "still" in str(clip.GetClipProperty("Type")).lower()
    except Exception:
        return False


def source_frames(clip):
    """How many frames the clip has, or 0 where the host does not say or the clip is a still."""
    try:
        return 0 if is_still(clip) else max(0, int(clip.GetClipProperty("Frames")))
    except Exception:
        return 0


def timeline_length(clip, frames, rate):
    """How many timeline frames the clip will cover; 1 where its length is not known."""
    try:
        clip_rate = frame_rate(clip.GetClipProperty("FPS"), rate)
        if frames == 0 and not is_still(clip):
            frames = tc_to_frames(clip.GetClipProperty("Duration"), clip_rate)
        return max(1, int(frames * rate / clip_rate + 1e-6))
    except Exception:
        return max(1, frames)


def end_is_exclusive(resolve):
    try:
        return int(resolve.GetVersion()[0]) >= 19
    except Exception:
        return False


def track_free(tl, kind, index, frame, length=1):
    for item in tl.GetItemListInTrack(kind, index) or []:
        if item.GetStart() < frame + length and frame < item.GetEnd():
            return False
    return True


def choose_track(tl, kind, choice, frame, length):
    """The index of a track that is free there; a new one where the choice allows none of the present."""
    count = int(tl.GetTrackCount(kind) or 0)
    if kind == "audio":
        candidates = range(1, count + 1)
    else:
        candidates = [count] if choice == "free" and count else []
    for index in candidates:
        if track_free(tl, kind, index, frame, length):
            return index
    if kind == "audio":
        tl.AddTrack("audio", "stereo")
    else:
        tl.AddTrack("video")
    return int(tl.GetTrackCount(kind) or 0)


def is_placed(item):
    """False for the hollow item without an identity that a host hands back for a dropped overlap."""
    try:
        return bool(item) and item.GetUniqueId() != ""
    except Exception:
        return True


def failed(message):
    return {"ok": False, "message": message}


def run(resolve, req):
    pm = resolve.GetProjectManager()
    project = pm.GetCurrentProject() if pm else None
    if not project:
        return failed("Open a project in Resolve first.")
    tl = project.GetCurrentTimeline()
    if not tl:
        return failed("Open a timeline in Resolve first.")
    path, audio, name = req["path"], req["kind"] == "audio", req.get("name", "")

    mp = project.GetMediaPool()
    clip = import_clip(mp, path)
    if not clip:
        return failed("Resolve could not import %s." % name)

    rate = frame_rate(tl.GetSetting("timelineFrameRate"))
    timecode = tl.GetCurrentTimecode()
    frame = tc_to_frames(timecode, rate)
    frames = source_frames(clip)
    length = timeline_length(clip, frames, rate)
    track = choose_track(tl, "audio" if audio else "video", req.get("track"), frame, length)

    placement = {"mediaPoolItem": clip, "trackIndex": track, "recordFrame": frame}
    placement["mediaType"] = 2 if audio else 1
    if frames > 0:
        placement["startFrame"] = 0
        placement["endFrame"] = frames if end_is_exclusive(resolve) else frames - 1
    items = mp.AppendToTimeline([placement]) or []
    if not items or not is_placed(items[0]):
        return failed("Resolve imported %s but could not place it on the timeline." % name)

    blend = int(req.get("blend", -1))
    if not audio and blend >= 0:
        try:
            items[0].SetProperty("CompositeMode", blend)
        except Exception:
            pass
    place = (name, "A" if audio else "V", track, timecode)
    return {"ok": True, "message": "Inserted %s on %s%d at %s" % place}
