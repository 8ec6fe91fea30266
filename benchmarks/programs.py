"""Starting the measured programs, and reading from outside what they cost."""

import contextlib
import os
import shutil
import subprocess
import tempfile
import time

PATIENCE = 30  # seconds until a window must have been painted


class Failure(Exception):
    """A program did not do what is to be measured."""


class Build:
    """The programs of a build tree, and an environment in which nothing is the user's own."""

    def __init__(self, root, bench):
        self.root = os.path.abspath(root)
        self.bench = bench
        self.tool = os.path.join(self.root, "bin", "vq-tl4")
        self.work = tempfile.mkdtemp(prefix="work-", dir=self.root)
        self._folders = 0

    def program(self, name):
        return os.path.join(self.root, "bench-bin", name)

    def close(self):
        shutil.rmtree(self.work, ignore_errors=True)

    def folder(self):
        """A new empty folder."""
        self._folders += 1
        path = os.path.join(self.work, str(self._folders))
        os.mkdir(path, 0o700)
        return path

    def environment(self, folder, platform=None):
        """For a program that keeps its files in the folder; the fonts known already are kept."""
        kept = ("PATH", "HOME", "LD_LIBRARY_PATH")
        environment = {name: os.environ[name] for name in kept if name in os.environ}
        bench = os.path.join(folder, "bench.json")
        shutil.copyfile(self.bench, bench)
        environment.update(
            LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="offscreen",
            QT_FONT_DPI="72",
            KVASIM_BENCH=bench,
            XDG_DATA_HOME=folder,
            XDG_CONFIG_HOME=folder,
            XDG_RUNTIME_DIR=folder,
        )
        environment.update(platform or {})
        return environment


class Window:
    """A program that was started and has painted the window that is asked for."""

    def __init__(self, build, command, windows=1, platform=None, ends=False):
        folder = build.folder()
        painted = os.path.join(folder, "painted")
        environment = build.environment(folder, platform)
        environment.update(
            QT_PLUGIN_PATH=os.path.join(build.root, "bench-plugins"),
            QT_QPA_GENERIC_PLUGINS="paint_probe",
            PAINT_PROBE_OUT=painted,
            PAINT_PROBE_WINDOWS=str(windows),
        )
        if ends:
            environment["PAINT_PROBE_QUIT"] = "1"
        started = time.monotonic_ns()
        self._process = subprocess.Popen(
            command,
            env=environment,
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        try:
            if ends:
                self._process.wait(PATIENCE)
            self.launch_time = self._await(painted) - started
        except (Failure, subprocess.TimeoutExpired) as failure:
            self.close()
            raise Failure(f"{command} did not paint its window") from failure

    def _await(self, painted):
        """The time that the probe noted, in nanoseconds of the monotonic clock."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            with contextlib.suppress(FileNotFoundError), open(painted, encoding="ascii") as file:
                text = file.read()
                if text.endswith("\n"):
                    return int(text)
            if self._process.poll() not in (None, 0):
                break
            time.sleep(0.01)
        raise Failure

    def processor_time(self):
        """Nanoseconds, of the main thread: the simulated library's own looks at its bench file 20
        times a second, which the maker's does not and no peer has."""
        process = self._process.pid
        with open(f"/proc/{process}/task/{process}/schedstat", encoding="ascii") as file:
            return int(file.read().split()[0])

    def peak_memory(self):
        """KiB. Not from wait4(), which counts what was there before the exec as well."""
        with open(f"/proc/{self._process.pid}/status", encoding="ascii") as file:
            for line in file:
                if line.startswith("VmHWM:"):
                    return int(line.split()[1])
        raise Failure("no VmHWM")

    def close(self):
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def output(build, command, folder=None):
    """The standard output of a program that must succeed."""
    folder = folder or build.folder()
    finished = subprocess.run(
        command,
        env=build.environment(folder),
        cwd=folder,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        check=False,
    )
    if finished.returncode != 0:
        last = finished.stderr.decode(errors="replace").strip().splitlines()[-3:]
        raise Failure(f"{command[0]} failed: {' / '.join(last)}")
    return finished.stdout.decode()


def qt_version(build):
    """That of the Qt which the programs run with, such as 5.15.8."""
    return output(build, [build.program("bare_dialog"), "version"]).strip()


@contextlib.contextmanager
def virtual_screen():
    """An X server of our own with a window manager; yields the platform's environment."""
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x840x24", "-nolisten", "tcp"],
        pass_fds=[writing],
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
    )
    os.close(writing)
    manager = None
    try:
        with os.fdopen(reading) as file:
            display = file.readline().strip()
        if not display:
            raise Failure("the X server did not start")
        platform = {"DISPLAY": f":{display}", "QT_QPA_PLATFORM": "xcb"}
        manager = subprocess.Popen(
            ["openbox"],
            env={**os.environ, **platform},
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        time.sleep(2)
        if manager.poll() is not None:
            raise Failure("the window manager did not start")
        yield platform
    finally:
        for process in (manager, server):
            if process:
                process.terminate()
                process.wait()
