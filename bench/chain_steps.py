"""The processing chains of the benchmark, each twice: as commands of zolt-cli and as numpy steps, written plainly or tuned.

python3 chain_steps.py NAME KIND FROM TO runs the numpy steps once, as a script of its own would.
"""
import os
import struct
import sys

import numpy as np

HEADER_BYTES = 4104


def header(shape):
    """The header of a native file of type 2 for complex time-domain data of this shape, the fastest dimension last."""
    counts = [*reversed(shape), 1, 1, 1][:4]
    raw = bytearray(HEADER_BYTES)
    struct.pack_into("<I4i", raw, 0, 0x04030201, 1024, len(shape), 0, 2)
    struct.pack_into("<i", raw, 32, 1)
    for d, count in enumerate(counts):
        block = 384 + 160 * d
        struct.pack_into("<4i", raw, block, count, 1, 0, 3)
        struct.pack_into("<i", raw, block + 24, d + 1)
        struct.pack_into("<2f", raw, block + 64, SWEEP_WIDTH, 400.0)
    return bytes(raw)


def write(path, points):
    with open(path, "wb") as file:
        file.write(header(points.shape))
        points.astype(np.complex64, copy=False).tofile(file)


def read_points(path, count):
    """The points of a file of any header type without a tailer: they are its end."""
    return np.fromfile(path, np.complex64, offset=os.path.getsize(path) - 8 * count)


class Plain:
    """Double precision and numpy's own transform, a new array for every step."""

    complex, real = np.complex128, np.float64

    def fft(self, x, n, axis):
        return np.fft.fft(x, n, axis=axis)

    def times(self, x, factors):
        return x * factors

    def turn(self, angles):
        return np.exp(-1j * angles)

    def save(self, path, points):
        write(path, points)


class Tuned(Plain):
    """Single precision as in the file, scipy's transform on every core, in place where that is possible."""

    complex, real = np.complex64, np.float32

    def __init__(self):
        import scipy.fft
        self.transform, self.cores = scipy.fft.fft, os.cpu_count()

    def fft(self, x, n, axis):
        return self.transform(x, n, axis=axis, overwrite_x=True, workers=self.cores)

    def times(self, x, factors):
        x *= factors
        return x

    def turn(self, angles):
        factors = np.empty(angles.shape, self.complex)
        factors.real, factors.imag = np.cos(angles), -np.sin(angles)
        return factors


class Flushed(Tuned):
    """Tuned, and saved as zolt-cli saves: beside the target, flushed to the disk, renamed."""

    def save(self, path, points):
        beside = f"{path}.new"
        write(beside, points)
        with open(beside, "rb") as file:
            os.fsync(file.fileno())
        os.replace(beside, path)


KINDS = {"plain": Plain, "tuned": Tuned, "flushed": Flushed}


def along(vector, axis, dimensions):
    return vector.reshape([-1 if d == axis % dimensions else 1 for d in range(dimensions)])


def sine_bell(kind, x, axis, offset, end, power):
    weights = np.sin(np.pi * np.linspace(offset, end, x.shape[axis])) ** power
    return kind.times(x, along(weights.astype(kind.real), axis, x.ndim))


def spectrum(kind, x, axis, n):
    """Zero filled to n points, the first one the mean of first and last, transformed, zero frequency in the middle."""
    points = np.moveaxis(x, axis, 0)
    points[0] = (points[0] + (points[-1] if n == len(points) else 0)) / 2
    return np.fft.fftshift(kind.fft(x, n, axis), axes=axis)


def phase(kind, x, zero, first):
    n = x.shape[-1]
    angles = np.radians(zero + first * np.arange(n, dtype=kind.real) / n, dtype=kind.real)
    return kind.times(x, kind.turn(angles))


def baseline(kind, x):
    """The line through the means of the sixteen points at both ends."""
    left, right = x[:16].mean(), x[-16:].mean()
    x -= left + (right - left) / len(x) * np.arange(len(x), dtype=kind.real)
    return x


def pairs_to_indirect(x):
    """Of every pair, real parts of both vectors become one complex vector, imaginary parts the other."""
    out = np.empty_like(x)
    out[:, 0].real, out[:, 0].imag = x[:, 0].real, x[:, 1].real
    out[:, 1].real, out[:, 1].imag = x[:, 0].imag, x[:, 1].imag
    return out


SWEEP_WIDTH = 8000.0
PI = float(np.float32(np.pi))  # as EM takes it


def steps_1d(kind, x):
    x = kind.times(x, np.exp(np.arange(x.size, dtype=kind.real) * kind.real(-PI / SWEEP_WIDTH)))
    x = spectrum(kind, x, 0, 131072)
    x = phase(kind, x, 30, 120)
    return baseline(kind, x)


def steps_2d(kind, x):
    x = sine_bell(kind, x, 2, 0.5, 1, 2)
    x = spectrum(kind, x, 2, 4096)
    x = phase(kind, x, 30, 120)
    x = pairs_to_indirect(x)
    x = sine_bell(kind, x, 0, 0.5, 1, 2)
    return spectrum(kind, x, 0, 1024)


def steps_3d(kind, x):
    for axis, n in ((2, 1024), (1, 128), (0, 128)):
        x = sine_bell(kind, x, axis, 0.5, 1, 2)
        x = spectrum(kind, x, axis, n)
    return x


class Chain:
    """stored: the counts in the file, fastest last; seen: the same as numpy steps want them. commands: from GA to SA."""

    def __init__(self, name, title, stored, seen, commands, steps, rounds, repetitions):
        self.name, self.title, self.stored, self.seen = name, title, stored, seen
        self.commands, self.steps = commands, steps
        self.rounds, self.repetitions = rounds, repetitions

    def run_numpy(self, kind, source, target):
        """From file to file; the spectrum."""
        points = np.fromfile(source, np.complex64, offset=HEADER_BYTES).reshape(self.seen)
        x = self.steps(kind, points.astype(kind.complex, copy=False))
        kind.save(target, x.reshape(-1, *x.shape[x.ndim - len(self.stored) + 1:]))
        return x


BELL = "0.5 1 2"  # as in the steps above: a squared cosine

CHAINS = {chain.name: chain for chain in (
    Chain("1D", "1D: 65536 points to 131072", (65536,), (65536,),
          ["EM 1", "ZF", "FT", "PC 30 120", "BC"], steps_1d, 15, 40),
    Chain("2D", "2D: 512 pairs of 2048 points to 1024 pairs of 4096", (1024, 2048), (512, 2, 2048),
          ["AR pairwise", f"SineBell {BELL}", "ZF", "FT", "PC 30 120", "SwitchAB ArBr", f"SineBell 2D {BELL}", "ZeroFill 2D",
           "FT complex 2D"], steps_2d, 5, 3),
    Chain("3D", "3D: 64 x 64 x 1024 points to 128 x 128 x 1024", (64, 64, 1024), (64, 64, 1024),
          ["AR 3D", f"SineBell {BELL}", "FT", f"SineBell 2D {BELL}", "ZeroFill 2D", "FT complex 2D", f"SineBell 3D {BELL}",
           "ZeroFill 3D", "FT complex 3D"], steps_3d, 3, 2),
)}


if __name__ == "__main__":
    name, kind, source, target = sys.argv[1:]
    CHAINS[name].run_numpy(KINDS[kind](), source, target)
