# SPDX-License-Identifier: MIT
"""A desktop of the tests' own: a screen (Xvfb), a window manager, a session bus, and an installed Sonarin in it that
follows what real programs say. Input goes through the X server, as a person's does; what Sonarin shows is read off its
window's title, which names the file."""

import atexit
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import unittest
import urllib.parse

PREFIX = pathlib.Path(os.environ["SONARIN_PREFIX"])  # where Sonarin is installed
FRAME = b"\xff\xfb\x90\x64" + bytes(413)  # MPEG-1 Layer III, 128 kbit/s, 44.1 kHz


def missing(*programs):
    return [program for program in programs if shutil.which(program) is None]


def wait_until(condition, seconds, pause=0.01):
    """What the condition answered last, true as soon as it is."""
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(pause)


class Desktop:
    """Starts everything at once and ends it with `close`, whatever became of it in between."""

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
            "QT_ACCESSIBILITY": "0", "GTK_USE_PORTAL": "0",
        }
        self.home.mkdir()
        (self.scratch / "run").mkdir(mode=0o700)
        try:
            self._start_screen()
            self._start_bus()
            self.spawn("openbox")
            assert wait_until(self._has_window_manager, 10, 0.1), "no window manager"
        except BaseException:
            self.close()
            raise

    def close(self):
        atexit.unregister(self.close)
        for program in reversed(self.programs):
            if program.poll() is None:
                program.send_signal(signal.SIGCONT)
                program.kill()
            program.wait()
            if program.stdout is not None:
                program.stdout.close()
        shutil.rmtree(self.scratch, ignore_errors=True)

    def _start_screen(self):
        read, write = os.pipe()
        self.spawn("Xvfb", "-displayfd", str(write), "-screen", "0", "1600x1000x24", "-nolisten", "tcp", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()

    def _start_bus(self):
        address = f"unix:path={self.scratch}/bus"
        self.spawn("dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        assert wait_until((self.scratch / "bus").exists, 10), "no session bus"

    def _has_window_manager(self):
        return "window id" in self.output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")

    # --- programs -----------------------------------------------------------------------------------------------------

    def spawn(self, *command, environment=None, **options):
        name = pathlib.Path(str(command[0])).name
        with open(self.scratch / (name + ".log"), "ab") as log:
            program = subprocess.Popen([os.fsencode(word) for word in command], stdin=subprocess.DEVNULL, stdout=log,
                                       stderr=log, cwd=self.scratch, env={**self.environment, **(environment or {})}, **options)
        self.programs.append(program)
        return program

    def connected_environment(self):
        """What the session's start would have set, had it read what sonarin-connect wrote."""
        script = self.home / ".config/plasma-workspace/env/sonarin.sh"
        if not script.exists():
            return {}
        said = self.output("sh", "-c", '. "$0"; printf %s "$QT_PLUGIN_PATH"', script)
        return {"QT_PLUGIN_PATH": said}

    def log(self, name):
        return (self.scratch / (name + ".log")).read_text(errors="replace")

    def output(self, *command, check=True):
        done = subprocess.run([os.fsencode(word) for word in command], stdin=subprocess.DEVNULL, capture_output=True,
                              env=self.environment, timeout=60, check=False)
        assert not check or done.returncode == 0, (command, done.stdout, done.stderr)
        return done.stdout.decode(errors="replace")

    def stop(self, program, seconds=10):
        program.terminate()
        try:
            program.wait(seconds)
        except subprocess.TimeoutExpired:
            program.kill()
            program.wait()

    # --- the bus ------------------------------------------------------------------------------------------------------

    def names(self, prefix="org.sonarin.Selection1."):
        listed = self.output("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                             "org.freedesktop.DBus.ListNames", check=False)
        return [line.split('"')[1] for line in listed.split("\n") if f'"{prefix}' in line]

    def ask(self, name):
        """What a connector answers, as text."""
        return self.output("gdbus", "call", "--session", "--timeout", "5", "--dest", name, "--object-path",
                           "/org/sonarin/Selection1", "--method", "org.freedesktop.DBus.Properties.GetAll",
                           "org.sonarin.Selection1", check=False)

    # --- input and windows --------------------------------------------------------------------------------------------

    def xdotool(self, *words, check=True):
        return self.output("xdotool", *map(str, words), check=check)

    def windows(self, window_class):
        found = self.xdotool("search", "--onlyvisible", "--class", window_class, check=False).split()
        return [int(window) for window in found]

    def wait_for_window(self, window_class, seconds=30, known=()):
        def fresh():
            return [window for window in self.windows(window_class) if window not in known]
        found = wait_until(fresh, seconds, 0.1)
        assert found, f"no window of {window_class} appeared"
        return found[0]

    def activate(self, window):
        self.xdotool("windowactivate", "--sync", window)

    def keys(self, *names):
        self.xdotool("key", "--delay", "20", *names)

    def title(self, window):
        return self.xdotool("getwindowname", window, check=False).strip()

    def size(self, window):
        facts = self.xdotool("getwindowgeometry", "--shell", window)
        return tuple(int(line.split("=")[1]) for line in facts.split() if line.startswith(("WIDTH", "HEIGHT")))

    def click(self, window, x, y, button=1):
        self.xdotool("mousemove", "--window", window, x, y, "click", button)

    def click_empty_room(self, window):
        """Below the files of a window: that gives them the keyboard, and takes their selection away."""
        width, height = self.size(window)
        self.click(window, width - 80, height - 80)

    def click_track(self, window):
        """Some track near the top of a player's list, in the lower half of its window."""
        width, height = self.size(window)
        self.click(window, width // 2, height * 2 // 3)

    def put_on_clipboard(self, text):
        self.output("sh", "-c", 'printf %s "$0" | xclip -i -selection clipboard >/dev/null 2>&1', text)

    def copied(self):
        """The paths (bytes) of the files that the program with the keyboard copies: its own word for what is selected."""
        self.put_on_clipboard("")
        self.keys("ctrl+c")

        def uris():
            text = self.output("timeout", "2", "xclip", "-o", "-selection", "clipboard", "-t", "text/uri-list", check=False)
            return [line.strip() for line in text.split("\n") if line.strip()]
        return [urllib.parse.unquote_to_bytes(uri).removeprefix(b"file://") for uri in wait_until(uris, 0.3)]

    def screenshot(self, path):
        self.output("import", "-window", "root", path)

    # --- Sonarin ------------------------------------------------------------------------------------------------------

    def start_sonarin(self, *files, kind=5):
        """kind: 5 file manager selection, 6 player selection, 7 track playing."""
        config = self.home / ".config" / "sonarin"
        config.mkdir(parents=True, exist_ok=True)
        (config / "sonarin.conf").write_text(f"[General]\nsyncKindDefaultKey={kind}\n")
        self.sonarin = self.spawn(PREFIX / "bin" / "sonarin", *files)
        self.sonarin_window = self.wait_for_window("sonarin")
        self._titles = []  # (time, title), as the window changes
        spy = subprocess.Popen(["xprop", "-spy", "-id", str(self.sonarin_window), "8u", "=$0\\n", "_NET_WM_NAME"],
                               stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, env=self.environment)
        self.programs.append(spy)
        threading.Thread(target=self._watch, args=(spy.stdout,), daemon=True).start()
        assert wait_until(lambda: self._titles, 10), "the window has no title"
        return self.sonarin

    def _watch(self, lines):
        for line in lines:
            title = line.decode(errors="replace").split('="', 1)[-1].rstrip('"\n')
            self._titles.append((time.monotonic(), title))

    @property
    def shown(self):
        """The name of the file in Sonarin's window, "" before the first."""
        return self._titles[-1][1].partition(" - ")[2]

    def wait_until_shown(self, name, since=None, seconds=5):
        """Seconds from `since` (or from now) until the window showed the name; none when it did not."""
        since = since or time.monotonic()
        if not wait_until(lambda: self.shown == name, seconds, 0.005):
            return None
        return max(0.0, self._titles[-1][0] - since)


class DesktopTest(unittest.TestCase):
    """A test with a desktop of its own, skipped where one of the programs is missing."""

    needs = ("Xvfb", "openbox", "xdotool", "xclip", "xprop")

    def setUp(self):
        gone = missing(*self.needs)
        if gone:
            self.skipTest("NOT TESTED, missing: " + " ".join(gone))
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        self.music = self.desktop.home / "Music"


def song(path, title=None):
    """A small MPEG file."""
    tag = b""
    if title is not None:
        text = b"\x00" + title.encode("latin-1")
        frame = b"TIT2" + len(text).to_bytes(4, "big") + b"\0\0" + text
        tag = b"ID3\x03\0\0" + bytes([0, 0, len(frame) >> 7, len(frame) & 127]) + frame
    with open(path, "wb") as file:
        file.write(tag + FRAME * 12)
    return path
