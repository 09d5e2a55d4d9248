#!/usr/bin/python3
"""Finds the phrases of the practice network in a recording: which words are heard when, and how alike they are to what was
said.

usage: found_words.py RECORDING.wav PHRASE...
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import wave

import numpy

SPEECH = pathlib.Path(__file__).resolve().parents[2] / 'practice' / 'speech'
RATE = 48000
STEP = 4  # of four samples one is enough: speech here ends at 3600 Hz
ALIKE = 0.35  # correlation from which on something was found; a frame lost in the middle halves it, chance stays below 0.2


def read(path):
    with wave.open(str(path)) as file:
        if (file.getframerate(), file.getnchannels(), file.getsampwidth()) != (RATE, 1, 2):
            raise ValueError(f'{path}: not 48 kHz, mono, 16 bit')
        return numpy.frombuffer(file.readframes(file.getnframes()), dtype='<i2').astype(float) / 32768


def coarse(samples):
    """A quarter of the samples, each the mean of four."""
    return samples[:len(samples) // STEP * STEP].reshape(-1, STEP).mean(axis=1)


def decode(phrase):
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, 'phrase.wav')
        subprocess.run(['opusdec', '--quiet', '--rate', str(RATE), SPEECH / f'{phrase}.opus', path], check=True)
        return read(path)


def best_place(heard, piece):
    """Where in `heard` it is most alike to `piece`, and how much: 1 is the same but for the loudness, 0 is nothing."""
    size = 1 << (len(heard) + len(piece)).bit_length()
    spectrum = numpy.fft.rfft(heard, size) * numpy.conj(numpy.fft.rfft(piece, size))
    products = numpy.fft.irfft(spectrum, size)[:len(heard) - len(piece) + 1]
    energy = numpy.concatenate(([0], numpy.cumsum(heard ** 2)))
    window = energy[len(piece):] - energy[:-len(piece)]
    quiet = 1e-6 * len(piece)
    alike = products / numpy.sqrt(numpy.maximum(window, quiet) * (piece ** 2).sum())
    place = int(numpy.argmax(alike))
    return place, float(alike[place])


def find(heard, phrase, after=0.0):
    """The words of a phrase as (words, seconds, correlation) in what was recorded, from `after` seconds on."""
    found, samples = [], coarse(heard[int(after * RATE):])
    said = decode(phrase)
    for words, begin, length in json.loads((SPEECH / 'words.json').read_text())[phrase]:
        piece = coarse(said[int(begin * RATE):int((begin + length) * RATE)])
        if len(piece) >= len(samples):
            return [*found, (words, 0.0, 0.0)]
        place, alike = best_place(samples, piece)
        found.append((words, after + place * STEP / RATE, alike))
    return found


def level(heard, begin, end):
    """In dB below the loudest possible, of what was heard between two moments."""
    part = heard[int(begin * RATE):int(end * RATE)]
    return 10 * numpy.log10(max((part ** 2).mean(), 1e-12)) if len(part) else -120.0


def report(heard, phrases):
    """Prints what was found; True when it was everything."""
    everything = True
    for phrase in phrases:
        found = find(heard, phrase)
        everything &= all(alike >= ALIKE for _, _, alike in found)
        first, last = min(seconds for _, seconds, _ in found), max(seconds for _, seconds, _ in found)
        print(f'{phrase}: {level(heard, first, last + 0.5):.1f} dB')
        for words, seconds, alike in found:
            print(f'  {seconds:7.2f} s  {alike:4.2f}  {words if alike >= ALIKE else "(not found) " + words}')
    return everything


if __name__ == '__main__':
    sys.exit(0 if report(read(sys.argv[1]), sys.argv[2:]) else 1)
