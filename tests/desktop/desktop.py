# SPDX-License-Identifier: MIT
"""A desktop of the tests' own: a screen (Xvfb), a window manager, a session bus, and an installed Sonarin in it that
follows what real programs say. Input goes through the X server, as a person's does; what Sonarin shows is read off its
window's title, which names the file."""

import atexit
import os
import pathlib
import shutil
import subprocess
import tempfile
import threading
import time
import unittest
import urllib.parse

PREFIX = pathlib.Path(os.environ["SONARIN_PREFIX"])  # where Sonarin is installed
SAMPLES = pathlib.Path(os.environ["SAMPLES"])


def wait_until(condition, seconds, pause=0.05):
    """What the condition answered last, true as soon as it is."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(pause)


class Desktop:
    """Starts everything at once and ends it with `close`, whatever became of it in between."""

    shown = ""  # the name of the file in Sonarin's window
    changed = None  # when its title last did

    def __init__(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="sonarin-desktop-"))
        self.home = self.scratch / "home"
        self.programs = []
        atexit.register(self.close)  # whatever ends the tests
        self.environment = {
            # Debian's own programs: an embedded Python looks for its library beside the first python3 in the path.
            "PATH": f"{PREFIX}/bin:/usr/bin:/bin:/usr/games", "HOME": str(self.home), "USER": "tester", "LC_ALL": "C.UTF-8",
            "XDG_DATA_DIRS": f"{PREFIX}/share:/usr/share", "XDG_RUNTIME_DIR": str(self.scratch / "run"), "XDG_CURRENT_DESKTOP": "test",
            "GSETTINGS_BACKEND": "keyfile", "GSK_RENDERER": "cairo", "LIBGL_ALWAYS_SOFTWARE": "1",
            "QT_ACCESSIBILITY": "0", "QT_QPA_PLATFORM": "xcb", "GTK_USE_PORTAL": "0",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.scratch}/bus",
        }
        self.home.mkdir()
        (self.scratch / "run").mkdir(mode=0o700)
        self._start_screen()
        self._start_window_manager()
        self.spawn("dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address=unix:path={self.scratch}/bus")
        assert wait_until((self.scratch / "bus").exists, 10), "no session bus"

    def close(self):
        atexit.unregister(self.close)
        for program in reversed(self.programs):
            program.kill()
            program.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)

    def _start_screen(self):
        read, write = os.pipe()
        self.spawn("Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-nolisten", "tcp", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()

    def _start_window_manager(self):
        self.spawn("openbox")
        manager = ("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")
        assert wait_until(lambda: "window id" in self.output(*manager), 10), "no window manager"

    def spawn(self, *command, environment=None, **options):
        with open(self.scratch / (pathlib.Path(command[0]).name + ".log"), "ab") as log:
            program = subprocess.Popen([os.fsencode(word) for word in command], cwd=self.scratch,
                                       env={**self.environment, **(environment or {})},
                                       **{"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log, **options})
        self.programs.append(program)
        return program

    def output(self, *command, check=True):
        done = subprocess.run([os.fsencode(word) for word in command], stdin=subprocess.DEVNULL, capture_output=True,
                              env=self.environment, timeout=60, check=False)
        assert not check or done.returncode == 0, (command, done.stdout, done.stderr)
        return done.stdout.decode(errors="replace")

    def configure(self, name, text):
        file = self.home / ".config" / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def connect(self, program):
        said = self.output("sonarin-connect", program)
        assert "is connected" in said, said
        script = self.home / ".config/plasma-workspace/env/sonarin.sh"  # which the session's start would have read
        if script.exists():
            self.environment["QT_PLUGIN_PATH"] = self.output("sh", "-c", '. "$0"; printf %s "$QT_PLUGIN_PATH"', script)

    def names(self, prefix="org.sonarin.Selection1."):
        listed = self.output("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                             "org.freedesktop.DBus.ListNames", check=False)
        return [line.split('"')[1] for line in listed.split("\n") if f'"{prefix}' in line]

    def ask(self, name, method="GetAll", *words):
        """What a connector answers, as text."""
        return self.output("gdbus", "call", "--session", "--timeout", "5", "--dest", name, "--object-path",
                           "/org/sonarin/Selection1", "--method", "org.freedesktop.DBus.Properties." + method,
                           *(words or ["org.sonarin.Selection1"]), check=False)

    def xdotool(self, *words, check=True):
        return self.output("xdotool", *map(str, words), check=check)

    def windows(self, window_class):
        return self.xdotool("search", "--onlyvisible", "--class", window_class, check=False).split()

    def wait_for_window(self, window_class, known=()):
        found = wait_until(lambda: [window for window in self.windows(window_class) if window not in known], 30)
        assert found, f"no window of {window_class} appeared"
        return found[0]

    def activate(self, window):
        self.xdotool("windowactivate", "--sync", window)

    def keys(self, *names, pause=0):
        self.xdotool("key", "--delay", "20", *names)
        time.sleep(pause)

    def title(self, window):
        return self.xdotool("getwindowname", window, check=False).strip()

    def click(self, window, x, y):
        """At that per cent of its width and height."""
        size = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", window).split())
        self.xdotool("mousemove", "--window", window, int(size["WIDTH"]) * x // 100, int(size["HEIGHT"]) * y // 100, "click", 1)

    def click_empty_room(self, window):
        """Below the files of a window: that gives them the keyboard, and takes their selection away."""
        self.click(window, 90, 86)

    def click_track(self, window):
        """Some track near the top of a player's list, in the lower half of its window."""
        self.click(window, 50, 67)

    def drag(self, x, y, to_x, to_y):
        """Slowly at first, or it is no drag."""
        self.xdotool("mousemove", x, y, "sleep", 0.2, "mousedown", 1, "sleep", 0.3)
        for part in (*range(1, 30), *range(30, 401, 20)):
            self.xdotool("mousemove", x + (to_x - x) * part // 400, y + (to_y - y) * part // 400, "sleep", 0.03)
        self.xdotool("sleep", 0.5, "mouseup", 1)

    def put_on_clipboard(self, text):
        self.output("sh", "-c", 'printf %s "$0" | xclip -i -selection clipboard >/dev/null 2>&1', text)

    def clipboard(self, *options):
        return self.output("timeout", "2", "xclip", "-o", "-selection", "clipboard", *options, check=False)

    def copied(self):
        """The paths (bytes) of the files that the program with the keyboard copies: its own word for what is selected."""
        self.put_on_clipboard("")
        self.keys("ctrl+c")
        uris = wait_until(lambda: self.clipboard("-t", "text/uri-list").split(), 0.5)
        return [urllib.parse.unquote_to_bytes(uri).removeprefix(b"file://") for uri in uris]

    def start_sonarin(self, *files, kind=5):
        """kind: 5 file manager selection, 6 player selection, 7 track playing."""
        self.configure("sonarin/sonarin.conf", f"[General]\nsyncKindDefaultKey={kind}\n")
        self.sonarin = self.spawn("sonarin", *files)
        self.sonarin_window = self.wait_for_window("sonarin")
        spy = self.spawn("xprop", "-spy", "-id", self.sonarin_window, "8u", "=$0\\n", "_NET_WM_NAME", stdout=subprocess.PIPE)
        threading.Thread(target=self._watch, args=(spy.stdout,), daemon=True).start()
        assert wait_until(lambda: self.changed, 10), "the window has no title"

    def _watch(self, titles):
        with titles:
            for title in titles:
                self.changed = time.monotonic()
                self.shown = title.decode(errors="replace").split('="', 1)[-1].rstrip('"\n').partition(" - ")[2]


class DesktopTest(unittest.TestCase):
    """A test with a desktop of its own, skipped where one of the programs is missing."""

    needs = ("Xvfb", "openbox", "xdotool", "xclip", "xprop")
    kind_of_desktop = Desktop

    @staticmethod
    def require(*programs):
        """Or libraries (patterns of paths)."""
        for program in programs:
            if not (any(pathlib.Path("/usr/lib").glob(program)) if "/" in program else shutil.which(program)):
                raise unittest.SkipTest("NOT TESTED, missing: " + program)

    @classmethod
    def begin(cls, test):
        """For one test, or for the class."""
        cls.require(*cls.needs)
        test.desktop = cls.kind_of_desktop()
        test.music = test.desktop.home / "Music"
        test.music.mkdir()

    def setUp(self):
        self.begin(self)
        self.addCleanup(self.desktop.close)

    def wait_for(self, condition, seconds=5, wanted=None):
        if not wait_until(condition, seconds):
            told = [self.desktop.ask(name) for name in self.desktop.names()]
            self.fail(f"wanted: {wanted!r}, shown: {self.desktop.shown!r}, told: {told}")

    def assert_shown(self, name, seconds=5):
        self.wait_for(lambda: self.desktop.shown == name, seconds, name)

    def assert_stays(self, name, seconds=0.8):
        time.sleep(seconds)
        self.assertIsNone(self.desktop.sonarin.poll())
        self.assertEqual(self.desktop.shown, name)

    def kill(self, program):
        program.kill()
        program.wait()

    def open_folder(self, folder):
        """In PCManFM-Qt, to the right of Sonarin."""
        self.require("pcmanfm-qt")
        self.desktop.spawn("pcmanfm-qt", folder)
        window = self.desktop.wait_for_window("pcmanfm-qt")
        time.sleep(2)
        for moved, x in ((self.desktop.sonarin_window, 0), (window, 700)):
            self.desktop.xdotool("windowmove", moved, x, 0)
        time.sleep(0.5)
        return window


def song(path, title="Song"):
    """A small MPEG file: Layer III, 128 kbit/s, 44.1 kHz."""
    text = b"\0" + title.encode("latin-1")
    frame = b"TIT2" + len(text).to_bytes(4, "big") + b"\0\0" + text
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(b"ID3\x03\0\0\0\0\0" + bytes([len(frame)]) + frame + (b"\xff\xfb\x90\x64" + bytes(413)) * 12)
    return path
