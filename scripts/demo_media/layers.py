"""Clips made of drawings: SVG layers that drift over one another, or one drawing per frame."""

import math
import pathlib
from collections.abc import Sequence

from .clips import CODECS
from .recipe import Recipe, ffmpeg, run
from .stills import bloom, bokeh, soft_disc, svg

WIDTH, HEIGHT = 1280, 720


def scattered(seed: float, count: int) -> list[float]:
    """Numbers between 0 and 1 that look random and never change."""
    return [(math.sin((seed + 1) * 12.9898 + i * 78.233) * 43758.5453) % 1 for i in range(count)]


def drifting(
    path: str, seconds: float, rate: str, layers: Sequence[tuple[str, str, str]], codec: str = "h264"
) -> Recipe:
    """Layers are (SVG, x, y); x and y are overlay expressions of the time t."""

    def make(target: pathlib.Path, scratch: pathlib.Path) -> None:
        inputs: list[str] = []
        graph = f"color=black:s={WIDTH}x{HEIGHT}:r={rate}:d={seconds},format=gbrp[at0]"
        for number, (drawing, x, y) in enumerate(layers):
            (scratch / f"{number}.svg").write_text(drawing)
            run("vips", "copy", scratch / f"{number}.svg", scratch / f"{number}.png")
            inputs += [
                "-loop",
                "1",
                "-framerate",
                rate,
                "-t",
                str(seconds),
                "-i",
                str(scratch / f"{number}.png"),
            ]
            graph += (
                f";[at{number}][{number}:v]overlay=x='{x}':y='{y}':format=gbrp:shortest=1[at{number + 1}]"
            )
        ffmpeg(
            *inputs,
            "-filter_complex",
            graph,
            "-map",
            f"[at{len(layers)}]",
            "-t",
            str(seconds),
            *CODECS[codec].split(),
            target,
        )

    return Recipe(f"Overlays/{path}", make, f"{seconds}\0{rate}\0{layers}\0{codec}")


def frame_by_frame(path: str, rate: str, drawings: Sequence[str], codec: str) -> Recipe:
    def make(target: pathlib.Path, scratch: pathlib.Path) -> None:
        for number, drawing in enumerate(drawings):
            (scratch / f"{number}.svg").write_text(drawing)
            run("vips", "copy", scratch / f"{number}.svg", scratch / f"{number:03}.png")
        ffmpeg("-framerate", rate, "-i", scratch / "%03d.png", *CODECS[codec].split(), target)

    return Recipe(f"Overlays/{path}", make, f"{rate}\0{drawings}\0{codec}")


def lens_ghosts() -> list[tuple[str, str, str]]:
    sun = svg(900, 900, bloom("s", 450, 450, 450, "#fff6dc", "#ffb04a"))
    haze = svg(WIDTH, HEIGHT, bloom("h", 1280, 700, 720, "#a98bff", "#6a3cff", 0.5))
    layers = [(haze, "0", "0"), (sun, "-340+50*t", "-330+12*t")]
    for number, (place, radius, color, strength) in enumerate(
        (
            (0.30, 62, "#ffd27a", 0.55),
            (0.46, 118, "#ff9a5a", 0.30),
            (0.58, 34, "#8affd0", 0.65),
            (0.72, 170, "#7aa0ff", 0.24),
            (0.88, 74, "#ff8ad0", 0.48),
        )
    ):
        drawing = svg(
            2 * radius,
            2 * radius,
            soft_disc(
                f"g{number}",
                radius,
                radius,
                radius,
                [
                    (0, color, strength * 0.5),
                    (0.86, color, strength),
                    (0.95, "#ffffff", strength * 0.9),
                    (1, color, 0),
                ],
            ),
        )
        layers.append(
            (
                drawing,
                f"{1180 * place + 60:.0f}-{radius}+{50 * (1 - 2 * place):.1f}*t",
                f"{640 * place + 60:.0f}-{radius}+{12 * (1 - 2 * place):.1f}*t",
            )
        )
    return layers


def speck(x: float, y: float, weight: float) -> str:
    rx, ry, opacity = 2 + 7 * weight**4, 1.6 + 4 * weight**3, 0.45 + 0.5 * weight
    return (
        f'<ellipse cx="{x * WIDTH:.0f}" cy="{y * HEIGHT:.0f}" rx="{rx:.1f}" ry="{ry:.1f}" fill="#fff" '
        f'fill-opacity="{opacity:.2f}"/>'
    )


def hair(x: float, y: float, bend: float, reach: float) -> str:
    return (
        f'<path d="M{x * WIDTH:.0f} {y * HEIGHT:.0f} q{140 * (bend - 0.3):.0f} {90 * (reach - 0.2):.0f} '
        f'{110 * reach:.0f} {120 * (bend - 0.5):.0f}" fill="none" stroke="#fff" stroke-width="2" '
        f'stroke-opacity="0.7"/>'
    )


def scratch_line(x: float, sway: float, weight: float) -> str:
    return (
        f'<path d="M{x:.1f} 0 Q{x + 14 * sway:.1f} 360 {x + 5 * weight:.1f} 720" fill="none" stroke="#fff" '
        f'stroke-width="{1 + 1.6 * weight:.1f}" stroke-opacity="{0.15 + 0.6 * sway:.2f}"/>'
    )


def worn_film(frames: int) -> list[str]:
    drawings = []
    for frame in range(frames):
        at = iter(scattered(frame, 90))
        marks = [speck(next(at), next(at), next(at)) for _ in range(22)]
        marks += [hair(next(at), next(at), next(at), next(at)) for _ in range(2)]
        marks += [
            scratch_line(x + 6 * next(at), next(at), next(at)) for x in (212, 655, 1018) if next(at) > 0.25
        ]
        drawings.append(svg(WIDTH, HEIGHT, "".join(marks)))
    return drawings


def recipes() -> list[Recipe]:
    warm = ["#ff8c3a", "#ffb347", "#ff5a5f", "#ffd27a"]
    cool = ["#ff4ecd", "#a04aff", "#4a5cff"]
    return [
        drifting(
            "Bokeh/Bokeh Drift.mp4",
            5,
            "25",
            [
                (svg(1600, HEIGHT, bokeh(1600, HEIGHT, cool, 3)), "-30*t", "8*t-20"),
                (svg(1600, HEIGHT, bokeh(1600, HEIGHT, warm, 8)), "-300+34*t", "-10*t"),
            ],
        ),
        drifting("Light Leaks/Lens Ghosts.mov", 4, "25", lens_ghosts()),
        frame_by_frame("Grains/Dust and Scratches.mov", "16", worn_film(24), "animation"),
    ]
