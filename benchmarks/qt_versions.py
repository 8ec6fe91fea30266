"""The tool built with Qt 6 against the same built with Qt 5, in alternation. Nothing is to be
reached: the rows show what a change of Qt costs. Where there is no Qt 5, both have the same."""

import contextlib
import json
import os
import sys

from figures import Figure, in_turn, launched, peak
from programs import Build, output, qt_version, virtual_screen


def qt_versions(build, plan):
    qt6 = Build(build.root + "-qt6", build.bench)
    with contextlib.closing(qt6):
        versions = [qt_version(one) for one in (qt6, build)]
        if versions[0] == versions[1]:
            print(f"Not compared: both are built with Qt {versions[0]}", file=sys.stderr)
            return
        yield from compared(qt6, build, plan, *versions)


def compared(qt6, qt5, plan, version6, version5):
    def figure(name, unit, measure):
        result = Figure(f"Qt {version6}: {name}", f"Qt {version5}", None, unit)
        for build in (qt6, qt5):
            measure(build)  # what a first start reads from the disk is not the program's
        for run in range(plan.runs):
            result.add(*in_turn(run, lambda: measure(qt6), lambda: measure(qt5)))
        return result

    yield figure("launch to language dialog, offscreen", "ms",
                 lambda build: launched(build, [build.tool]))
    with virtual_screen() as platform:
        yield figure("launch to language dialog, Xvfb", "ms",
                     lambda build: launched(build, [build.tool], platform))
    for name, windows in (("language dialog", 1), ("settings dialog connected", 2)):
        yield figure(f"peak memory, {name}", "MiB",
                     lambda build, windows=windows: peak(build, [build.tool], windows))
    yield figure("connect and fill outside SDK calls, repeated", "ms", lambda build: json.loads(
        output(build, [build.program("bench_connect")]))["filling"] / 1e6)
    yield figure("processor time, vq-tl4ctl --version", "ms", version_time)


def version_time(build):
    """Milliseconds of processor time, of ten starts."""
    before = os.times()
    for _ in range(10):
        output(build, [os.path.join(build.root, "bin", "vq-tl4ctl"), "--version"])
    after = os.times()
    return 100 * (after.children_user - before.children_user
                  + after.children_system - before.children_system)


GROUPS = (qt_versions,)
