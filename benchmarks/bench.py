#!/usr/bin/env python3
"""Measures the tool against its peers, prints a table and writes results.json beside the programs.

The ratio of a figure is the median of those of its runs, each taken within one run, in which the
tool and its peer were measured directly after one another. The spread is that of the middle half of
the runs.
"""

import argparse
import json
import os
import platform
import re
import statistics
import subprocess
import sys
import time

sys.dont_write_bytecode = True  # the sources' folder is to hold sources

import command_figures  # noqa: E402
import figures  # noqa: E402
import qt_versions  # noqa: E402
from programs import Build, Failure, qt_version  # noqa: E402

GROUPS = figures.GROUPS + command_figures.GROUPS + qt_versions.GROUPS
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


class Plan:
    """How much is measured."""

    def __init__(self, quick, runs):
        self.runs = runs or (3 if quick else 15)
        self.pairs = 5  # that wait at the same time
        self.idle_seconds = 10 if quick else 60
        self.phases = 8 if quick else 40
        self.seconds_each = 0.05 if quick else 0.2
        self.sizes = (1, 10) if quick else (1, 10, 100)


def first_match(text, pattern):
    found = re.search(pattern, text, re.MULTILINE)
    return found.group(1).strip() if found else "unknown"


def command_output(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def machine(build):
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        cpuinfo = file.read()
    with open(os.path.join(build.root, "CMakeCache.txt"), encoding="utf-8") as file:
        cache = file.read()
    compiler = first_match(cache, r"^CMAKE_CXX_COMPILER:\w+=(.*)$")
    return {
        "processor": first_match(cpuinfo, r"^model name\s*:(.*)$"),
        "cores": os.cpu_count(),
        "kernel": platform.release(),
        "qt": qt_version(build),
        "compiler": command_output(compiler, "--version").splitlines()[0],
        "buildType": first_match(cache, r"^CMAKE_BUILD_TYPE:\w+=(.*)$"),
        "linkTimeOptimization": first_match(
            cache, r"^CMAKE_INTERPROCEDURAL_OPTIMIZATION:\w+=(.*)$"),
        "loadAverage": os.getloadavg(),
    }


def spread(figure):
    ratios = figure.ratios()
    if len(ratios) < 4:
        return ratios[0], ratios[-1]
    quartiles = statistics.quantiles(ratios, n=4)
    return quartiles[0], quartiles[2]


def row(figure):
    low, high = spread(figure)
    return (
        figure.name,
        figure.against,
        f"{figure.median('measured'):.3g} : {figure.median('peer'):.3g} {figure.unit}",
        f"{figure.ratio():.3f}",
        "" if figure.limit is None else f"{figure.limit:g}",
        {True: "yes", False: "no", None: ""}[figure.reached()],
        f"{low:.3f} to {high:.3f}",
    )


def print_table(measured):
    rows = [("Figure", "Against", "Medians", "Ratio", "To reach", "Reached", "Spread")]
    rows += [row(figure) for figure in measured]
    widths = [max(len(cells[column]) for cells in rows) for column in range(len(rows[0]))]
    for number, cells in enumerate(rows):
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(cells, widths)) + " |")
        if number == 0:
            print("|" + "|".join("-" * (width + 2) for width in widths) + "|")


def as_json(figure):
    low, high = spread(figure)
    return {
        "figure": figure.name,
        "against": figure.against,
        "unit": figure.unit,
        "measured": figure.median("measured"),
        "peer": figure.median("peer"),
        "ratio": figure.ratio(),
        "toReach": figure.limit,
        "reached": figure.reached(),
        "spread": [low, high],
        "runs": figure.runs,
    }


def measure(build, plan, only):
    measured = []
    for group in GROUPS:
        if only and group.__name__ not in only:
            continue
        print(f"== {group.__name__.replace('_', ' ')}", file=sys.stderr)
        measured.extend(group(build, plan))
    return measured


def arguments():
    parser = argparse.ArgumentParser(description="Measures the tool against its peers.")
    parser.add_argument("--build", default=os.path.join(ROOT, "build", "bench"),
                        help="the build tree (build/bench); that with Qt 6 lies beside it (build/bench-qt6)")
    parser.add_argument("--quick", action="store_true",
                        help="fewer, shorter runs: whether it works, not how fast")
    parser.add_argument("--runs", type=int, help="how many (15)")
    parser.add_argument("--only", action="append", metavar="GROUP",
                        choices=[group.__name__ for group in GROUPS],
                        help="one group of figures; may be given again: %(choices)s")
    return parser.parse_args()


def main():
    options = arguments()
    plan = Plan(options.quick, options.runs)
    build = Build(options.build, os.path.join(ROOT, "simulator", "benches", "usb.json"))
    try:
        about = machine(build)
        started = time.time()
        measured = measure(build, plan, options.only)
    except Failure as failure:
        sys.exit(f"Cannot measure: {failure}")
    finally:
        build.close()
    results = os.path.join(build.root, "results.json")
    with open(results, "w", encoding="utf-8") as file:
        json.dump({"machine": about, "seconds": round(time.time() - started), "runs": plan.runs,
                   "figures": [as_json(figure) for figure in measured]}, file, indent=1)
    print_table(measured)
    print(f"\n{about['processor']}, {about['cores']} cores; Linux {about['kernel']}; "
          f"Qt {about['qt']}; {about['compiler']}; {about['buildType']}, link-time optimization "
          f"{about['linkTimeOptimization']}; load {about['loadAverage'][0]:.2f} at the start; "
          f"{plan.runs} runs\n{results}")


if __name__ == "__main__":
    main()
