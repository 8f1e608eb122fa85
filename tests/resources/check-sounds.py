#!/usr/bin/env python3
"""Checks the notification sounds.

    check-sounds.py FOLDER      check the sounds and the script that makes them; exit status 1 and a line for each fault
    check-sounds.py --self-test prove on planted faults that each rule finds what it is for

A sound is an AIFF file (Audio IFF 1.3, Apple, 1989) that every notification service can play and nobody minds hearing:
44.1 kHz, 16 bits, mono, short, neither faint nor clipped, with nothing that clicks at its ends.
"""

import math
import operator
import pathlib
import struct
import subprocess
import sys
import tempfile

NAMES = [f"brevanta-{gesture}.aiff" for gesture in ("gain", "loss", "reblock", "signature")]
RATE = 44100
RATE_BYTES = bytes.fromhex("400eac44000000000000")  # 44100 as an 80-bit IEEE 754 extended float.
LONGEST = 1.5  # Seconds, exclusive.
FAINTEST, LOUDEST = 0.3, 0.9  # Of full scale.
QUIET_END = 0.01  # Of full scale.
FLAT_TOP = 4  # So many samples in a row on the loudest value: no tone of a sound has so wide a crest.
HIGHEST_PITCH, LOWEST_PITCH = 2200, 200  # Hertz.
WINDOW = 1024  # Samples that are compared with later ones to find a pitch.


def chunks(data):
    """The chunks of a form as (kind, payload); raises ValueError when the lengths do not fit."""
    if len(data) < 12 or data[:4] != b"FORM" or data[8:12] != b"AIFF":
        raise ValueError("is no AIFF form")
    if struct.unpack(">I", data[4:8])[0] != len(data) - 8:
        raise ValueError("has a form of another length than the file")
    found, offset = [], 12
    while offset < len(data):
        if offset + 8 > len(data):
            raise ValueError("ends in the middle of a chunk")
        kind, length = data[offset : offset + 4], struct.unpack(">I", data[offset + 4 : offset + 8])[0]
        offset += 8
        if offset + length + length % 2 > len(data):
            raise ValueError("ends in the middle of a chunk")
        found.append((kind, data[offset : offset + length]))
        offset += length + length % 2
    return found


def samples_of(data):
    """The samples from -1 to 1; raises ValueError when the file is not of the form that is wanted."""
    found = chunks(data)
    for kind in (b"COMM", b"SSND"):
        if [own for own, _ in found].count(kind) != 1:
            raise ValueError(f"has not exactly one {kind.decode()} chunk")
    common, sound = dict(found)[b"COMM"], dict(found)[b"SSND"]
    if len(common) != 18:
        raise ValueError("has a COMM chunk that is not 18 bytes long")
    channels, frames, bits = struct.unpack(">hIh", common[:8])
    if channels != 1 or bits != 16:
        raise ValueError(f"has {channels} channels of {bits} bits")
    if common[8:] != RATE_BYTES:
        raise ValueError(f"has another rate than {RATE} Hz")
    if len(sound) < 8 or struct.unpack(">II", sound[:8]) != (0, 0):
        raise ValueError("has sound data that do not begin at once")
    if len(sound) - 8 != 2 * frames or frames == 0:
        raise ValueError(f"says {frames} frames and has {len(sound) - 8} bytes of them")
    return [sample / 32768 for sample in struct.unpack(f">{frames}h", sound[8:])]


def longest_run_at_peak(samples):
    peak = max(abs(sample) for sample in samples)
    longest = run = 0
    for sample in samples:
        run = run + 1 if abs(sample) == peak else 0
        longest = max(longest, run)
    return longest


def pitch_from(samples, start):
    """The dominant pitch of a short piece, in hertz: the shortest time after which the sound is most like itself."""
    piece = samples[start : start + WINDOW]
    likeness = []
    for lag in range(RATE // HIGHEST_PITCH, RATE // LOWEST_PITCH):
        later = samples[start + lag : start + lag + WINDOW]
        energy = math.sqrt(sum(sample * sample for sample in piece) * sum(sample * sample for sample in later))
        likeness.append((sum(map(operator.mul, piece, later)) / energy if energy else 0.0, lag))
    # Twice the period is as alike as the period, but for noise.
    enough = 0.9 * max(likeness)[0]
    crests = (
        here[1]
        for before, here, after in zip(likeness, likeness[1:], likeness[2:])
        if here[0] >= enough and before[0] <= here[0] >= after[0]
    )
    return RATE / next(crests, max(likeness)[1])


def pitch_change(samples):
    """The pitch of the last part divided by that of the first."""
    return pitch_from(samples, len(samples) * 9 // 10 - 2 * WINDOW) / pitch_from(samples, WINDOW // 4)


def sound_faults(name, samples):
    peak = max(abs(sample) for sample in samples)
    if len(samples) / RATE >= LONGEST:
        yield f"is {len(samples) / RATE:.2f} s long"
    if not FAINTEST <= peak <= LOUDEST:
        yield f"has a peak of {peak:.2f}"
    if longest_run_at_peak(samples) >= FLAT_TOP:
        yield "is clipped"
    for where, sample in (("begins", samples[0]), ("ends", samples[-1])):
        if abs(sample) > QUIET_END:
            yield f"{where} abruptly, at {sample:.2f}"
    if len(samples) < 4 * WINDOW:
        yield "is too short to have a melody"
    elif name == "brevanta-gain.aiff" and pitch_change(samples) < 1.1:
        yield "does not rise"
    elif name == "brevanta-loss.aiff" and pitch_change(samples) > 0.9:
        yield "does not fall"


def faults(files):
    """One line for each fault of a set of files, given as bytes by name."""
    found, heard = [], {}
    for name in NAMES:
        if name not in files:
            found.append(f"{name}: is missing")
            continue
        try:
            samples = samples_of(files[name])
        except ValueError as error:
            found.append(f"{name}: {error}")
            continue
        found += [f"{name}: {fault}" for fault in sound_faults(name, samples)]
        twin = heard.setdefault(tuple(samples), name)
        if twin != name:
            found.append(f"{name}: sounds like {twin}")
    return found


def files_in(folder):
    return {path.name: path.read_bytes() for path in sorted(folder.glob("*.aiff"))}


def differences(kept, made):
    return [f"{name}: is not what the script makes" for name in sorted(kept | made) if kept.get(name) != made.get(name)]


def check_folder(folder):
    with tempfile.TemporaryDirectory() as directory:
        subprocess.run([sys.executable, str(folder / "make-sounds.py"), directory], check=True)
        kept = files_in(folder)
        return faults(kept) + differences(kept, files_in(pathlib.Path(directory)))


def form(chunk_list):
    payload = b"AIFF" + b"".join(
        kind + struct.pack(">I", len(data)) + data + b"\0" * (len(data) % 2) for kind, data in chunk_list
    )
    return b"FORM" + struct.pack(">I", len(payload)) + payload


def common(channels=1, frames=0, bits=16, rate=RATE_BYTES):
    return b"COMM", struct.pack(">hIh", channels, frames, bits) + rate


def made_up(samples, **overrides):
    raw = struct.pack(f">{len(samples)}h", *(round(sample * 32767) for sample in samples))
    fields = {"frames": len(samples)} | overrides
    return form([common(**fields), (b"SSND", bytes(8) + raw)])


def glide(first, last, *, seconds=0.4, peak=0.6, fade=0.02, ceiling=1.0):
    """A tone that begins at one pitch and has the other from its middle on."""
    count = round(seconds * RATE)
    samples, phase = [], 0.0
    for index in range(count):
        phase += 2 * math.pi * (first if 2 * index < count else last) / RATE
        shape = min(1.0, index / (fade * RATE), (count - 1 - index) / (fade * RATE)) if fade else 1.0
        samples.append(max(-ceiling, min(ceiling, peak * shape * math.cos(phase))))
    return samples


def self_test():
    pitches = [(440, 660), (660, 440), (220, 220), (587, 880)]
    good = {name: made_up(glide(*pair)) for name, pair in zip(NAMES, pitches)}
    rising, tone = glide(440, 660), glide(220, 220)
    whole = good["brevanta-reblock.aiff"]
    planted = [
        # The file that is replaced, its bytes or None, words of the only line that is expected.
        ("gain", made_up(glide(660, 440, seconds=0.5)), "does not rise"),
        ("gain", made_up(glide(440, 440)), "does not rise"),
        ("loss", made_up(glide(440, 660, seconds=0.5)), "does not fall"),
        ("loss", made_up(glide(440, 440)), "does not fall"),
        ("signature", made_up(rising), "sounds like brevanta-gain.aiff"),
        ("signature", None, "is missing"),
        ("reblock", b"", "no AIFF form"),
        ("reblock", whole.replace(b"AIFF", b"AIFC", 1), "no AIFF form"),
        ("reblock", whole[:-2], "of another length"),
        ("reblock", whole + b"\0\0", "of another length"),
        ("reblock", whole.replace(b"SSND" + whole[42:46], b"SSND\x7f\xff\xff\xff"), "middle of a chunk"),
        ("reblock", form([common(frames=1)]), "exactly one SSND"),
        ("reblock", form([common(), common(), (b"SSND", bytes(8))]), "exactly one COMM"),
        ("reblock", form([common(), (b"SSND", bytes(8))]), "says 0 frames"),
        ("reblock", form([common(frames=1), (b"SSND", b"\0\0\0\1" + bytes(6))]), "do not begin at once"),
        ("reblock", made_up(tone, channels=2), "2 channels"),
        ("reblock", made_up(tone, bits=8), "of 8 bits"),
        ("reblock", made_up(tone, rate=bytes.fromhex("400ebb80000000000000")), "another rate"),
        ("reblock", made_up(tone, frames=len(tone) + 1), "frames and has"),
        ("reblock", made_up(glide(220, 220, seconds=1.5)), "1.50 s long"),
        ("reblock", made_up(glide(220, 220, seconds=0.08)), "too short"),
        ("reblock", made_up(glide(220, 220, peak=0.25)), "a peak of 0.25"),
        ("reblock", made_up(glide(220, 220, peak=0.95)), "a peak of 0.95"),
        ("reblock", made_up(glide(220, 220, peak=0.8, ceiling=0.7)), "is clipped"),
        ("reblock", made_up([0.5] + tone), "begins abruptly"),
        ("reblock", made_up(tone + [-0.5]), "ends abruptly"),
    ]
    failures = [f"nothing is wrong there, but: {line}" for line in faults(good)]
    for gesture, data, expected in planted:
        name = f"brevanta-{gesture}.aiff"
        files = {own: bytes_ for own, bytes_ in (good | {name: data}).items() if bytes_ is not None}
        found = faults(files)
        if len(found) != 1 or not found[0].startswith(name) or expected not in found[0]:
            failures.append(f'{name}: expected one line with "{expected}", got {found}')
    for kept, made in ((good, good | {NAMES[0]: whole}), (good, {NAMES[1]: good[NAMES[1]]}), ({}, good)):
        if not differences(kept, made):
            failures.append("a script that makes something else passes")
    if differences(good, dict(good)):
        failures.append("a script that makes the same is blamed")
    return failures


def main(arguments):
    if arguments == ["--self-test"]:
        lines = self_test()
    elif len(arguments) == 1 and not arguments[0].startswith("-"):
        lines = check_folder(pathlib.Path(arguments[0]))
    else:
        print(__doc__, file=sys.stderr)
        return 2
    for line in lines:
        print(line)
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
