"""wav.py FILE [noisy]: a recording for the examples at 16 kHz: half a second of a hum whose pitch and loudness change; or three seconds of
noise with two such hums, from 0.8 to 1.3 s and from 2.0 to 2.3 s."""
import math
import random
import struct
import sys
import wave


def hum(length):
    samples, phase = [], 0.0
    for i in range(length):
        phase += 2 * math.pi * (120 + i / 100) / 16000
        loudness = 9000 * math.sin(math.pi * i / length)
        samples.append(loudness * sum(math.sin(k * phase) / k for k in (1, 2, 3, 5, 8)))
    return samples


if "noisy" in sys.argv[2:]:
    noise = random.Random(1)
    samples = [300 * (2 * noise.random() - 1) for _ in range(48000)]
    for start, length in ((12800, 8000), (32000, 4800)):
        for i, x in enumerate(hum(length)):
            samples[start + i] += x
else:
    samples = hum(8000)
samples = [round(x) for x in samples]
with wave.open(sys.argv[1], "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(16000)
    file.writeframes(struct.pack(f"<{len(samples)}h", *samples))
