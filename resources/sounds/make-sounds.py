#!/usr/bin/env python3
"""Makes the four notification sounds.

    make-sounds.py [FOLDER]   write brevanta-{gain,loss,reblock,signature}.aiff, into this folder unless told otherwise

The same bytes come out every time. The files are Audio IFF 1.3 (Apple, 1989): one channel of 16 bits at 44.1 kHz.
"""

import math
import pathlib
import struct
import sys

RATE = 44100
PEAK = 0.72  # Of full scale; room is left for what a player adds.
ATTACK = 0.004  # Seconds; shorter ones click.
RELEASE = 0.06

# Partials of a soft mallet on a bar: frequency as a multiple of the note's, loudness, decay relative to the note's.
MALLET = [(1.0, 1.0, 1.0), (2.0, 0.18, 0.7), (3.93, 0.22, 0.25), (9.2, 0.03, 0.08)]
# A wooden block: little tone above the fundamental, and that gone at once.
BLOCK = [(1.0, 1.0, 1.0), (1.5, 0.35, 0.5), (2.76, 0.4, 0.12), (5.4, 0.15, 0.06)]


def pitch(name):
    """The frequency of a note such as "A4" or "F#5" in equal temperament, in hertz."""
    semitone = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}[name[0]] + name.count("#")
    return 440.0 * 2.0 ** ((semitone - 9 + 12 * (int(name[-1]) - 4)) / 12.0)


def strike(sound, start, name, *, seconds, decay, loudness=1.0, partials=MALLET):
    """Adds one struck note; `decay` is the time in which its fundamental falls to a third."""
    frequency = pitch(name)
    first = round(start * RATE)
    last = min(round((start + seconds) * RATE), len(sound))
    for index in range(first, last):
        time = (index - first) / RATE
        ends_in = (last - 1 - index) / RATE
        shape = loudness * min(1.0, time / ATTACK, ends_in / RELEASE)
        value = 0.0
        for ratio, level, relative_decay in partials:
            fading = math.exp(-time / (decay * relative_decay))
            value += level * fading * math.sin(2 * math.pi * frequency * ratio * time)
        sound[index] += shape * value


def silence(seconds):
    return [0.0] * round(seconds * RATE)


def gain():
    """Up a major chord: something was won."""
    sound = silence(0.95)
    for start, name, length in ((0.0, "C5", 0.26), (0.11, "E5", 0.26), (0.22, "G5", 0.30), (0.35, "C6", 0.60)):
        strike(sound, start, name, seconds=length, decay=0.22)
    return sound


def loss():
    """Down a minor chord, slower and softer: something was lost."""
    sound = silence(1.1)
    for start, name, length in ((0.0, "E5", 0.34), (0.19, "C5", 0.36), (0.39, "A4", 0.71)):
        strike(sound, start, name, seconds=length, decay=0.26)
    return sound


def reblock():
    """Two low knocks of the same pitch: a door that is shut."""
    sound = silence(0.55)
    strike(sound, 0.0, "A3", seconds=0.16, decay=0.07, loudness=0.8, partials=BLOCK)
    strike(sound, 0.15, "A3", seconds=0.40, decay=0.11, partials=BLOCK)
    strike(sound, 0.15, "A2", seconds=0.40, decay=0.13, loudness=0.5, partials=BLOCK)
    return sound


def signature():
    """The product's motif: a fifth up, a step back, and the octave, held."""
    sound = silence(1.4)
    for start, name, length, loudness in (
        (0.0, "D5", 0.40, 0.9),
        (0.16, "A5", 0.40, 0.9),
        (0.32, "F#5", 0.44, 0.8),
        (0.54, "D6", 0.86, 1.0),
        (0.54, "D5", 0.86, 0.45),
    ):
        strike(sound, start, name, seconds=length, decay=0.30, loudness=loudness)
    return sound


SOUNDS = {"gain": gain, "loss": loss, "reblock": reblock, "signature": signature}


def extended(number):
    """A positive whole number as an 80-bit IEEE 754 extended float, which the rate of the COMM chunk is."""
    exponent = number.bit_length() - 1
    return struct.pack(">HQ", 16383 + exponent, number << (63 - exponent))


def chunk(kind, payload):
    return kind + struct.pack(">I", len(payload)) + payload + b"\0" * (len(payload) % 2)


def aiff(sound):
    """The sound as the bytes of a file, its loudest sample at PEAK."""
    scale = PEAK * 32767 / max(abs(value) for value in sound)
    samples = struct.pack(f">{len(sound)}h", *(round(value * scale) for value in sound))
    common = struct.pack(">hIh", 1, len(sound), 16) + extended(RATE)
    return chunk(b"FORM", b"AIFF" + chunk(b"COMM", common) + chunk(b"SSND", struct.pack(">II", 0, 0) + samples))


def main(arguments):
    if len(arguments) > 1:
        sys.exit(__doc__)
    folder = pathlib.Path(arguments[0]) if arguments else pathlib.Path(__file__).resolve().parent
    for name, make in SOUNDS.items():
        (folder / f"brevanta-{name}.aiff").write_bytes(aiff(make()))


if __name__ == "__main__":
    main(sys.argv[1:])
