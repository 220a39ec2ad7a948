#!/usr/bin/env python3
"""How well and how fast AP finds the phases of spectra: generated ones whose phases are known, and real ones that an operator
phased.

auto_phase.py ZOLT-CLI [--count N] [--seed S] [--table FILE] [--real FILE ...]

Generated spectra: single lines or multiplets, noise, in half of them a rolling baseline and in half broad lines, turned by a
phase of zero and first order (A within 180 degrees, B within 360), written as native files. Real sets: what IM reads, with
EM 0.3 and FT where it is an FID; the stored phases A and B are the operator's.

What is measured, for the phase error e at a point (degrees, mod 360):

  zero   |e| in the middle of the region with signal; the limit is 2
  first  |change of e| from one end of the region to the other; the limit is 5
  ends   the larger |e| of both ends of the region

The region with signal reaches from the first to the last line (broad ones left out) of a generated spectrum, and from the first
to the last point of a real one whose magnitude is 20 times the median magnitude.

Signal to noise is the height of the tallest line over twice the standard deviation of the noise, drawn evenly on a logarithmic
scale from 5 to 5000. `bound` is the standard deviation of `zero` and `first` that the noise leaves any unbiased method which has
to find heights, places and widths of the lines (Cramer and Rao; where the baseline rolls the first points of the FID tell
nothing). "best possible" is how many spectra are within the limits on average with errors that large. "at point 0" holds A and B
themselves, as AP shows them, to 2 and 5 degrees: A at point 0, where there is no line, and B over the whole spectrum."""
import argparse
import json
import math
import os
import resource
import struct
import subprocess
import tempfile

import numpy as np

ZERO_LIMIT, FIRST_LIMIT = 2.0, 5.0


def wrapped(degrees):
    return (degrees + 180) % 360 - 180


def native_file(path, spectrum, sw):
    header = bytearray(4104)
    struct.pack_into("<5i", header, 0, 0x04030201, 1024, 1, 0, 2)
    struct.pack_into("<i", header, 32, 1)
    for d in range(4):
        at = 384 + 160 * d
        struct.pack_into("<4i", header, at, len(spectrum) if d == 0 else 1, 1, 1 if d == 0 else 0, 3)
        struct.pack_into("<i", header, at + 24, d + 1)
        struct.pack_into("<2f", header, at + 64, sw, 400.0)
    with open(path, "wb") as file:
        file.write(header)
        file.write(np.asarray(spectrum, dtype="<c8").tobytes())


def random_lines(random, n, sw, multiplets):
    """Places (points), amplitudes and widths (points, at half height) of the lines: multiplets as of protons, or single lines."""
    span = random.uniform(0.3, 0.9) * n
    first = random.uniform(0.03 * n, 0.97 * n - span)
    places, amplitudes, widths = [], [], []
    for _ in range(random.integers(5, 40)):
        centre, area = first + span * random.random(), random.integers(1, 4) if multiplets else random.uniform(0.2, 1)
        shifts = np.zeros(1)
        for _ in range(random.integers(0, 4) if multiplets else 0):
            j = random.uniform(2, 14) * n / sw
            shifts = np.concatenate([shifts - j / 2, shifts + j / 2])
        roof = 1 + random.uniform(-0.2, 0.2) * np.sign(shifts)
        places += list(centre + shifts)
        amplitudes += list(area / len(shifts) * roof)
        widths += [random.uniform(0.7, 2.5) * n / sw] * len(shifts)
    return np.array(places), np.array(amplitudes), np.array(widths)


def least_covariance(places, amplitudes, widths, n, times, deviation, middle):
    """Covariance (radians squared) that noise alone leaves the best unbiased estimate of the phase in the middle of the region and
    of the first order: the Cramer-Rao bound, with the heights, places and widths of all lines unknown but not their number.
    The FID counts at the `times` first, last; `deviation` is that of the noise of the real part of one of its points."""
    rate = 2j * math.pi * places / n - math.pi * widths / n
    z = rate.conj()[:, None] + rate[None, :]
    powers = [np.exp(z * t) * np.array([np.ones_like(z), t - 1 / z, t * t - 2 * t / z + 2 / z ** 2]) / z for t in times]
    sums = (powers[1] - powers[0]) * np.outer(amplitudes, amplitudes)  # of t^0, t^1, t^2 times a pair of lines
    count = len(places)
    still, growing = np.zeros((2, count, 3 * count + 2), complex)  # derivatives by the parameters: still + t growing
    lines = np.arange(count)
    still[lines, lines] = 1
    growing[lines, count + lines] = 1j * math.pi * widths / n
    growing[lines, 2 * count + lines] = math.pi * widths / n
    still[:, -2], still[:, -1] = 1j, 1j * (places / n - middle)
    crossed = still.conj().T @ sums[1] @ growing
    information = still.conj().T @ sums[0] @ still + crossed + crossed.conj().T + growing.conj().T @ sums[2] @ growing
    information = information.real / deviation ** 2
    scale = 1 / np.sqrt(np.diag(information))
    covariance = np.linalg.inv(information * np.outer(scale, scale) + 1e-9 * np.eye(len(scale))) * np.outer(scale, scale)
    return covariance[-2:, -2:]


def possible(covariance, middle, span):
    """How often errors of such a covariance stay within the limits: in the region, and those of A and B at point 0; and the
    standard deviations (degrees) in the middle of the region and from end to end."""
    drawn = np.degrees(np.random.default_rng(0).standard_normal((4000, 2)) @ np.linalg.cholesky(covariance).T)
    within = lambda zero, first: float(np.mean((abs(zero) <= ZERO_LIMIT) & (abs(first) <= FIRST_LIMIT)))
    bound = np.degrees(np.sqrt(np.diag(covariance))) * (1, span)
    return within(drawn[:, 0], drawn[:, 1] * span), within(drawn[:, 0] - drawn[:, 1] * middle, drawn[:, 1]), list(bound)


def generate(random, rolling, broad, multiplets):
    n = int(2 ** random.integers(14, 17))
    filled = random.random() < 0.7
    points = n // 2 if filled else n
    sw = random.uniform(4000, 10000)
    places, amplitudes, widths = random_lines(random, n, sw, multiplets)
    region = places.min(), places.max()
    if broad:
        count = random.integers(1, 4)
        wide = random.uniform(40, 300, count) * n / sw
        places = np.concatenate([places, random.uniform(*region, count)])
        amplitudes = np.concatenate([amplitudes, np.max(amplitudes / widths) * wide * random.uniform(0.01, 0.1, count)])
        widths = np.concatenate([widths, wide])
    t = np.arange(points)
    fid = np.zeros(points, complex)
    for place, amplitude, width in zip(places, amplitudes, widths):
        fid += amplitude * np.exp((2j * math.pi * (place / n - 0.5) - math.pi * width / n) * t)
    fid[0] /= 2
    spectrum = np.fft.fftshift(np.fft.fft(fid, n))
    tallest = np.max(spectrum.real)
    k = np.arange(n) / n
    if rolling:  # the first points of the FID are wrong
        roll = sum((random.normal() + 1j * random.normal()) * np.exp(-2j * math.pi * j * k) for j in range(random.integers(2, 6)))
        spectrum = spectrum + roll / np.max(abs(roll)) * tallest * random.uniform(0.005, 0.05)
    noise = np.fft.fftshift(np.fft.fft(random.normal(size=points) + 1j * random.normal(size=points), n))
    ratio = math.exp(random.uniform(math.log(5), math.log(5000)))
    deviation = tallest / (2 * ratio)
    middle, span = sum(region) / 2 / n, (region[1] - region[0]) / n
    times_known = (5 if rolling else 0), points
    covariance = least_covariance(places, amplitudes, widths, n, times_known, deviation / math.sqrt(points), middle)
    best, best_at_0, bound = possible(covariance, middle, span)
    a, b = random.uniform(-180, 180), random.uniform(-360, 360)
    spectrum = (spectrum + noise / np.std(noise.real) * deviation) * np.exp(1j * np.radians(a + b * k))
    return spectrum, sw, {"a": a, "b": b, "n": n, "ratio": ratio, "bound": bound, "best": best, "best_at_0": best_at_0, "rolling": rolling, "multiplets": multiplets, "broad": broad, "region": [p / n for p in region]}


def run(cli, folder, arguments):
    open(os.path.join(folder, "ZOLT.INI"), "a").close()
    done = subprocess.run([cli, "--json", "--root", folder, "--keep-going", *arguments], capture_output=True, text=True)
    return [json.loads(line) for line in done.stdout.splitlines() if line.startswith("{")]


def states(events):
    return [event for event in events if event["event"] == "state"]


def errors(found, wanted, region):
    """Zero order, first order and ends; found and wanted are (A, B), the region in parts of the spectrum."""
    a, b = found[0] - wanted[0], found[1] - wanted[1]
    middle, change = abs(wrapped(a + b * sum(region) / 2)), abs(b * (region[1] - region[0]))
    return middle, change, max(abs(wrapped(a + b * place)) for place in region) if change < 180 else 180.0


def measure_generated(cli, folder, count, seed):
    rows = []
    for i in range(count):
        random = np.random.default_rng([seed, i])
        spectrum, sw, row = generate(random, rolling=bool(i & 1), broad=bool(i & 2), multiplets=bool(i & 4))
        path = os.path.join(folder, "s")
        native_file(path, spectrum, sw)
        record = states(run(cli, folder, ["-c", 'GA "%s"' % path, "-c", "AP", "--state"]))[-1]
        row["found"] = record["dimensions"][0]["phase_totals"][:2]
        row["zero"], row["first"], row["ends"] = errors(row["found"], (row["a"], row["b"]), row["region"])
        row["index"], row["good"] = i, row["zero"] <= ZERO_LIMIT and row["first"] <= FIRST_LIMIT
        a, b = wrapped(row["found"][0] - row["a"]), row["found"][1] - row["b"]
        row["at_0"] = abs(a) <= ZERO_LIMIT and abs(b) <= FIRST_LIMIT
        rows.append(row)
    return rows


def signal_region(spectrum):
    size = abs(spectrum)
    above = np.flatnonzero(size > 20 * np.median(size))
    return (above[0] / len(size), above[-1] / len(size)) if len(above) else (0.0, 1.0)


def measure_real(cli, folder, path):
    points = os.path.join(folder, "points")
    first = states(run(cli, folder, ["-c", 'IM "%s"' % path, "--state"]))[-1]
    steps = ["--yes", "-c", 'IM "%s"' % path]
    if not first["dimensions"][0]["frequency"]:
        steps += ["-c", "EM 0.3", "-c", "FT"]
    record = states(run(cli, folder, steps + ["--data", points, "-c", "AP", "--state"]))[-1]
    spectrum = np.fromfile(points, "<c8")[: record["dimensions"][0]["points"]]
    region = signal_region(spectrum)
    wanted, found = first["phase"][:2], record["dimensions"][0]["phase_totals"][:2]
    middle, change, ends = errors(found, wanted, region)
    return {"path": path, "wanted": wanted, "found": found, "region": region, "zero": middle, "first": change, "ends": ends}


def processor_time():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def milliseconds(cli, folder):
    """Processor time of one AP on 65536 points: many of them in one run of the program less a run without any."""
    spectrum, sw = None, 0
    for i in range(100):
        spectrum, sw, row = generate(np.random.default_rng([0, i]), True, True, True)
        if row["n"] == 65536:
            break
    path, repeats = os.path.join(folder, "s"), 40
    native_file(path, spectrum, sw)

    def seconds(count):
        start = processor_time()
        run(cli, folder, ["-c", 'GA "%s"' % path] + ["-c", "AP"] * count)
        return processor_time() - start

    return 1000 * min(seconds(repeats) - seconds(0) for _ in range(3)) / repeats


def share(rows, key):
    return 100 * sum(row[key] for row in rows) / len(rows)


def table(rows, real, time_of_one):
    lines = ["# Generated spectra", "", "| set | spectra | within limits % | best possible % | at point 0 % | best possible % | median zero | median first | worst zero | worst first |",
             "|---|---|---|---|---|---|---|---|---|---|"]
    bands = [(5, 10), (10, 20), (20, 100), (100, 1000), (1000, 5000)]
    sets = [("all", rows)] + [("signal to noise %d to %d" % band, [r for r in rows if band[0] <= r["ratio"] < band[1]]) for band in bands]
    sets += [("single lines", [r for r in rows if not r["multiplets"]]), ("multiplets", [r for r in rows if r["multiplets"]])]
    for rolling in (False, True):
        for broad in (False, True):
            name = "%s baseline, %s broad lines" % ("rolling" if rolling else "flat", "with" if broad else "no")
            sets.append((name, [r for r in rows if r["rolling"] == rolling and r["broad"] == broad]))
    for name, part in sets:
        if part:
            zero, first = np.array([r["zero"] for r in part]), np.array([r["first"] for r in part])
            lines.append("| %s | %d | %.1f | %.1f | %.1f | %.1f | %.2f | %.2f | %.1f | %.1f |" % (
                name, len(part), share(part, "good"), share(part, "best"), share(part, "at_0"), share(part, "best_at_0"), np.median(zero), np.median(first), zero.max(), first.max()))
    lines += ["", "One AP on 65536 points: %.0f ms of one processor." % time_of_one]
    lines += ["", "Beyond the limits:", "", "| spectrum | points | signal to noise | A, B | found | zero | first | ends | bound |", "|---|---|---|---|---|---|---|---|---|"]
    for r in sorted(rows, key=lambda row: -row["ends"]):
        if not r["good"]:
            lines.append("| %d%s%s | %d | %.0f | %.1f, %.1f | %.1f, %.1f | %.1f | %.1f | %.1f | %.1f, %.1f |" % (
                r["index"], " multiplets" * r["multiplets"] + " rolling" * r["rolling"], " broad" * r["broad"], r["n"], r["ratio"], r["a"], r["b"], *r["found"], r["zero"], r["first"], r["ends"], *r["bound"]))
    if real:
        lines += ["", "# Real sets", "", "| set | operator's A, B | found | region | zero | first | ends |", "|---|---|---|---|---|---|---|"]
        common = os.path.commonpath([os.path.dirname(r["path"]) for r in real])
        for r in real:
            name = os.path.relpath(r["path"], common)
            lines.append("| %s | %.1f, %.1f | %.1f, %.1f | %.2f to %.2f | %.1f | %.1f | %.1f |" % (
                name, *r["wanted"], *r["found"], *r["region"], r["zero"], r["first"], r["ends"]))
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("cli")
    parser.add_argument("--count", type=int, default=240)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--table")
    parser.add_argument("--real", nargs="*", default=[])
    options = parser.parse_args()
    cli = os.path.abspath(options.cli)
    with tempfile.TemporaryDirectory() as folder:
        rows = measure_generated(cli, folder, options.count, options.seed)
        time_of_one = milliseconds(cli, folder)
        real = [measure_real(cli, folder, os.path.abspath(path)) for path in options.real]
    text = table(rows, real, time_of_one)
    print(text)
    if options.table:
        with open(options.table, "w") as file:
            file.write(text)


if __name__ == "__main__":
    main()
