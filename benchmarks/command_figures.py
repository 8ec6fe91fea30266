"""The figures of vq-tl4ctl."""

import contextlib
import json
import os
import shutil
import sqlite3
import statistics
import subprocess
import time

from figures import EvenFigure, Figure, in_turn
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


def peak_memory(command, environment, folder):
    """Runs a program to its end. Its peak memory in MiB, as last seen before the end."""
    process = subprocess.Popen(command, env=environment, cwd=folder, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    peak = 0
    while process.poll() is None:
        with contextlib.suppress(OSError), \
                open(f"/proc/{process.pid}/status", encoding="ascii") as file:
            for line in file:
                if line.startswith("VmHWM:"):
                    peak = max(peak, int(line.split()[1]))
        time.sleep(0.002)
    if process.returncode != 0:
        raise Failure(f"{command[0]} ended with {process.returncode}")
    return peak / 1024


class Bench:
    """Instruments, a plan for some of them that changes all things, carried out, and a data folder
    of its own. What the library does for a call grows with the instruments of its bench file, so
    those are as many for each plan."""

    def __init__(self, build, attached, count):
        self.count = count
        self.folder = build.folder()
        self._environment = build.environment(self.folder)
        # As after an earlier run: making it is not an instrument's time.
        self._data = os.path.join(self.folder, "vq-tl4ctl")
        os.makedirs(os.path.join(self._data, "snapshots"), 0o700)
        bench = {"version": 1, "instruments": [instrument(i + 1) for i in range(attached)]}
        write(self._environment["KVASIM_BENCH"], json.dumps(bench))
        values = ",".join(f"{85.6 + 0.2 * i:.4f}" for i in range(38))
        text = COLUMNS
        for number in range(1, count + 1):
            write(os.path.join(self.folder, f"{number}.csv"),
                  f"Values\nSerial number, values\n{30000000 + number}\n{values}\n")
            text += row(number, f"{number}.csv")
        plan = write(os.path.join(self.folder, "plan.csv"), text)
        # First what the library needs alone, on a copy of the instruments.
        alone = build.environment(build.folder())
        shutil.copyfile(self._environment["KVASIM_BENCH"], alone["KVASIM_BENCH"])
        self.library_peak = peak_memory([build.program("bare_calls"), str(count)], alone,
                                        self.folder)
        command = [os.path.join(build.root, "bin", "vq-tl4ctl"), "apply", "--plan", plan, "--yes"]
        self.peak = peak_memory(command, self._environment, self.folder)
        self._read_journal()

    def _read_journal(self):
        """Milliseconds from the first instrument to the end of the run, outside the library's
        calls; the bytes that the journal has; and what had to be durable before something else
        happened: the row of each call that writes, with all rows before it, and each outcome. All
        for each instrument."""
        path = os.path.join(self._data, "journal.sqlite")
        with contextlib.closing(sqlite3.connect(path)) as journal:
            def ask(query):
                return journal.execute(query).fetchone()[0]
            words = journal.execute("SELECT word FROM outcome").fetchall()
            if words != [("verified",)] * self.count:
                raise Failure("not every instrument is verified")
            taken = ask("SELECT (julianday((SELECT ended FROM run_end)) - "
                        "julianday((SELECT min(began) FROM instrument))) * 86400000")
            calls = ask("SELECT sum(microseconds) / 1000.0 FROM call_result")
            writes = ask("SELECT count(*) FROM call WHERE writes")
            self.snapshot = ask("SELECT max(length(content)) FROM snapshot")
        self.milliseconds = (taken - calls) / self.count
        self.bytes = os.path.getsize(path) // self.count
        self.durable = writes // self.count + 1


def durable_file(folder, name, content):
    """As a program makes a file that is complete or not there, after a power failure as well."""
    path = os.path.join(folder, name)
    with open(path + ".new", "xb") as file:
        file.write(content)
        file.flush()
        os.fsync(file.fileno())
    os.rename(path + ".new", path)
    descriptor = os.open(folder, os.O_RDONLY | os.O_DIRECTORY)
    os.fsync(descriptor)
    os.close(descriptor)


def durable(build, last, transactions, snapshot=0):
    """Milliseconds that so many durable transactions of the bytes of an instrument take together,
    and a durable file of so many bytes; on average over as many instruments."""
    folder = build.folder()
    with contextlib.closing(sqlite3.connect(os.path.join(folder, "peer.sqlite"),
                                            isolation_level=None)) as database:
        database.execute("PRAGMA journal_mode = WAL")
        database.execute("PRAGMA synchronous = FULL")
        database.execute("CREATE TABLE entry (content BLOB)")
        content = os.urandom(last.bytes // transactions)
        file_content = os.urandom(snapshot)
        started = time.monotonic_ns()
        for number in range(last.count):
            if snapshot:
                durable_file(folder, f"{number}.json", file_content)
            for _ in range(transactions):
                database.execute("BEGIN IMMEDIATE")
                database.execute("INSERT INTO entry VALUES (?)", (content,))
                database.execute("COMMIT")
        return (time.monotonic_ns() - started) / 1e6 / last.count


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
    # So often that the plans of each size together have a similar number of instruments.
    repeats = {1: 10, 10: 3} if max(plan.sizes) < 100 else {1: 20, 10: 4, 100: 1}
    names = " / ".join(str(count) for count in repeats)
    most = max(repeats)
    name = f"plan over {most} instruments, each, outside SDK calls"
    two = Figure(name, "two durable SQLite transactions of the same bytes", 2.0, "ms")
    needed = Figure(name, "as many as must be durable, and the snapshot", None, "ms")
    even = EvenFigure(f"plan over {names} instruments, time for each", "slowest : fastest", 1.1,
                      "ms")
    memory = EvenFigure(f"plan over {names} instruments, peak memory", "most : least", 1.1, "MiB")
    library = EvenFigure("the library's calls of these plans alone, peak memory", "most : least",
                         None, "MiB")
    for _ in range(plan.runs):
        benches = {count: [Bench(build, most, count) for _ in range(repeat)]
                   for count, repeat in repeats.items()}
        last = benches[most][-1]
        two.add(last.milliseconds, durable(build, last, 2))
        needed.add(last.milliseconds, durable(build, last, last.durable, last.snapshot))

        def medians(name):
            return [statistics.median(getattr(bench, name) for bench in benches[count])
                    for count in repeats]

        even.add_sizes(medians("milliseconds"))
        memory.add_sizes(medians("peak"))
        library.add_sizes(medians("library_peak"))
    yield from (two, needed, even, memory, library)


GROUPS = (command_start, plan_check, plan_run)
