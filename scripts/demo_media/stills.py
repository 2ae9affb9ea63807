"""Overlay stills. Most are drawn as SVG and turned into the wanted format by libvips's tools."""

import math
import pathlib
import struct

from .recipe import Recipe, ffmpeg_recipe, run

FOLDER = "Overlays"


def svg(width: int, height: int, body: str, backdrop: str = "") -> str:
    ground = f'<rect width="100%" height="100%" fill="{backdrop}"/>' if backdrop else ""
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}">{ground}{body}</svg>'
    )


def soft_disc(name: str, x: float, y: float, radius: float, stops: list[tuple[float, str, float]]) -> str:
    """A radial gradient; stops are (place 0 to 1, color, opacity)."""
    marks = "".join(
        f'<stop offset="{at}" stop-color="{color}" stop-opacity="{opacity}"/>'
        for at, color, opacity in stops
    )
    return (
        f'<radialGradient id="{name}" gradientUnits="userSpaceOnUse" cx="{x}" cy="{y}" r="{radius}">{marks}'
        f'</radialGradient><circle cx="{x}" cy="{y}" r="{radius}" fill="url(#{name})"/>'
    )


def bloom(name: str, x: float, y: float, radius: float, heart: str, rim: str, strength: float = 1.0) -> str:
    return soft_disc(
        name,
        x,
        y,
        radius,
        [(0, heart, strength), (0.35, rim, 0.62 * strength), (0.7, rim, 0.16 * strength), (1, rim, 0)],
    )


def bokeh(width: int, height: int, palette: list[str], seed: int) -> str:
    """Discs of light out of focus, brighter at the rim, small ones in front; the same for the same seed."""
    discs = []
    for i in range(34):
        a, b, c = ((math.sin(seed * 12.9898 + i * k) * 43758.5453) % 1 for k in (78.233, 37.719, 11.135))
        radius = (0.022 + 0.07 * c**2) * width
        color = palette[i % len(palette)]
        discs.append(
            soft_disc(
                f"d{i}",
                a * width,
                (0.12 + 0.8 * b) * height,
                radius,
                [
                    (0, color, 0.16 + 0.3 * b),
                    (0.84, color, 0.24 + 0.34 * b),
                    (0.95, "#fff4e0", 0.42),
                    (1, color, 0),
                ],
            )
        )
    return "".join(discs)


def turned_jpeg(upright: pathlib.Path, target: pathlib.Path, orientation: int, scratch: pathlib.Path) -> None:
    """Writes the pixels so that only a reader that obeys the EXIF orientation shows them upright."""
    steps = {
        1: (),
        2: (("flip", "horizontal"),),
        3: (("rot", "d180"),),
        4: (("flip", "vertical"),),
        5: (("rot", "d90"), ("flip", "horizontal")),
        6: (("rot", "d270"),),
        7: (("rot", "d270"), ("flip", "horizontal")),
        8: (("rot", "d90"),),
    }[orientation]
    picture = upright
    for number, (operation, argument) in enumerate(steps):
        turned = scratch / f"turn{number}.v"
        run("vips", operation, picture, turned, argument)
        picture = turned
    plain = scratch / "plain.jpg"
    run("vips", "jpegsave", picture, plain, "--Q", "88", "--strip")
    # One entry in the first directory of a big-endian TIFF header: 0x0112, a short, one of them.
    tiff = b"MM\0\x2a" + struct.pack(">IHHHIHHI", 8, 1, 0x0112, 3, 1, orientation, 0, 0)
    exif = b"Exif\0\0" + tiff
    data = plain.read_bytes()
    target.write_bytes(data[:2] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + data[2:])


def convert(upright: pathlib.Path, target: pathlib.Path, scratch: pathlib.Path) -> None:
    if target.suffix == ".heic":
        png = scratch / "upright.png"
        run("vips", "copy", upright, png)
        run("heif-enc", "-q", "62", png, "-o", target)
    elif target.suffix == ".tif":
        # 257 takes 255 to 65535.
        run("vips", "linear", upright, scratch / "wide.v", "257", "0")
        run("vips", "cast", scratch / "wide.v", scratch / "deep.v", "ushort")
        run("vips", "tiffsave", scratch / "deep.v", target, "--compression", "deflate")
    else:
        run("vips", "copy", upright, target)


def picture(name: str, drawing: str, orientation: int = 0) -> Recipe:
    def make(target: pathlib.Path, scratch: pathlib.Path) -> None:
        source = scratch / "drawing.svg"
        source.write_text(drawing)
        if orientation:
            turned_jpeg(source, target, orientation, scratch)
        else:
            convert(source, target, scratch)

    return Recipe(f"{FOLDER}/{name}", make, f"{drawing}\0{orientation}\0{pathlib.Path(__file__).read_text()}")


def blooms() -> list[Recipe]:
    w, h = 1920, 1080
    aurora = (
        bloom("a", 1480, -60, 640, "#7fecff", "#2fd6ff")
        + bloom("b", 500, 1500, 900, "#a48bff", "#5b45ff", 0.95)
        + bloom("c", 1330, 1500, 860, "#8d7bff", "#4a3cf0", 0.9)
    )
    veil = (
        bloom("a", 160, 120, 900, "#ff9ee4", "#ff4ecd", 0.8)
        + bloom("b", 1700, 980, 980, "#9f8bff", "#6a3cff", 0.9)
        + bloom("c", 980, 620, 420, "#ffd0b0", "#ff8c3a", 0.45)
    )
    sunset = (
        bloom("a", 1180, 640, 520, "#fff0c8", "#ffb347")
        + bloom("b", 1180, 640, 1300, "#ff8a5c", "#ff3d6e", 0.75)
        + bloom("c", 60, 60, 900, "#7a6bff", "#3a2a9c", 0.7)
    )
    spectrum = "".join(
        f'<path d="M{-200 + 62 * i} 1180 L{620 + 62 * i} -100 L{700 + 62 * i} -100 L{-120 + 62 * i} 1180 Z" '
        f'fill="{color}" fill-opacity="0.55" filter="url(#soft)"/>'
        for i, color in enumerate(
            ("#ff2d55", "#ff8c3a", "#ffd54a", "#62d991", "#2fd6ff", "#4a5cff", "#a04aff"), 7
        )
    )
    glass = (
        '<filter id="soft" x="-50%" y="-50%" width="200%" height="200%"><feGaussianBlur stdDeviation="30"/></filter>'
        + spectrum
    )
    star = bloom("s", 760, 470, 420, "#ffffff", "#ffd9a0", 0.95) + "".join(
        f'<ellipse cx="760" cy="470" rx="{rx}" ry="{ry}" fill="#fff3dc" fill-opacity="0.55" '
        f'transform="rotate({turn} 760 470)" filter="url(#ray)"/>'
        for rx, ry, turn in ((900, 5, 0), (560, 4, 90), (380, 3, 45), (380, 3, 135))
    )
    flare = '<filter id="ray"><feGaussianBlur stdDeviation="5 1.6"/></filter>' + star
    return [
        picture("Light Leaks/Aurora Bloom.png", svg(w, h, aurora)),
        picture("Light Leaks/Violet Veil.webp", svg(1600, 900, veil, "#000000")),
        picture("Light Leaks/Sunset Veil.heic", svg(1600, 900, sunset, "#08030c")),
        picture("Light Leaks/Prism Glass.webp", svg(w, h, glass)),
        picture("Flashes/Star Filter.png", svg(w, h, flare)),
        picture(
            "Flashes/Overexposed.jpeg",
            svg(1600, 900, bloom("a", 900, 380, 1300, "#ffffff", "#ffd9b0"), "#1a0d06"),
        ),
        picture(
            "Light Leaks/Glow Plate 16 bit.tif",
            svg(
                1280,
                720,
                bloom("a", 240, 620, 860, "#fff1d0", "#ff7a3a")
                + bloom("b", 1200, 40, 560, "#ff9ad5", "#c02a8a", 0.8),
                "#000000",
            ),
        ),
    ]


def bokeh_set() -> list[Recipe]:
    palettes = [
        ["#ff8c3a", "#ffb347", "#ff5a5f"],
        ["#2fd6ff", "#4a5cff", "#7fecff"],
        ["#ff4ecd", "#a04aff", "#ff9ad5"],
        ["#62d991", "#1fa2a6", "#c8f2b0"],
        ["#ffd54a", "#ff8c3a", "#fff1c0"],
        ["#4a5cff", "#a04aff", "#2fd6ff"],
        ["#ff5a5f", "#ff4ecd", "#ffb347"],
        ["#e9eaee", "#9fb4ff", "#ffd9b0"],
    ]
    return [
        picture(
            f"Bokeh/Bokeh Lights {turn}.jpg", svg(1200, 800, bokeh(1200, 800, palette, turn), "#06050a"), turn
        )
        for turn, palette in enumerate(palettes, 1)
    ]


def textures() -> list[Recipe]:
    def paper(target: pathlib.Path, scratch: pathlib.Path) -> None:
        names = [scratch / f"{step}.v" for step in ("fibre", "cloud", "grain", "two", "sum", "deep")]
        fibre, cloudy, grain, two, total, deep = names
        run("vips", "perlin", fibre, "1600", "900", "--cell-size", "7", "--seed", "4")
        run("vips", "perlin", cloudy, "1600", "900", "--cell-size", "220", "--seed", "9")
        run("vips", "gaussnoise", grain, "1600", "900", "--sigma", "0.22", "--mean", "0", "--seed", "2")
        run("vips", "add", fibre, cloudy, two)
        run("vips", "add", two, grain, total)
        run("vips", "linear", total, scratch / "scaled.v", "7600", "41000")
        run("vips", "cast", scratch / "scaled.v", deep, "ushort")
        run("vips", "tiffsave", deep, target, "--compression", "deflate", "--predictor", "horizontal")

    def circling(gain: int, radius: float, sign: str) -> str:
        """A spot that goes round in two seconds; `sign` + is the other side of the circle."""
        return (
            f"clip({gain}*exp(-((X/W-0.5{sign}0.36*cos(T*PI))^2+((Y/H-0.5{sign}0.3*sin(T*PI))*0.56)^2)/{radius})"
            ",0,255)"
        )

    return [
        Recipe(f"{FOLDER}/Grains/Paper Fibre.tiff", paper, pathlib.Path(__file__).read_text()),
        ffmpeg_recipe(
            f"{FOLDER}/Light Leaks/Light Loop.gif",
            "-filter_complex",
            f"nullsrc=s=120x68:r=12:d=2,format=gbrp,geq=r='{circling(290, 0.05, '-')}'"
            f":g='{circling(150, 0.035, '-')}':b='{circling(230, 0.05, '+')}',"
            "scale=480:270:flags=bicubic,split[a][b];[a]palettegen[p];[b][p]paletteuse=dither=bayer",
        ),
    ]


def recipes() -> list[Recipe]:
    return [*blooms(), *bokeh_set(), *textures()]
