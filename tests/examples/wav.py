"""wav.py FILE: a recording for the examples: half a second at 16 kHz, a hum whose pitch and loudness change."""
import math
import struct
import sys
import wave

samples, phase = [], 0.0
for i in range(8000):
    phase += 2 * math.pi * (120 + i / 100) / 16000
    loudness = 9000 * math.sin(math.pi * i / 8000)
    samples.append(round(loudness * sum(math.sin(k * phase) / k for k in (1, 2, 3, 5, 8))))
with wave.open(sys.argv[1], "wb") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(16000)
    file.writeframes(struct.pack(f"<{len(samples)}h", *samples))
