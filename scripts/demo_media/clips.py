"""Overlay clips: soft light over black, flashes, glitches, grain and transitions.

Shapes are drawn small, as brightness (0 to 1) over U and V (the picture's width and height, 0 to 1) and P
(progress, 0 to 1), enlarged, and only then colored, so that gradients stay smooth.
"""

import pathlib

from .recipe import Recipe, ffmpeg, ffmpeg_recipe

SMALL_HD = (1280, 720)
UHD = (3840, 2160)
PORTRAIT = (720, 1280)

CODECS = {
    "h264": "-c:v libx264 -preset superfast -crf 22 -pix_fmt yuv420p -movflags +faststart",
    "hevc": "-c:v libx265 -preset ultrafast -crf 26 -pix_fmt yuv420p -tag:v hvc1 -x265-params log-level=error",
    "prores": "-c:v prores_ks -profile:v 4 -pix_fmt yuva444p10le -alpha_bits 8 -qscale:v 22 -vendor apl0",
    "png": "-c:v png -pix_fmt rgba -pred none",
    "animation": "-c:v qtrle -pix_fmt argb",
    "gif": "",
}
WITH_ALPHA = ("prores", "png", "animation")

# Exponents of brightness for red, green and blue, and the gain of each: hot in the middle, tinted at the rim.
TINTS = {
    "amber": ((0.75, 1.55, 3.2), (1.0, 0.86, 0.62)),
    "gold": ((0.8, 1.25, 2.6), (1.0, 0.88, 0.62)),
    "ember": ((0.75, 2.2, 5.0), (1.0, 0.86, 0.62)),
    "rose": ((0.75, 2.8, 1.5), (1.0, 0.72, 0.78)),
    "violet": ((1.3, 2.6, 0.8), (0.80, 0.75, 1.0)),
    "ice": ((2.4, 1.15, 0.75), (0.95, 0.96, 1.0)),
    "teal": ((2.8, 1.0, 1.05), (0.85, 0.92, 0.90)),
    "white": ((1.0, 1.0, 1.0), (1.0, 1.0, 1.0)),
}


def glow(x: str, y: str, radius: float, gain: float = 1.0) -> str:
    return f"{gain}*exp(-((U-({x}))^2+((V-({y}))*0.5625)^2)/{radius * radius:.5f})"


def streak(at: str, slant: float, width: float, gain: float = 1.0) -> str:
    return f"{gain}*exp(-((U-({at})+{slant}*(V-0.5))/{width})^2)"


def ring(x: str, y: str, radius: str, width: float, gain: float = 1.0) -> str:
    return f"{gain}*exp(-((hypot(U-({x}),(V-({y}))*0.5625)-({radius}))/{width})^2)"


def cloud(speed: float = 1.0, scale: float = 1.0) -> str:
    """Folded sines: slow smoke, about -1 to 1."""
    t, s = f"{6 * speed}*P", f"{scale}*"
    return (
        f"sin({s}6*U+2.2*sin({s}4*V+{t})+{t})*sin({s}5*V+2*sin({s}3.1*U-0.7*{t})+1)"
        f"+0.35*sin({s}17*U+3*sin({s}9*V-{t}))*sin({s}13*V+2*sin({s}11*U+{t}))"
    )


def soft(expression: str, strength: float = 1.6) -> str:
    """Bends bright sums towards 1, so that a hot middle shows no edge."""
    return f"(1-exp(-{strength}*clip({expression},0,9)))"


def static(grid: str, rate: str, seconds: float, strength: int, seed: int) -> str:
    """Gray noise around the middle; the filter makes it colored unless it may touch brightness alone."""
    return f"color=gray:s={grid}:r={rate}:d={seconds},noise=c0s={strength}:c0f=t:c0_seed={seed},format=gray"


def in_picture(expression: str, seconds: float) -> str:
    # Names of one capital letter; functions are lower case, and geq's own X, Y, W, H and T come in by this.
    for name, meaning in (("U", "(X/W)"), ("V", "(Y/H)"), ("P", f"(T/{seconds})")):
        expression = expression.replace(name, meaning)
    return expression


def drawn(
    shape: str,
    seconds: float,
    rate: str,
    grid: tuple[int, int],
    size: tuple[int, int],
    enlarge: str = "bicubic",
) -> str:
    """Brightness as a stream of 12-bit gray pictures of the given size."""
    return (
        f"nullsrc=s={grid[0]}x{grid[1]}:r={rate}:d={seconds},format=gray12le,"
        f"geq=lum='4095*clip({in_picture(shape, seconds)},0,1)',"
        f"scale={size[0]}:{size[1]}:flags={enlarge}"
    )


def tinted(tint: str) -> str:
    exponents, gains = TINTS[tint]
    channels = (
        f"{name}='maxval*{gain}*pow(val/maxval,{exponent})'"
        for name, exponent, gain in zip("rgb", exponents, gains)
    )
    return "format=gbrp12le,lutrgb=" + ":".join(channels)


# Light over black becomes light on nothing: the brightest channel covers, and the color is divided by it.
LIFTED = (
    ",format=gbrp,split[light][cover];[cover]extractplanes=r+g+b[red][green][blue];"
    "[red][green]blend=all_mode=lighten[warm];[warm][blue]blend=all_mode=lighten[alpha];"
    "[light][alpha]alphamerge,unpremultiply=inplace=1"
)


def clip(path: str, graph: str, codec: str = "h264", options: str = "") -> Recipe:
    # Enlarging from a grid of another shape would leave pixels that are not square.
    return ffmpeg_recipe(
        f"Overlays/{path}", "-filter_complex", f"{graph},setsar=1", *CODECS[codec].split(), *options.split()
    )


def light(
    path: str,
    tint: str,
    shape: str,
    seconds: float,
    *,
    codec: str = "h264",
    rate: str = "25",
    size: tuple[int, int] = SMALL_HD,
    grid: tuple[int, int] = (128, 72),
    enlarge: str = "bicubic",
    second: tuple[str, str] | None = None,
    turn: int = 0,
) -> Recipe:
    """Light of one tint, or of two added up; with a codec that knows transparency, light on nothing."""
    graph = drawn(shape, seconds, rate, grid, size, enlarge) + "," + tinted(tint)
    if second:
        graph += (
            f"[one];{drawn(second[1], seconds, rate, grid, size, enlarge)},{tinted(second[0])}[two];"
            "[one][two]blend=all_mode=screen"
        )
    if codec in WITH_ALPHA:
        graph += LIFTED
    recipe = clip(path, graph, codec)
    return turned(recipe, turn) if turn else recipe


def turned(recipe: Recipe, degrees: int) -> Recipe:
    """The same pixels with a display matrix, as a phone held upright writes it."""

    def make(target: pathlib.Path, scratch: pathlib.Path) -> None:
        lying = scratch / f"lying{target.suffix}"
        recipe.make(lying, scratch)
        ffmpeg("-i", lying, "-c", "copy", "-metadata:s:v:0", f"rotate={degrees}", target)

    return Recipe(recipe.path, make, f"{recipe.ingredients}\0{degrees}")


def light_leaks() -> list[Recipe]:
    folder = "Light Leaks"
    prism = [
        streak(f"0.86+{shift}-0.22*sin(3.1*P)", 0.16, 0.035, 0.55)
        + "+"
        + glow(f"1.02+{shift}", "0.35+0.3*P", 0.2)
        + "+"
        + glow(f"0.72+{shift}", "0.12+0.2*P", 0.1, 0.5)
        for shift in (0.012, 0, -0.014)
    ]
    planes = ":".join(
        f"{name}='4095*clip({gain}*({in_picture(shape, 8)}),0,1)'"
        for name, shape, gain in zip("rgb", prism, (1, 0.82, 0.5))
    )
    return [
        light(
            f"{folder}/Amber Sweep 04.mov",
            "ember",
            glow("-0.06+0.4*P", "0.02+0.2*P", 0.3, 0.8),
            12,
            codec="prores",
            rate="12.5",
            second=("rose", glow("1.02-0.15*P", "1.04-0.1*P", 0.24, 0.62)),
        ),
        clip(
            f"{folder}/Prism Edge.mov",
            f"nullsrc=s=96x54:r=24:d=8,format=gbrp12le,geq={planes},scale=1280:720:flags=bicubic",
            "hevc",
        ),
        light(
            f"{folder}/Streak Warm 2.mov",
            "gold",
            soft(
                streak("0.1+1.1*P", 0.14, 0.05, 1.3)
                + "+"
                + streak("0.02+1.1*P", 0.16, 0.1, 0.35)
                + "+"
                + streak("0.22+1.2*P", 0.12, 0.012, 0.25)
            ),
            6.4,
            grid=(256, 72),
        ),
        light(
            f"{folder}/Sun Flare Soft.mp4",
            "amber",
            soft(glow("0.1+0.55*P", "0.42-0.1*P", 0.14, 1.9) + "+" + glow("0.15+0.5*P", "0.45", 0.4, 0.36)),
            10,
            rate="30000/1001",
        ),
        light(
            f"{folder}/Rose Wash.mp4",
            "rose",
            glow("0.75+0.2*sin(4*P)", "0.75", 0.34, 0.8) + "+" + glow("0.1", "0.2+0.3*P", 0.2, 0.3),
            5,
            second=("violet", glow("0.15+0.3*P", "0.9", 0.3, 0.45)),
        ),
        light(
            f"{folder}/Teal Drift.mp4",
            "teal",
            f"(0.5+0.3*({cloud(0.6, 0.6)}))*exp(-2.6*V*V)",
            6,
            codec="hevc",
        ),
        light(
            f"{folder}/Halo Ring 4K.mp4",
            "gold",
            ring("0.5", "0.5", "0.13+0.1*P", 0.02, 0.75)
            + "+"
            + ring("0.5", "0.5", "0.16+0.1*P", 0.07, 0.35)
            + "+"
            + glow("0.5", "0.5", 0.06, 0.6),
            1.2,
            size=UHD,
            grid=(256, 144),
            rate="24",
        ),
        *(
            light(
                f"{folder}/Film Burns/{name}.mp4",
                tint,
                soft(f"1.1*({cloud(speed, scale)}+{edge})", 1.3),
                seconds,
                rate="24",
                grid=(192, 108),
            )
            for name, tint, speed, scale, edge, seconds in (
                ("Burn Through 01", "ember", 0.9, 0.7, "2.2*P-0.9+0.7*U", 4.0),
                ("Burn Edge 02", "ember", 0.7, 1.0, "1.1*abs(2*U-1)^2+0.4*V-0.75", 5.0),
                ("Brûlure 03", "rose", 1.1, 0.5, "0.9*V+0.4*P-0.5", 3.5),
            )
        ),
    ]


def flashes() -> list[Recipe]:
    folder = "Flashes"
    bolt = "0.5+0.06*sin(9*V+1)+0.035*sin(23*V+2)+0.02*sin(57*V)"
    branch = f"({bolt})+0.34*(V-0.45)+0.02*sin(41*V)"
    flicker = "(0.35+0.65*gt(sin(43*P)+sin(91*P),0.1))*(0.4+0.6*exp(-2*P))"
    return [
        light(
            f"{folder}/White Pop.mov",
            "white",
            "1.3*exp(-1.7*P)*(0.35+0.65*exp(-((U-0.5)^2+(V-0.5)^2)/0.12))",
            1,
            codec="png",
        ),
        light(
            f"{folder}/Strobe Trio.mp4",
            "ice",
            "("
            + glow("0.2", "0.45", 0.16)
            + ")*gt(sin(25*P),-0.6)+("
            + glow("0.5", "0.4", 0.2)
            + ")*gt(sin(25*P+1),-0.4)+("
            + glow("0.8", "0.45", 0.16)
            + ")*gt(sin(25*P+2),-0.5)",
            2,
            rate="50",
        ),
        light(
            f"{folder}/Camera Flash 3.mp4",
            "ice",
            "("
            + glow("0.62", "0.38", 0.12)
            + "+"
            + glow("0.62", "0.38", 0.5, 0.45)
            + "+0.55*exp(-abs(V-0.38)/0.012)*exp(-abs(U-0.62)/0.3))*exp(-2*abs(P-0.35))",
            1.5,
            grid=(320, 180),
            rate="30",
        ),
        light(
            f"{folder}/Lightning Cold.mp4",
            "violet",
            f"({flicker})*(clip(0.004/(abs(U-({bolt}))+0.002),0,1)+0.6*exp(-abs(U-({bolt}))/0.09)"
            f"+gt(V,0.45)*0.7*clip(0.003/(abs(U-({branch}))+0.002),0,1))",
            1.6,
            grid=(320, 180),
        ),
        light(
            f"{folder}/Bulb Pop Warm.mov",
            "gold",
            "(" + glow("0.4", "0.5", 0.2) + "+" + glow("0.4", "0.5", 0.6, 0.5) + ")*exp(-3*P)*1.9",
            1.2,
            codec="prores",
            rate="24",
        ),
    ]


def glitches() -> list[Recipe]:
    folder = "Glitches"

    def blocks(share: float, color: str) -> str:
        return (
            f"nullsrc=s=24x14:r=8:d=3,format=gray,geq=lum='255*gt(random(1),{1 - share})',"
            f"scale=1280:720:flags=neighbor,format=gbrp,{color}"
        )

    bars = (
        "smptehdbars=s=640x360:r=25:d=3,format=gbrp,rgbashift=rh=9:bh=-9:edge=wrap,"
        "noise=alls=26:allf=t:all_seed=5,split[bars][torn];"
        "[torn]scroll=h=-0.05,hue=h=90:b=1[torn2];[bars][torn2]blend=all_expr="
        "'if(gt(sin(Y/H*19+T*5)+sin(Y/H*47-T*9),0.9),B,A)',scale=1280:720:flags=neighbor"
    )
    split = "+".join(
        f"between(U,{x},{x}+{w})*between(V,{y},{y}+{h})*gt(sin({k}*P+{i}),-0.3)"
        for i, (x, w, y, h, k) in enumerate(
            (
                (0.08, 0.5, 0.18, 0.03, 31),
                (0.3, 0.6, 0.3, 0.09, 17),
                (0.12, 0.34, 0.46, 0.05, 23),
                (0.42, 0.5, 0.55, 0.02, 41),
                (0.2, 0.55, 0.63, 0.12, 13),
                (0.55, 0.3, 0.82, 0.04, 29),
            )
        )
    )
    return [
        clip(
            f"{folder}/Scan Glitch.mp4",
            "nullsrc=s=4x360:r=25:d=3.2,format=gbrp,geq="
            "r='(lt(mod(Y,4),2))*(70+120*exp(-((Y/H-mod(0.2+T*0.35,1.2))/0.12)^2)+50*gt(random(1),0.93))':"
            "g='(lt(mod(Y,4),2))*(6+26*exp(-((Y/H-mod(0.2+T*0.35,1.2))/0.05)^2))':"
            "b='(lt(mod(Y,4),2))*(26+34*exp(-((Y/H-mod(0.2+T*0.35,1.2))/0.1)^2))',"
            "scale=1280:720:flags=neighbor,setsar=1,format=rgb24,vignette=a=PI/4.5",
        ),
        clip(
            f"{folder}/RGB Split 2.mp4",
            drawn(f"0.85*({split})", 2.5, "24", (320, 180), SMALL_HD, "neighbor")
            + ",format=gbrp,rgbashift=rh=-26:gv=6:bh=26:edge=smear",
        ),
        clip(
            f"{folder}/Block Shift.mp4",
            f"{blocks(0.09, 'lutrgb=g=0')}[a];{blocks(0.13, 'lutrgb=r=0:g=val*0.85')}[b];"
            f"{blocks(0.2, 'lutrgb=r=val*0.22:g=val*0.1:b=val*0.5')}[c];"
            "[a][b]blend=all_mode=lighten[d];[d][c]blend=all_mode=lighten",
        ),
        clip(f"{folder}/Signal Loss.mp4", bars),
        clip(
            f"{folder}/VHS Tracking.mov",
            f"{static('40x240', '25', 3, 100, 11)},geq=lum='gt(lum(X,Y),186)*lum(X,Y)',"
            "scale=320:240:flags=bilinear,boxblur=5:1,"
            "geq=lum='clip(2.6*lum(X,Y),0,255)*(0.12+exp(-((Y/H-mod(0.45+T*0.13,1))/0.07)^2)+0.6*gt(Y/H,0.93))',"
            "scale=1280:720:flags=bilinear,format=gbrp,rgbashift=rh=-8:bh=8",
            "hevc",
        ),
        clip(
            f"{folder}/Static Burst.mp4",
            f"{static('320x180', '24', 2, 100, 12)},lut=y='clip((val-128)*2.1+70,0,255)',"
            "scale=1280:720:flags=neighbor,"
            "setsar=1,format=rgb24,vignette=a=PI/4,colorchannelmixer=rr=0.9:bb=1.1",
            options="-crf 34",
        ),
        clip(
            f"{folder}/Interlace Tear.gif",
            "nullsrc=s=320x180:r=10:d=1.6,format=gbrp,geq="
            "r='255*lt(mod(Y+4*floor(T*10),12),5)*gt(sin(X/17+floor(Y/12)*1.7+T*9),0.35)':"
            "g='90*lt(mod(Y+4*floor(T*10),12),5)*gt(sin(X/17+floor(Y/12)*1.7+T*9),0.6)':"
            "b='235*lt(mod(Y+4*floor(T*10),12),7)*gt(sin(X/15+floor(Y/12)*1.7+T*9+0.5),0.2)',"
            "scale=640:360:flags=neighbor,split[a][b];[a]palettegen=max_colors=16[p];[b][p]paletteuse",
            "gif",
        ),
    ]


def grains() -> list[Recipe]:
    folder = "Grains"

    def grain(grid: str, rate: str, strength: int, soften: float, tint: str) -> str:
        return (
            f"{static(grid, rate, 2.4, strength, 21)},gblur=sigma={soften},"
            f"lut=y='clip((val-128)*2.4+122,0,255)',scale=1280:720:flags=bicubic,"
            f"format=gbrp,{tint}"
        )

    return [
        clip(f"{folder}/Grain 35mm.mp4", grain("1280x720", "24", 46, 0.7, "null"), options="-crf 31"),
        clip(
            f"{folder}/Grain 16mm Heavy.mov",
            grain("640x360", "24000/1001", 70, 0.9, "colorchannelmixer=rr=1.03:gg=0.99:bb=0.9"),
            "hevc",
            "-crf 33",
        ),
    ]


def transitions() -> list[Recipe]:
    folder = "Transitions"
    wipe = "clip(6*(1.6*P-0.25-0.75*U-0.25*V+0.5),0,1)"
    whip = (
        "nullsrc=s=9x80:r=30:d=1,format=gray,geq=lum='255*pow(random(1),2.6)',tmix=frames=2,"
        f"scale=1280:720:flags=bicubic,{tinted('ice')}"
    )
    return [
        clip(f"{folder}/Whip Left.mp4", whip),
        light(
            f"{folder}/Ink Bleed.mov",
            "violet",
            f"clip(2.6*({cloud(0.5, 0.8)}+3.4*P-1.25-1.2*hypot(U-0.5,V-0.5)),0,1)",
            3,
            codec="png",
            rate="24",
            grid=(256, 144),
            size=(960, 540),
        ),
        light(
            f"{folder}/Iris Close.mov",
            "white",
            "clip(14*(hypot(U-0.5,(V-0.5)*0.5625)-0.42*(1-P)),0,1)",
            1.2,
            codec="animation",
            grid=(320, 180),
        ),
        light(f"{folder}/Luma Diagonal.mp4", "white", wipe, 1.6, rate="30"),
        light(
            f"{folder}/Light Wipe.mp4",
            "ice",
            soft(streak("1.5*P", 0.25, 0.07, 1.6) + "+" + streak("1.5*P-0.12", 0.25, 0.22, 0.4)),
            1.8,
            rate="60",
            grid=(192, 72),
        ),
        light(
            f"{folder}/Shutter Bars.mp4",
            "violet",
            "lt(mod(U*9,1),1.9*P-0.25*floor(U*9)/9)*(0.35+0.65*V)",
            2,
            grid=(640, 36),
            enlarge="neighbor",
        ),
        light(
            f"{folder}/Phone Swipe.mp4",
            "rose",
            "exp(-((V-1.5*P+0.12*sin(3*U+4*P))/0.16)^2)" "+0.3*exp(-((V-1.5*P+0.1)/0.4)^2)",
            2.5,
            size=PORTRAIT,
            grid=(72, 128),
            rate="30",
            second=("violet", "0.6*V*V"),
        ),
        light(
            f"{folder}/Phone Spin.mov",
            "teal",
            ring("0.5", "0.5", "0.05+0.4*P", 0.03, 0.9)
            + "+"
            + ring("0.5", "0.5", "0.4*P", 0.09, 0.4)
            + "+"
            + glow("0.1", "0.2", 0.2, 0.5),
            2.2,
            grid=(256, 144),
            rate="30",
            turn=90,
        ),
    ]


def recipes() -> list[Recipe]:
    return [*light_leaks(), *flashes(), *glitches(), *grains(), *transitions()]
