# SPDX-License-Identifier: MIT
"""tests/desktop/run-tests BUILD hanging_disk.py [SECONDS]: while Sonarin is handed one file after the other of a disk that
hangs (tools/slow_disk.py), how long an assistive program waits for an answer of its window, and how long until a
quick file in between is shown. Needs what ./test desktop installs."""

import os
import pathlib
import shutil
import subprocess
import sys
import threading
import time

import desktop

SECONDS = float(sys.argv[1]) if len(sys.argv) > 1 else 30


# A process of its own, since the binding knows the bus of its process only: prints "found", then the seconds of each answer.
ASKER = """
import time, gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi

def find():
    root = Atspi.get_desktop(0)
    programs = [root.get_child_at_index(i) for i in range(root.get_child_count())]
    return [program.get_child_at_index(0) for program in programs if program.get_name() == "sonarin"]

while not find():
    time.sleep(0.2)
window = find()[0]
print("found", flush=True)
while True:
    asked = time.monotonic()
    window.get_extents(Atspi.CoordType.SCREEN)
    print(time.monotonic() - asked, flush=True)
    time.sleep(0.005)
"""


def main():
    place = desktop.Desktop()
    folder = place.scratch / "files"
    mounted = place.scratch / "mounted"
    for path in (folder, mounted):
        path.mkdir()
    sample = pathlib.Path(os.environ["SAMPLES"]) / "sample.mp3"
    disk = place.spawn("/usr/bin/python3", pathlib.Path(__file__).with_name("slow_disk.py"), folder, mounted)
    assert desktop.wait_until(lambda: os.path.ismount(mounted) or disk.poll() is not None, 10) and disk.poll() is None, \
        "FUSE does not work here"
    place.environment.update(QT_ACCESSIBILITY="1", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    place.spawn("sonarin")
    assert desktop.wait_until(lambda: place.names("org.sonarin.Sonarin"), 20, 0.1)

    asker = subprocess.Popen(["/usr/bin/python3", "-c", ASKER], env=place.environment, stdout=subprocess.PIPE, text=True)
    assert asker.stdout.readline() == "found\n"
    answers = []
    threading.Thread(target=lambda: answers.extend(map(float, asker.stdout)), daemon=True).start()

    def hand_over(path):
        place.output("gdbus", "call", "--session", "--dest", "org.sonarin.Sonarin", "--object-path", "/org/sonarin/Sonarin",
                     "--method", "org.freedesktop.Application.Open", f"['file://{path}']", "{}")

    shown = []
    end = time.monotonic() + SECONDS
    number = 0
    while time.monotonic() < end:
        number += 1
        hanging = f"hang-{('stat', 'open', 'read')[number % 3]}-{number}.mp3"
        shutil.copy(sample, folder / hanging)
        hand_over(mounted / hanging)
        time.sleep(0.3)
        quick = place.scratch / f"quick-{number}.mp3"
        shutil.copy(sample, quick)
        start = time.monotonic()
        hand_over(quick)
        assert desktop.wait_until(lambda: quick.name in place.output("xdotool", "search", "--name", "Sonarin -",
                                                                     "getwindowname", check=False), 10, 0.001)
        shown.append(time.monotonic() - start)
        time.sleep(0.3)
    asker.kill()
    (folder / "answer").touch()
    place.close()
    answers.sort()
    shown.sort()
    print(f"{number} hanging files: {len(answers)} answers to an assistive program, median {answers[len(answers) // 2] * 1e3:.1f} ms, "
          f"longest {answers[-1] * 1e3:.0f} ms; a quick file, from calling gdbus to the window's title: "
          f"median {shown[len(shown) // 2] * 1e3:.0f} ms, longest {shown[-1] * 1e3:.0f} ms")


main()
