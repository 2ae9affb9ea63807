"""Sound effects: noise and tones under envelopes. t is the time in seconds, d the length."""

from .recipe import Recipe, ffmpeg_recipe

CODECS = {
    "wav": "-c:a pcm_s16le",
    "wav24": "-c:a pcm_s24le",
    "aiff": "-c:a pcm_s16be",
    "aif": "-c:a pcm_s16be",
    "mp3": "-c:a libmp3lame -b:a 192k",
    "m4a": "-c:a aac -b:a 160k",
    "caf": "-c:a pcm_s16le",
    "flac": "-c:a flac",
    "aac": "-c:a aac -b:a 128k",
}


def swell(at: float, width: float, gain: float = 1.0) -> str:
    return f"{gain}*exp(-((t-{at})/{width})^2)"


def hit(at: float, fall: float, gain: float = 1.0, rise: float = 0.003) -> str:
    return f"gte(t,{at})*{gain}*(1-exp(-(t-{at})/{rise}))*exp(-(t-{at})/{fall})"


def tone(pitch: str) -> str:
    return f"sin(2*PI*({pitch}))"


NOISE = "(2*random(0)-1)"


def sound(
    path: str,
    seconds: float,
    channels: list[str],
    finish: str = "",
    *,
    codec: str = "",
    rate: int = 48000,
    layout: str = "",
) -> Recipe:
    layout = layout or {1: "mono", 2: "stereo", 6: "5.1"}[len(channels)]
    kind = codec or path.rsplit(".", 1)[1]
    source = f"aevalsrc='{'|'.join(channels)}':s={rate}:d={seconds}:c={layout}"
    graph = source + (f",{finish}" if finish else "") + ",alimiter=limit=0.94:level=0"
    return ffmpeg_recipe(f"SFX/{path}", "-filter_complex", graph, *CODECS[kind].split())


def wide(left: str, right: str) -> list[str]:
    return [left, right]


def noisy(envelope: str, channels: int = 2) -> list[str]:
    """Noise of its own in each channel under one envelope."""
    return [f"({envelope})*(2*random({i})-1)" for i in range(channels)]


def whooshes() -> list[Recipe]:
    folder = "Whooshes"
    lobes = "+".join(
        (swell(0.3, 0.17, 0.62), swell(0.78, 0.17, 0.95), swell(1.25, 0.15, 0.5), "0.06*(1-t/2.1)")
    )
    return [
        sound(f"{folder}/Whoosh Deep 07.wav", 2.1, noisy(lobes), "lowpass=f=900,volume=3.2"),
        sound(f"{folder}/Whoosh Air.aiff", 1.2, noisy(swell(0.5, 0.22, 0.8)), "highpass=f=1400", rate=44100),
        sound(
            f"{folder}/Whoosh Fast 2.mp3", 0.8, noisy(swell(0.28, 0.1)), "bandpass=f=1800:t=h:w=1600,volume=2"
        ),
        sound(f"{folder}/Whoosh Reverse.m4a", 1.9, noisy("gt(1.6,t)*(t/1.6)^4"), "lowpass=f=4200,volume=1.4"),
        sound(
            f"{folder}/Fly By.wav",
            3.4,
            wide(f"{NOISE}*({swell(1.3, 0.55, 0.9)})", f"{NOISE}*({swell(1.9, 0.55, 0.9)})"),
            "lowpass=f=2400,volume=1.7",
            codec="wav24",
        ),
        sound(
            f"{folder}/Sweep Up.flac",
            2.6,
            noisy(f"{swell(1.9, 0.6, 0.8)}+{swell(0.8, 0.4, 0.25)}"),
            "bandpass=f=2200:t=h:w=2600",
        ),
        sound(
            f"{folder}/Cape.caf",
            0.9,
            noisy(f"{swell(0.2, 0.07)}+{swell(0.45, 0.08, 0.6)}", 1),
            "lowpass=f=1500,volume=2.4",
        ),
        sound(
            f"{folder}/Arrow.aac", 0.6, noisy(f"{swell(0.14, 0.05)}+{hit(0.3, 0.06, 0.7)}"), "highpass=f=900"
        ),
        sound(
            f"{folder}/Vortex.wav",
            11,
            noisy("(0.25+0.6*t/11)*(0.55+0.45*sin(2*PI*(0.5*t+0.07*t*t)))"),
            "lowpass=f=1300,volume=2",
        ),
    ]


def hits() -> list[Recipe]:
    folder = "Hits"
    low = f"0.9*{tone('90*t-24*t*t')}*({hit(0.05, 0.42)})"
    drum = f"{tone('140*t-90*t*t')}*({hit(0.02, 0.14)})"
    surround = [
        f"({hit(0.1, 0.7, gain)})*(0.6*{tone('52*t')}+0.4*(2*random({i})-1))"
        for i, gain in enumerate((0.9, 0.9, 0.7, 1.0, 0.5, 0.5))
    ]
    ring = "+".join(
        f"{gain}*{tone(f'{pitch}*t')}*exp(-t/{fall})"
        for pitch, gain, fall in ((523, 0.3, 0.9), (1187, 0.24, 0.6), (1911, 0.18, 0.45), (2777, 0.14, 0.3))
    )
    return [
        sound(
            f"{folder}/Impact Low.wav",
            1.4,
            [f"{low}+{NOISE}*({hit(0.05, 0.1, 0.5)})+{NOISE}*({hit(0.42, 0.16, 0.16)})"] * 2,
        ),
        sound(
            f"{folder}/Boom Far.mp3",
            3.2,
            [f"0.9*{tone('44*t')}*({hit(0.1, 0.9, 1, 0.03)})+0.3*{NOISE}*({hit(0.1, 0.5)})"] * 2,
            "lowpass=f=380,volume=1.6",
        ),
        sound(f"{folder}/Punch Tight.wav", 0.4, [f"{drum}+{NOISE}*({hit(0.02, 0.03, 0.4)})"], rate=44100),
        sound(
            f"{folder}/Metal Slam.aif",
            1.8,
            wide(f"({ring})+{NOISE}*({hit(0.0, 0.05, 0.6)})", f"({ring})+{NOISE}*({hit(0.012, 0.05, 0.5)})"),
        ),
        sound(f"{folder}/Trailer Hit 5.1.wav", 2.8, surround, codec="wav24"),
        sound(
            f"{folder}/Double Knock.flac",
            0.9,
            [f"{tone('190*t')}*({hit(0.05, 0.05)}+{hit(0.32, 0.06, 0.8)})"],
        ),
    ]


def risers() -> list[Recipe]:
    folder = "Risers"
    pulses = "(0.16+0.84*(t/14)^1.6)*(0.62+0.38*sin(2*PI*(0.32*t+0.045*t*t)))*lt(t,13.4)"
    # Four voices an octave apart, each rising through a bell of loudness.
    climbs = [f"mod(t/5+{i / 4},1)" for i in range(4)]
    voices = [f"exp(-(({climb}-0.5)/0.22)^2)*{tone(f'397*exp(1.386*{climb})/1.386')}" for climb in climbs]
    strings = [tone("220*t+5*t*t"), tone("233*t+5*t*t"), tone("311*t+7*t*t")]
    return [
        sound(
            f"{folder}/Riser 12.wav",
            14,
            [f"({pulses})*(0.45*{tone('70*t+12*t*t')}+0.55*(2*random({i})-1)*0.7)" for i in (0, 1)],
            "lowpass=f=6000",
        ),
        sound(
            f"{folder}/Tension Strings.m4a",
            8,
            [f"(t/8)^1.3*0.25*({'+'.join(strings)})"] * 2,
            "tremolo=f=7:d=0.35",
        ),
        sound(f"{folder}/Shepard Climb.flac", 5, [f"0.4*(0.3+0.7*t/5)*({'+'.join(voices)})"]),
        sound(f"{folder}/Reverse Cymbal.wav", 2.4, noisy("(t/2.4)^3*0.9"), "highpass=f=2500"),
    ]


def small_sounds() -> list[Recipe]:
    def click(pitch: int, fall: float, second: float = 0.0) -> list[str]:
        body = f"0.8*{tone(f'{pitch}*t')}*({hit(0.012, fall)})"
        return [body + (f"+0.6*{tone(f'{pitch * 1.5}*t')}*({hit(second, fall)})" if second else "")]

    shutter = f"{NOISE}*({hit(0.03, 0.012)}+{hit(0.075, 0.02, 0.7)}+{hit(0.15, 0.014, 0.9)})"
    motor = f"{NOISE}*0.35*(0.6+0.4*{tone('38*t')})*gt(t,0.2)*lt(t,0.95)*0.8"
    bounces = [
        f"{0.95 * 0.72 ** i:.3f}*{tone(f'{96 + 8 * i}*t')}*({hit(at, 0.06)})"
        for i, at in enumerate((0.05, 0.62, 1.05, 1.38, 1.63, 1.82, 1.96))
    ]
    return [
        sound("Clicks/Click Soft.wav", 0.12, click(1250, 0.012)),
        sound(
            "Clicks/Mouse Double.aiff",
            0.32,
            [f"{NOISE}*({hit(0.02, 0.006)}+{hit(0.16, 0.006, 0.9)})"],
            rate=44100,
        ),
        sound(
            "Clicks/Key Tap 3.mp3",
            0.2,
            [f"{NOISE}*({hit(0.02, 0.01)})+0.4*{tone('310*t')}*({hit(0.02, 0.03)})"],
        ),
        sound("Buttons/Pop Up.wav", 0.35, [f"0.8*{tone('420*t+900*t*t')}*({hit(0.01, 0.07)})"] * 2),
        sound("Buttons/Confirm.m4a", 0.7, click(784, 0.12, 0.14)),
        sound("Buttons/Toggle.caf", 0.16, click(2100, 0.008, 0.06)),
        sound("Cameras/Film Advance.wav", 1.1, [f"{shutter}+{motor}"] * 2, "highpass=f=300"),
        sound(
            "Cameras/Focus Beep.aac",
            0.5,
            [f"0.5*{tone('2960*t')}*(between(t,0.05,0.13)+between(t,0.22,0.3))"],
        ),
        sound(
            "Shutters/Shutter Slow.flac",
            0.6,
            [f"{NOISE}*({hit(0.04, 0.02)}+{hit(0.42, 0.025, 0.9)})"],
            "highpass=f=500",
        ),
        sound(
            "Shutters/Shutter Burst.wav",
            1.0,
            [f"{NOISE}*({'+'.join(hit(0.04 + 0.15 * i, 0.018) for i in range(6))})"] * 2,
        ),
        sound(
            "Sports/Crowd Swell.mp3",
            6,
            noisy("0.12+0.6*exp(-((t-3.2)/1.4)^2)*(0.85+0.15*sin(11*t))"),
            "bandpass=f=900:t=h:w=1300,volume=1.8",
        ),
        sound("Sports/Ball Bounce.wav", 2.2, ["+".join(bounces)]),
        sound(
            "Sports/Referee Whistle.wav",
            1.3,
            [f"0.6*{tone('2750*t+6*sin(2*PI*28*t)')}*({swell(0.3, 0.22)}+{swell(0.85, 0.3)})"],
        ),
    ]


def recipes() -> list[Recipe]:
    return [*whooshes(), *hits(), *risers(), *small_sounds()]
