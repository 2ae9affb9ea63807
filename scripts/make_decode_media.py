#!/usr/bin/env python3
"""Makes the files that the decoding bench reads: large photographs, films and five-minute sounds.

usage: make_decode_media.py FOLDER

What is there already is kept, unless another version of this script has made it.
"""

import hashlib
import os
import pathlib
import shutil
import subprocess
import sys

PHOTOGRAPHS = 60
FILMS = 60
FFMPEG = ("ffmpeg", "-v", "error", "-nostdin", "-y")

# Fine detail that moves over large shapes, so that coding it costs what coding a camera's picture costs.
SCENE = "testsrc2=s={size}:r=25:d={seconds},noise=alls=4:allf=t"
H264 = "-c:v libx264 -preset fast -b:v 12M -g 250 -keyint_min 250 -sc_threshold 0 -pix_fmt yuv420p -movflags +faststart"
PRORES_4444 = "-c:v prores_ks -profile:v 4444 -pix_fmt yuva444p10le"
SOUND = "anoisesrc=d=300:c=pink:r=44100:a=0.4:s=1[n];sine=f=330:d=300:r=44100[s];[n][s]join=inputs=2"


def make(target: pathlib.Path, *command: str) -> None:
    """The file appears complete or not at all."""
    if target.exists():
        return
    fresh = target.with_name("unfinished " + target.name)
    subprocess.run([*command, str(fresh)], check=True)
    fresh.rename(target)


def film(target: pathlib.Path, size: str, seconds: int, encoder: str, alpha: bool = False) -> None:
    scene = SCENE.format(size=size, seconds=seconds)
    if alpha:
        scene += f"[c];gradients=s={size}:c0=black:c1=white:r=25:d={seconds},format=gray[a];[c][a]alphamerge"
    make(target, *FFMPEG, "-f", "lavfi", "-i", scene, *encoder.split())


def link(target: pathlib.Path, source: pathlib.Path) -> None:
    if not target.exists():
        os.link(source, target)


def ensure_decode_media(folder: pathlib.Path) -> None:
    recipe = hashlib.sha1(pathlib.Path(__file__).read_bytes()).hexdigest()
    stamp = folder / "recipe"
    if not stamp.exists() or stamp.read_text() != recipe:
        shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True, exist_ok=True)
    stamp.write_text(recipe)
    photograph = folder / "photograph.jpg"
    make(photograph, *FFMPEG, "-f", "lavfi", "-i", SCENE.format(size="6000x4000", seconds=1), "-frames:v", "1",
         "-pix_fmt", "yuvj420p", "-q:v", "4")
    film(folder / "h264.mp4", "1920x1080", 12, H264)
    film(folder / "prores.mov", "1920x1080", 2, PRORES_4444, alpha=True)
    make(folder / "sound.wav", *FFMPEG, "-filter_complex", SOUND, "-c:a", "pcm_s16le")
    for name in ("sound.flac", "sound.mp3", "sound.m4a"):
        make(folder / name, *FFMPEG, "-i", str(folder / "sound.wav"))
    for i in range(PHOTOGRAPHS):
        link(folder / f"photograph {i}.jpg", photograph)
    for i in range(FILMS):
        source = folder / ("prores.mov" if i % 3 == 2 else "h264.mp4")
        link(folder / f"film {i:02}{source.suffix}", source)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    ensure_decode_media(pathlib.Path(sys.argv[1]))
