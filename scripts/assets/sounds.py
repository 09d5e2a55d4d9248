"""The three notification sounds: short, soft, in one key, so that they belong together."""

import pathlib
import subprocess
import tempfile

# (start in seconds, frequency in Hz, level) of each note
CONNECT = [(0.00, 587.33, 0.8), (0.13, 880.00, 1.0)]  # D5, then up to A5
DISCONNECT = [(0.00, 880.00, 0.8), (0.13, 587.33, 0.9)]  # the same way down
MANAGER = [(0.00, 1174.66, 0.8), (0.09, 1479.98, 0.6)]  # D6, F#6: a light tap


def note(path, start, frequency, level, decay):
    """A struck bar: a fundamental and two quiet overtones that fade faster."""
    subprocess.run(
        ["sox", "-R", "-n", "-r", "44100", "-b", "24", "-c", "1", str(path), "synth", str(decay), "sine", str(frequency),
         "fade", "l", "0.006", str(decay), str(decay - 0.01), "vol", str(0.42 * level), "pad", str(start)], check=True)


def write_sound(path, notes, decay):
    with tempfile.TemporaryDirectory() as folder:
        parts = []
        for index, (start, frequency, level) in enumerate(notes):
            for overtone, gain, life in ((1, 1.0, 1.0), (2, 0.16, 0.6), (3, 0.07, 0.35)):
                part = pathlib.Path(folder) / f"{index}-{overtone}.wav"
                note(part, start, frequency * overtone, level * gain, decay * life)
                parts.append(str(part))
        subprocess.run(["sox", "-R", "-m", "-v", "1", parts[0], *[a for p in parts[1:] for a in ("-v", "1", p)],
                        "-C", "96.2", str(path), "channels", "2", "reverb", "18", "40", "30", "norm", "-6", "fade", "t", "0", "-0",
                        "0.06"], check=True)


def write(folder):
    write_sound(folder / "connect.mp3", CONNECT, 0.55)
    write_sound(folder / "disconnect.mp3", DISCONNECT, 0.55)
    write_sound(folder / "manager.mp3", MANAGER, 0.40)
