#!/usr/bin/env python3
"""Makes data/reminder.wav: two soft bell tones, one falling third apart.

The result is committed; run this again only to change the sound. Same input, same bytes.
"""
import math
import pathlib
import struct
import wave

RATE = 22050
LENGTH = 1.1  # seconds
PEAK = 0.55   # of full scale: a chime, no alarm
ATTACK = 0.012
# (start in seconds, pitch in hertz, loudness): E6, then C6
TONES = [(0.0, 1318.51, 0.8), (0.22, 1046.50, 1.0)]
# Partials of a small bell: (multiple of the pitch, loudness, seconds to fade to 1/e)
PARTIALS = [(1.0, 1.0, 0.26), (2.0, 0.28, 0.14), (3.01, 0.10, 0.07)]
FADE_OUT = 0.08


def sample(t):
    value = 0.0
    for start, pitch, loudness in TONES:
        age = t - start
        if age < 0:
            continue
        attack = min(1.0, age / ATTACK)
        attack = attack * attack * (3 - 2 * attack)  # no click at the beginning
        for multiple, share, decay in PARTIALS:
            value += (loudness * share * attack * math.exp(-age / decay)
                      * math.sin(2 * math.pi * pitch * multiple * age))
    return value * min(1.0, (LENGTH - t) / FADE_OUT)


def main():
    samples = [sample(n / RATE) for n in range(int(RATE * LENGTH))]
    scale = PEAK * 32767 / max(abs(s) for s in samples)
    target = pathlib.Path(__file__).resolve().parent.parent / "data" / "reminder.wav"
    with wave.open(str(target), "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(b"".join(struct.pack("<h", round(s * scale)) for s in samples))
    print(f"{target.name}: {target.stat().st_size} bytes, {LENGTH} s")


if __name__ == "__main__":
    main()
