#!/usr/bin/env python3
"""Turns a sound of the Mac into one that desktops' sound libraries read.

    wave-from-aiff.py IN.aiff OUT.wav

Reads Audio IFF 1.3 (Apple, 1989) with samples of 16 bits, as they are in resources/sounds.
"""

import struct
import sys
import wave


def chunks(form):
    """The chunks of the form by their names."""
    if form[:4] != b"FORM" or form[8:12] != b"AIFF":
        sys.exit("no AIFF file")
    found = {}
    at = 12
    while at + 8 <= len(form):
        name, length = struct.unpack_from(">4sI", form, at)
        found[name] = form[at + 8:at + 8 + length]
        at += 8 + length + length % 2
    return found


def rate(extended):
    """Samples per second from an 80-bit IEEE 754 number that is a whole one."""
    exponent, mantissa = struct.unpack(">HQ", extended)
    return mantissa >> (16383 + 63 - exponent)


def main():
    with open(sys.argv[1], "rb") as source:
        found = chunks(source.read())
    channels, frames, bits = struct.unpack_from(">HIH", found[b"COMM"])
    if bits != 16:
        sys.exit(f"samples of {bits} bits")
    offset, = struct.unpack_from(">I", found[b"SSND"])
    first = 8 + offset
    samples = bytearray(found[b"SSND"][first:first + frames * channels * 2])
    samples[0::2], samples[1::2] = samples[1::2], samples[0::2]  # WAVE has the low byte first.
    with wave.open(sys.argv[2], "wb") as target:
        target.setnchannels(channels)
        target.setsampwidth(2)
        target.setframerate(rate(found[b"COMM"][8:18]))
        target.writeframes(bytes(samples))


main()
