"""What is said on the practice network's frequencies: spoken by espeak-ng, stored as Ogg Opus, one packet for each 20 ms.

Each phrase is spoken in pieces, between two pauses, so that it is known when which words are said: words.json has the pieces
of every phrase with their beginnings and lengths in seconds. The demonstration finds them again in what it recorded.
"""

import json
import pathlib
import subprocess
import tempfile
import wave

RATE = 48000
PAUSE = 0.12  # seconds between two pieces
BITRATE = 24  # kbit/s
CONTROLLER, RECORDING, PILOT = ("en-gb", 50, 165), ("en-gb-scotland", 62, 155), ("en-us", 38, 160)  # voice, pitch, words/min

PHRASES = {
    "tower-greeting": (CONTROLLER, ["Good day, this is Beijing Tower", "reading you loud and clear",
                                    "runway three six right in use", "wind calm", "call me when you are ready"]),
    "tower-answer-1": (CONTROLLER, ["Station calling Beijing Tower", "roger", "hold short of runway three six right"]),
    "tower-answer-2": (CONTROLLER, ["Beijing Tower, roger", "line up and wait", "runway three six right"]),
    "tower-answer-3": (CONTROLLER, ["Beijing Tower", "wind calm", "runway three six right", "cleared for take off"]),
    "atis": (RECORDING, ["Beijing Capital Airport, information Alpha", "runway three six right in use",
                         "expect the I L S approach", "wind calm", "visibility ten kilometers",
                         "temperature one five", "dew point eight", "Q N H one zero one three",
                         "on first contact, tell that you have information Alpha"]),
    "pilot-call": (PILOT, ["Beijing Tower, good day", "ready for departure", "runway three six right"]),
    "radio-check": (PILOT, ["Radio check", "one two three four five"]),
}


def speak(text, voice, path):
    """One piece, without the silence around it, in 48 kHz mono, as loud as the others."""
    name, pitch, speed = voice
    raw = path.with_suffix(".raw.wav")
    subprocess.run(["espeak-ng", "-v", name, "-p", str(pitch), "-s", str(speed), "-w", raw, text], check=True)
    trim = ["silence", "1", "0.01", "0.5%", "reverse"] * 2
    subprocess.run(["sox", "-R", "-D", raw, "-b", "16", path, "rate", "-h", str(RATE), "highpass", "250", "lowpass", "3600",
                    *trim, "norm", "-4"], check=True)


def seconds(path):
    with wave.open(str(path)) as file:
        return file.getnframes() / RATE


def write_phrase(name, voice, texts, folder):
    """Writes NAME.opus and returns its pieces: text, beginning and length."""
    with tempfile.TemporaryDirectory() as scratch:
        parts, pieces, now = [], [], PAUSE
        for index, text in enumerate(texts):
            part = pathlib.Path(scratch, f"{index}.wav")
            speak(text, voice, part)
            pieces.append([text, round(now, 3), round(seconds(part), 3)])
            padded = pathlib.Path(scratch, f"{index}-padded.wav")
            subprocess.run(["sox", "-R", "-D", part, padded, "pad", str(PAUSE), "0"], check=True)
            parts.append(padded)
            now += seconds(part) + PAUSE
        whole = pathlib.Path(scratch, "whole.wav")
        subprocess.run(["sox", "-R", "-D", *parts, whole, "pad", "0", str(PAUSE)], check=True)
        # A serial number of its own makes the same file every time.
        subprocess.run(["opusenc", "--quiet", "--bitrate", str(BITRATE), "--framesize", "20", "--speech", "--serial", "1",
                        "--discard-comments", "--padding", "0", whole, folder / f"{name}.opus"], check=True)
    return pieces


def write(folder):
    folder.mkdir(parents=True, exist_ok=True)
    words = {name: write_phrase(name, voice, texts, folder) for name, (voice, texts) in PHRASES.items()}
    (folder / "words.json").write_text(json.dumps(words, indent=1) + "\n")
