"""The figures: each is measured in runs, in alternation with what it is compared with."""

import contextlib
import json
import statistics
import time

from large_files import LargeFiles
from programs import Failure, Window, output, virtual_screen


class Figure:
    """One row of the table. The ratio of a run is taken within that run."""

    def __init__(self, name, against, limit, unit):
        self.name = name
        self.against = against
        self.limit = limit
        self.unit = unit
        self.runs = []

    def add(self, measured, peer):
        self.runs.append({"measured": measured, "peer": peer, "ratio": measured / peer})

    def ratios(self):
        return sorted(run["ratio"] for run in self.runs)

    def ratio(self):
        return statistics.median(self.ratios())

    def reached(self):
        """None where there is nothing to reach: a row that explains another one."""
        return None if self.limit is None else self.ratio() <= self.limit

    def median(self, key):
        return statistics.median(run[key] for run in self.runs)


class WorstFigure(Figure):
    """One whose every run must keep the limit."""

    def ratio(self):
        return max(self.ratios())


class EvenFigure(Figure):
    """One whose values for several sizes must be alike. The ratio is that of their medians: of
    values that scatter the highest of a run lies above the lowest though they are alike."""

    def __init__(self, name, against, limit, unit):
        super().__init__(name, against, limit, unit)
        self._values = []

    def add_sizes(self, values):
        self._values.append(values)
        self.add(max(values), min(values))

    def medians(self):
        return [statistics.median(values) for values in zip(*self._values)]

    def ratio(self):
        return max(self.medians()) / min(self.medians())

    def median(self, key):
        return max(self.medians()) if key == "measured" else min(self.medians())


def in_turn(run, first, second):
    """Both results, each one first in every other run."""
    if run % 2 == 0:
        one = first()
        return one, second()
    two = second()
    return first(), two


def launched(build, command, platform=None):
    """Milliseconds until the first window is painted."""
    with Window(build, command, platform=platform, ends=True) as window:
        launch_time = window.launch_time / 1e6
    time.sleep(0.05)  # for the X server and the window manager to forget the window
    return launch_time


def peak(build, command, windows):
    """MiB, when so many windows were painted one after the other."""
    with Window(build, command, windows=windows) as window:
        time.sleep(0.3)
        return window.peak_memory() / 1024


def launch(build, plan):
    peers = (("bare dialog, empty", "language", 1.10), ("bare dialog, same widgets", "choice", None))

    def measure(name, peer, platform):
        against, kind, limit = peer
        figure = Figure(name, against, limit, "ms")
        bare = [build.program("bare_dialog"), kind]

        for command in ([build.tool], bare):
            # What a first start reads from the disk is not the program's.
            launched(build, command, platform)
        for run in range(plan.runs):
            figure.add(*in_turn(run, lambda: launched(build, [build.tool], platform),
                                lambda: launched(build, bare, platform)))
        return figure

    for peer in peers:
        yield measure("launch to language dialog, offscreen", peer, None)
    with virtual_screen() as platform:
        for peer in peers:
            yield measure("launch to language dialog, Xvfb", peer, platform)


def idle(build, plan):
    """Several pairs at a time: each process needs about 1 % of a processor."""
    against = "bare wait of the same size"
    kinds = (
        (Figure("processor time, language dialog waits", against, 1.05, "ms/min"), 1, "language"),
        (Figure("processor time, connected and idle", against, 1.15, "ms/min"), 2, "settings"),
    )

    def start_pairs(windows_of_all, count):
        def start(command, windows):
            return windows_of_all.enter_context(Window(build, command, windows=windows))

        for pair in range(count):
            for figure, windows, size in kinds:
                bare = [build.program("bare_dialog"), size]
                yield figure, *in_turn(pair, lambda: start([build.tool], windows),
                                       lambda: start(bare, 1))

    scale = 60 / plan.idle_seconds / 1e6  # from nanoseconds in that time
    for done in range(0, plan.runs, plan.pairs):
        with contextlib.ExitStack() as windows_of_all:
            pairs = list(start_pairs(windows_of_all, min(plan.pairs, plan.runs - done)))
            time.sleep(2)
            before = [(one.processor_time(), two.processor_time()) for _, one, two in pairs]
            time.sleep(plan.idle_seconds)
            for (figure, one, two), (one_before, two_before) in zip(pairs, before):
                figure.add((one.processor_time() - one_before) * scale,
                           (two.processor_time() - two_before) * scale)
    yield from (figure for figure, _, _ in kinds)


def memory(build, plan):
    kinds = (
        (Figure("peak memory, language dialog", "bare dialog, empty", 1.15, "MiB"), 1, "language"),
        (Figure("peak memory, language dialog", "bare dialog, same widgets", None, "MiB"), 1,
         "choice"),
        (Figure("peak memory, settings dialog connected", "bare dialog, 95 widgets", 1.15, "MiB"),
         2, "form"),
    )
    for figure, windows, size in kinds:
        bare = [build.program("bare_dialog"), size]
        for run in range(plan.runs):
            figure.add(*in_turn(run, lambda: peak(build, [build.tool], windows),
                                lambda: peak(build, bare, 1)))
        yield figure


def connect(build, plan):
    against = "construction of the dialog"
    rows = (
        (Figure("connect and fill outside SDK calls, repeated", against, 0.25, "ms"),
         "filling", "construction"),
        (Figure("the same, the first in the process", against, 0.25, "ms"),
         "firstFilling", "firstConstruction"),
        (Figure("the same, by the Connect button", against, 0.25, "ms"),
         "again", "firstConstruction"),
    )
    for _ in range(plan.runs):
        times = json.loads(output(build, [build.program("bench_connect")]))
        for figure, filling, construction in rows:
            figure.add(times[filling] / 1e6, times[construction] / 1e6)
    yield from (figure for figure, _, _ in rows)


def files(build, plan):
    rows = (
        ("settings INI, read", "ini read", "QSettings", "ini read QSettings", 0.50),
        ("settings INI, write", "ini write", "QSettings", "ini write QSettings", 0.25),
        ("white plate CSV", "white plate", "QTextStream, split, toFloat",
         "white plate QTextStream", 0.35),
        ("white plate CSV", "white plate", "read and strtof", "white plate strtof", 2.0),
        ("ambient adapter CSV", "adapter", "QTextStream, split, toFloat",
         "adapter QTextStream", 0.35),
        ("ambient adapter CSV", "adapter", "read and strtof", "adapter strtof", 2.0),
    )
    figures = [Figure(name, against, limit, "us") for name, _, against, _, limit in rows]
    command = [build.program("bench_files"), "--benchmark_format=json",
               f"--benchmark_min_time={plan.seconds_each}"]
    for _ in range(plan.runs):
        results = json.loads(output(build, command))["benchmarks"]
        times = {result["name"].split("/")[0]: result["real_time"] / 1e3 for result in results}
        for figure, (_, measured, _, peer, _) in zip(figures, rows):
            figure.add(times[measured], times[peer])
    yield from figures


def large_files(build, plan):
    """Of every size the same amount in all, each file read once."""
    for kind, name in (("ini", "settings INI"), ("white", "white plate CSV"),
                       ("adapter", "ambient adapter CSV")):
        sizes = " / ".join(str(size) for size in plan.sizes)
        duration = Figure(f"{name} of {sizes} MiB, time per byte", "slowest : fastest", 1.3, "ns/B")
        peak = Figure(f"{name} of {sizes} MiB, memory", "most : least", 1.05, "MiB")
        with LargeFiles(build.folder(), kind, plan.sizes) as made:
            for _ in range(plan.runs):
                times, peaks = [], []
                for paths, byte_count in made.files:
                    command = [build.program("read_large"), kind, *paths]
                    nanoseconds, kib = output(build, command).split()
                    times.append(int(nanoseconds) / byte_count)
                    peaks.append(int(kib) / 1024)
                duration.add(max(times), min(times))
                peak.add(max(peaks), min(peaks))
        yield from (duration, peak)


def lost(build, plan):
    figure = WorstFigure("lost instrument to message, the slowest", "interval of 1000 ms", 1.02,
                         "ms")
    delays = json.loads(output(build, [build.program("bench_lost"), str(plan.phases)]))
    if len(delays) != plan.phases:
        raise Failure("bench_lost did not measure all phases")
    for delay in delays:
        figure.add(delay, 1000)
    yield figure


GROUPS = (launch, idle, memory, connect, files, large_files, lost)
