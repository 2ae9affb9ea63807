"""LUTs, computed: one function per look, sampled on lattices of many sizes and written as .cube or .3dl."""

import math
import pathlib
from collections.abc import Callable

from .recipe import Recipe

Color = tuple[float, float, float]
Look = Callable[[float, float, float], Color]


def luma(r: float, g: float, b: float) -> float:
    return 0.2126 * r + 0.7152 * g + 0.0722 * b


def mix(a: float, b: float, amount: float) -> float:
    return a + (b - a) * amount


def contrast(value: float, amount: float) -> float:
    """An S around middle gray; 0 leaves the value alone."""
    return mix(value, value * value * (3 - 2 * value), amount)


def saturated(color: Color, amount: float) -> Color:
    y = luma(*color)
    return tuple(mix(y, value, amount) for value in color)


def split_toned(color: Color, shadows: Color, highlights: Color, amount: float) -> Color:
    y = luma(*color)
    return tuple(
        value + amount * ((1 - y) ** 2 * (low - 0.5) + y * y * (high - 0.5))
        for value, low, high in zip(color, shadows, highlights)
    )


def teal_and_orange(r: float, g: float, b: float) -> Color:
    toned = split_toned(
        (contrast(r, 0.6), contrast(g, 0.5), contrast(b, 0.4)), (0.22, 0.52, 0.62), (0.72, 0.52, 0.32), 0.5
    )
    return saturated(toned, 1.35)


def dusk_fade(r: float, g: float, b: float) -> Color:
    lifted = tuple(0.10 + 0.80 * value for value in saturated((r, g, b), 0.68))
    return split_toned(lifted, (0.52, 0.46, 0.58), (0.58, 0.50, 0.44), 0.3)


def noir(r: float, g: float, b: float) -> Color:
    y = contrast(contrast(luma(r, g, b) ** 1.1, 1), 0.6)
    return y, y, y


def bleach(r: float, g: float, b: float) -> Color:
    y = luma(r, g, b)
    hard = tuple(2 * value * y if y < 0.5 else 1 - 2 * (1 - value) * (1 - y) for value in (r, g, b))
    return saturated(tuple(mix(value, other, 0.75) for value, other in zip((r, g, b), hard)), 0.75)


def cold_harbor(r: float, g: float, b: float) -> Color:
    toned = split_toned(saturated((r, g, b), 0.7), (0.44, 0.50, 0.60), (0.42, 0.53, 0.56), 0.7)
    return tuple(contrast(value, 0.35) for value in toned)


def amber_print(r: float, g: float, b: float) -> Color:
    return 0.04 + 0.96 * contrast(r, 0.3), 0.02 + 0.90 * contrast(g, 0.3), 0.05 + 0.62 * b


def neon_night(r: float, g: float, b: float) -> Color:
    y = luma(r, g, b)
    return (
        mix(r, min(1.0, 1.5 * y**1.6), 0.65),
        mix(g, 0.62 * y + 0.25 * b, 0.7),
        mix(b, 0.18 + 0.9 * y**0.7, 0.75),
    )


def silver(r: float, g: float, b: float) -> Color:
    y = 0.05 + 0.9 * contrast(luma(r, g, b), 0.4)
    return tuple(mix(y * tone, value, 0.18) for value, tone in zip((r, g, b), (1.02, 0.99, 0.95)))


def warm_film(r: float, g: float, b: float) -> Color:
    shoulder = tuple(1 - math.exp(-2.1 * value) for value in (r, g, b))
    full = 1 - math.exp(-2.1)
    return split_toned(
        tuple(value / full * 0.94 + 0.03 for value in shoulder), (0.46, 0.48, 0.54), (0.58, 0.52, 0.42), 0.45
    )


def cross_process(r: float, g: float, b: float) -> Color:
    return contrast(r, 0.9), contrast(g, 0.5) * 0.96 + 0.03, 0.18 + 0.62 * b


def log_to_video(r: float, g: float, b: float) -> Color:
    def unlog(value: float) -> float:
        linear = max(0.0, (10 ** ((value - 0.386) / 0.264) - 0.06) / 5.2)
        return min(1.0, linear ** (1 / 2.4))

    return unlog(r), unlog(g), unlog(b)


def inverted(r: float, g: float, b: float) -> Color:
    return 1 - r, 1 - g, 1 - b


def lattice(look: Look, size: int) -> list[Color]:
    """Red runs fastest."""
    steps = [i / (size - 1) for i in range(size)]
    return [
        tuple(min(1.0, max(0.0, value)) for value in look(r, g, b))
        for b in steps
        for g in steps
        for r in steps
    ]


def cube_text(title: str, look: Look, size: int) -> str:
    rows = "\n".join("%.6f %.6f %.6f" % color for color in lattice(look, size))
    return f'TITLE "{title}"\nLUT_3D_SIZE {size}\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n\n{rows}\n'


def three_dl_text(look: Look, size: int) -> str:
    """10-bit input mesh, 12-bit output, blue runs fastest."""
    steps = [i / (size - 1) for i in range(size)]
    mesh = " ".join(str(round(1023 * step)) for step in steps)
    rows = "\n".join(
        " ".join(str(round(4095 * min(1.0, max(0.0, value)))) for value in look(r, g, b))
        for r in steps
        for g in steps
        for b in steps
    )
    return f"{mesh}\n{rows}\n"


LOOKS = [
    ("Film/Teal & Orange 33.cube", teal_and_orange, 33),
    ("Film/Dusk Fade.cube", dusk_fade, 33),
    ("Film/Noir.cube", noir, 17),
    ("Film/Bleach 17.cube", bleach, 17),
    ("Film/Cold Harbor.cube", cold_harbor, 33),
    ("Film/Amber Print.cube", amber_print, 17),
    ("Film/Neon Night.cube", neon_night, 33),
    ("Film/Silver.cube", silver, 17),
    ("Film/Warm Film 65.cube", warm_film, 65),
    ("Film/Cross Process.cube", cross_process, 33),
    ("Camera/Log to Video.cube", log_to_video, 33),
    ("Camera/Log to Video.3dl", log_to_video, 17),
    ("Camera/Invert 2.cube", inverted, 2),
]


def recipes() -> list[Recipe]:
    def recipe(name: str, look: Look, size: int) -> Recipe:
        def make(target: pathlib.Path, _: pathlib.Path) -> None:
            title = target.stem
            target.write_text(
                three_dl_text(look, size) if name.endswith(".3dl") else cube_text(title, look, size)
            )

        return Recipe(f"LUTs/{name}", make, f"{size}\0{pathlib.Path(__file__).read_text()}")

    return [recipe(*entry) for entry in LOOKS]
