#!/usr/bin/env python3
"""Times whole processing chains, from file to file, in zolt-cli and in numpy, and prints one table in Markdown.

Every chain is first run once in each program and the saved files are compared; then all contestants take turns, and
the medians of the rounds are shown. See docs/performance.md.
"""
import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

try:
    import numpy as np
    import scipy
except ImportError as error:
    sys.exit(f"chains.py: {error}. scripts/install-deps --bench installs it for the system's python3 (/usr/bin/python3).")

sys.dont_write_bytecode = True  # nothing is left in the tree

import chain_steps
from chain_steps import CHAINS, KINDS

HERE = Path(__file__).resolve().parent
TOLERANCE = 2e-5  # of the largest magnitude


class NotAvailable(Exception):
    pass


class Wrong(Exception):
    pass


class Workshop:
    """The folder with the data of one chain, and the programs that work in it."""

    def __init__(self, cli, folder, chain):
        self.cli, self.folder, self.chain = cli, folder, chain
        self.source = folder / "source.zolt"
        (folder / "root").mkdir()
        shutil.copy(HERE.parent / "ZOLT.INI", folder / "root")
        self.make_source()

    def make_source(self):
        """Decaying lines in every dimension, and noise."""
        random = np.random.default_rng(1)
        shape = self.chain.seen
        x = (random.standard_normal(shape) + 1j * random.standard_normal(shape)).astype(np.complex64)
        for _ in range(5):
            line = np.complex64(100)
            for axis, n in enumerate(shape):
                k = np.arange(n)
                decay = np.exp((2j * np.pi * random.uniform(-0.4, 0.4) - 2 / n) * k).astype(np.complex64)
                line = line * chain_steps.along(decay, axis, len(shape))
            x += line
        chain_steps.write(self.source, x.reshape(self.chain.stored))

    def target(self, contestant):
        return self.folder / (contestant + ".zolt")

    # ---- zolt-cli

    def macro(self, target, repetitions):
        leave = ["AR off"] if any(line.startswith("AR ") for line in self.chain.commands) else []
        body = [f"GA {self.source}", *self.chain.commands, f"SA {target}", *leave]
        path = self.folder / f"{target.stem}_{repetitions}.mac"
        path.write_text("\n".join(["ZOLTMACRO", f"LOOP {repetitions}", *body, "END_LOOP", ""]))
        return path

    def zolt(self, target, threads, repetitions, *options):
        command = [self.cli, "--root", self.folder / "root", *options, "-m", self.macro(target, repetitions)]
        return subprocess.run(command, env={**os.environ, "OMP_NUM_THREADS": str(threads)}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE)

    def zolt_ms(self, target, threads, repetitions):
        start = time.perf_counter()
        run = self.zolt(target, threads, repetitions)
        elapsed = time.perf_counter() - start
        if run.returncode != 0:
            raise Wrong(f"zolt-cli ended with status {run.returncode}")
        return 1000 * elapsed

    def zolt_warm_ms(self, target, threads):
        """One repetition among many: what more of them add to a run of few."""
        few, more = 2, self.chain.repetitions
        return (self.zolt_ms(target, threads, few + more) - self.zolt_ms(target, threads, few)) / more

    # ---- numpy

    def numpy_warm_ms(self, target, kind):
        """One repetition among many, too: the first ones find memory in the state in which others left it."""
        self.chain.run_numpy(kind, self.source, target)
        start = time.perf_counter()
        for _ in range(self.chain.repetitions):
            self.chain.run_numpy(kind, self.source, target)
        return 1000 * (time.perf_counter() - start) / self.chain.repetitions

    def script_ms(self, target, kind):
        """A process of its own, its module compiled beforehand as that of an installed package is."""
        environment = {**os.environ, "PYTHONPATH": str(HERE), "PYTHONPYCACHEPREFIX": str(self.folder / "compiled")}
        environment.pop("PYTHONDONTWRITEBYTECODE", None)
        command = [sys.executable, "-m", "chain_steps", self.chain.name, kind, self.source, target]
        start = time.perf_counter()
        subprocess.run(command, env=environment, check=True)
        return 1000 * (time.perf_counter() - start)

    def files_ms(self):
        """The files alone: the source read, and as many bytes as the target has written to a new file, from memory in use."""
        target = self.target("files")
        target.unlink(missing_ok=True)
        content = self.content
        start = time.perf_counter()
        np.fromfile(self.source, np.uint8, count=content.size)
        with open(target, "wb", buffering=0) as file:
            file.write(content.data)
        return 1000 * (time.perf_counter() - start)

    # ---- is it the same work?

    def check_zolt(self, threads):
        """Raises NotAvailable with the first line that was refused."""
        target = self.target(f"zolt{threads}")
        run = self.zolt(target, threads, 1, "--json")
        said = ""
        for line in run.stdout.decode().splitlines():
            event = json.loads(line)
            if event["event"] in ("message", "reply"):
                said = " ".join(event["text"].split())
            elif event["event"] == "line" and event["result"] != 1:
                raise NotAvailable(f"{event['text'].split()[0]}: {said}" if said else event["text"])
        if run.returncode != 0:
            raise Wrong(f"zolt-cli ended with status {run.returncode}")

    def compare(self, contestant, expected):
        found = chain_steps.read_points(self.target(contestant), expected.size).reshape(expected.shape)
        off = float(np.abs(found - expected).max() / np.abs(expected).max())
        if not off <= TOLERANCE:
            raise Wrong(f"{contestant} differs from numpy by {off:.2g} of the maximum")
        return off


def measure(workshop, options):
    """Medians in ms: {(contestant, warm or whole): ms}."""
    kinds = {name: kind() for name, kind in KINDS.items()}
    zolts = {f"zolt{threads}": threads for threads in options.threads}
    expected = workshop.chain.run_numpy(kinds["plain"], workshop.source, workshop.target("plain")).astype(np.complex64)
    for threads in options.threads:
        workshop.check_zolt(threads)
    for name in ("tuned", "flushed"):
        workshop.chain.run_numpy(kinds[name], workshop.source, workshop.target(name))
    for name in (*kinds, *zolts):
        off = workshop.compare(name, expected)
        print(f"{workshop.chain.name} {name}: {off:.1e} of the maximum off", file=sys.stderr)
    times = {}
    workshop.content = np.ones(expected.nbytes, np.uint8)
    for turn in range(options.rounds or workshop.chain.rounds):
        times.setdefault(("files", "warm"), []).append(workshop.files_ms())
        print(f"{workshop.chain.name}: round {turn + 1}", file=sys.stderr)
        for name, kind in kinds.items():
            times.setdefault((name, "warm"), []).append(workshop.numpy_warm_ms(workshop.target(name), kind))
            times.setdefault((name, "whole"), []).append(workshop.script_ms(workshop.target(name), name))
        for name, threads in zolts.items():
            times.setdefault((name, "warm"), []).append(workshop.zolt_warm_ms(workshop.target(name), threads))
            times.setdefault((name, "whole"), []).append(workshop.zolt_ms(workshop.target(name), threads, 1))
    for name in (*kinds, *zolts):
        workshop.compare(name, expected)
    return {key: statistics.median(values) for key, values in times.items()}


def rows(chain, medians, threads):
    for how, what in (("warm", "one of many"), ("whole", "whole process")):
        zolts = [medians[f"zolt{n}", how] for n in threads]
        cells = [medians[name, how] for name in KINDS] + zolts
        ratios = [medians["tuned", how] / ms for ms in zolts] + [medians["flushed", how] / zolts[-1]]
        files = medians["files", "warm"]
        cells.append(files)
        ratios.append((medians["tuned", how] - files) / (zolts[-1] - files))
        yield " | ".join(["", chain.title if how == "warm" else "", what, *(f"{ms:.1f}" for ms in cells),
                          *(f"**{ratio:.1f}**" for ratio in ratios), ""]).strip()


def print_heading(threads):
    zolts = [f"zolt, {n} thread{'s' if n > 1 else ''}" for n in threads]
    ratios = [f"tuned / zolt, {n}" for n in threads] + [f"tuned, flushed / zolt, {threads[-1]}"]
    ratios.append(f"tuned / zolt, {threads[-1]}, without the files")
    columns = ["chain, ms", "", "numpy", "tuned", "tuned, flushed", *zolts, "files alone", *ratios]
    print(" | ".join(["", *columns, ""]).strip())
    print("|" + " --- |" * 2 + " ---: |" * (len(columns) - 2), flush=True)


def machine(cli):
    """What the figures were measured with."""
    version = subprocess.run([cli, "--version"], capture_output=True, text=True, check=True).stdout.strip()
    models = [line.split(":")[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")]
    python = ".".join(map(str, sys.version_info[:3]))
    return f"{version}, Python {python}, numpy {np.__version__}, scipy {scipy.__version__}; {len(models)} x {models[0]}"


def main():
    load = os.getloadavg()[0]
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("chains", nargs="*", metavar="CHAIN", help=f"of {', '.join(CHAINS)}; all of them without one")
    parser.add_argument("--cli", type=Path, default=HERE.parent / "build/bench/zolt-cli", help="the zolt-cli to measure")
    parser.add_argument("--rounds", type=int, help="how often every contestant runs")
    parser.add_argument("--threads", type=int, nargs="+", default=[1, 2], help="threads of zolt-cli (1 2)")
    parser.add_argument("--folder", help="where the files are; the folder for temporary files without it")
    options = parser.parse_args()
    unknown = [name for name in options.chains if name not in CHAINS]
    if unknown or not options.cli.is_file():
        parser.error(f"no chain {unknown[0]}" if unknown else f"no program {options.cli}")
    options.cli = options.cli.resolve()
    print_heading(options.threads)
    wrong = False
    for name in options.chains or CHAINS:
        chain = CHAINS[name]
        with tempfile.TemporaryDirectory(prefix="zolt-chains-", dir=options.folder) as folder:
            try:
                medians = measure(Workshop(options.cli, Path(folder), chain), options)
                print("\n".join(rows(chain, medians, options.threads)), flush=True)
            except NotAvailable as missing:
                print(f"| {chain.title} | not available: {missing} |", flush=True)
            except Wrong as difference:
                wrong = True
                print(f"| {chain.title} | WRONG: {difference} |", flush=True)
    print(f"\n{machine(options.cli)}, load {load:.1f} before the start")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
