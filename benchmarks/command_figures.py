"""The figures of vq-tl4ctl."""

import contextlib
import json
import os
import sqlite3
import subprocess
import time

from figures import Figure, in_turn
from programs import Failure, output

COLUMNS = "serial,wireless,ssid,key,dhcp,ip,mask,gateway,dns,power_off,white_plate\n"


def row(number, plate=""):
    return (f"{number:08},on,Room {number % 50},secret-key-{number:05},off,10.1.{number // 200}."
            f"{number % 200 + 1},255.255.0.0,10.1.250.1,10.1.250.2,30,{plate}\n")


def instrument(number):
    address = {"IPAddress": f"10.9.0.{number}", "SubnetMask": "255.255.0.0",
               "DefaultGateway": "10.9.250.1", "DNS": "10.9.250.2"}
    network = {"APConnectUse": 1, "DHCPUse": 0, "SSID": "before", "EncryptKey": "before", **address}
    white = {"serialNumber": str(20000000 + number),
             "values": [round(85.5 + 0.2 * i, 4) for i in range(38)]}
    adapter = {"serialNumber": f"{10000 + number:08}",
               "values": [round(0.6 + 0.01 * i, 4) for i in range(75)]}
    return {"serialNumber": number, "startUpMs": 0, "network": {"active": network},
            "powerOffMode": 1,
            "calibration": {"committed": {"white": white, "ambientAdapter": adapter}}}


def write(path, text):
    with open(path, "w", encoding="ascii") as file:
        file.write(text)
    return path


class Bench:
    """Instruments, a plan for some of them that changes all things, carried out, and a data folder
    of its own. What the library does for a call grows with the instruments of its bench file, so
    those are as many for each plan."""

    def __init__(self, build, attached, count):
        self.count = count
        self.folder = build.folder()
        self._environment = build.environment(self.folder)
        bench = {"version": 1, "instruments": [instrument(i + 1) for i in range(attached)]}
        write(self._environment["KVASIM_BENCH"], json.dumps(bench))
        values = ",".join(f"{85.6 + 0.2 * i:.4f}" for i in range(38))
        text = COLUMNS
        for number in range(1, count + 1):
            write(os.path.join(self.folder, f"{number}.csv"),
                  f"Values\nSerial number, values\n{30000000 + number}\n{values}\n")
            text += row(number, f"{number}.csv")
        plan = write(os.path.join(self.folder, "plan.csv"), text)
        self._command = [os.path.join(build.root, "bin", "vq-tl4ctl"), "apply", "--plan", plan,
                         "--yes"]
        self.peak = self._apply()
        self._read_journal()

    def _apply(self):
        """Carries the plan out. The peak memory in MiB, as last seen before the end."""
        process = subprocess.Popen(self._command, env=self._environment, cwd=self.folder,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        peak = 0
        while process.poll() is None:
            with contextlib.suppress(OSError), \
                    open(f"/proc/{process.pid}/status", encoding="ascii") as file:
                for line in file:
                    if line.startswith("VmHWM:"):
                        peak = max(peak, int(line.split()[1]))
            time.sleep(0.002)
        if process.returncode != 0:
            raise Failure(f"the plan ended with {process.returncode}")
        return peak / 1024

    def _read_journal(self):
        """Milliseconds from the first instrument to the end of the run, outside the library's
        calls, and the bytes that the journal has; both for each instrument."""
        path = os.path.join(self.folder, "vq-tl4ctl", "journal.sqlite")
        with contextlib.closing(sqlite3.connect(path)) as journal:
            def ask(query):
                return journal.execute(query).fetchone()[0]
            words = journal.execute("SELECT word FROM outcome").fetchall()
            if words != [("verified",)] * self.count:
                raise Failure("not every instrument is verified")
            taken = ask("SELECT (julianday((SELECT ended FROM run_end)) - "
                        "julianday((SELECT min(began) FROM instrument))) * 86400000")
            calls = ask("SELECT sum(microseconds) / 1000.0 FROM call_result")
        self.milliseconds = (taken - calls) / self.count
        self.bytes = os.path.getsize(path) // self.count


def two_transactions(build, count, size):
    """Milliseconds that two durable transactions of so many bytes together take, on average."""
    path = os.path.join(build.folder(), "peer.sqlite")
    with contextlib.closing(sqlite3.connect(path, isolation_level=None)) as database:
        database.execute("PRAGMA journal_mode = WAL")
        database.execute("PRAGMA synchronous = FULL")
        database.execute("CREATE TABLE entry (content BLOB)")
        content = os.urandom(size // 2)
        started = time.monotonic_ns()
        for _ in range(2 * count):
            database.execute("BEGIN IMMEDIATE")
            database.execute("INSERT INTO entry VALUES (?)", (content,))
            database.execute("COMMIT")
        return (time.monotonic_ns() - started) / 1e6 / count


def command_start(build, plan):
    figure = Figure("vq-tl4ctl --version", "bare Qt Core program", 1.5, "ms")

    def started(command):
        begin = time.monotonic_ns()
        output(build, command)
        return (time.monotonic_ns() - begin) / 1e6

    tool = [os.path.join(build.root, "bin", "vq-tl4ctl"), "--version"]
    bare = [build.program("bare_core")]
    for run in range(-1, plan.runs * 3):  # the first is not counted
        pair = in_turn(run, lambda: started(tool), lambda: started(bare))
        if run >= 0:
            figure.add(*pair)
    yield figure


def plan_check(build, plan):
    count = 10000
    path = write(os.path.join(build.folder(), "plan.csv"),
                 COLUMNS + "".join(row(number + 1) for number in range(count)))
    figure = Figure("plan check of 10,000 rows, a row", "libcsv alone", 3.0, "us")
    for _ in range(plan.runs):
        times = json.loads(output(build, [build.program("bench_plan"), path]))
        figure.add(times["plan"] / count / 1e3, times["libcsv"] / count / 1e3)
    yield figure


def plan_run(build, plan):
    counts = (1, 10) if max(plan.sizes) < 100 else (1, 10, 100)
    names = " / ".join(str(count) for count in counts)
    most = counts[-1]
    against = "two durable SQLite transactions of the same bytes"
    duration = Figure(f"plan over {most} instruments, each, outside SDK calls", against, 2.0, "ms")
    even = Figure(f"plan over {names} instruments, time for each", "slowest : fastest", 1.1, "ms")
    memory = Figure(f"plan over {names} instruments, peak memory", "most : least", 1.1, "MiB")
    for _ in range(plan.runs):
        benches = [Bench(build, most, count) for count in counts]
        last = benches[-1]
        duration.add(last.milliseconds, two_transactions(build, most, last.bytes))
        times = [bench.milliseconds for bench in benches]
        even.add(max(times), min(times))
        peaks = [bench.peak for bench in benches]
        memory.add(max(peaks), min(peaks))
    yield from (duration, even, memory)


GROUPS = (command_start, plan_check, plan_run)
