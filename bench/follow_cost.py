# SPDX-License-Identifier: MIT
"""What following costs: the processor time of Sonarin and of the program that it follows, and how much that program's memory
grows. Each program has a desktop and a Sonarin of its own; one file stays selected.

    tests/desktop/run-tests BUILD follow_cost.py [SECONDS [PROGRAM...]]"""

import os
import shutil
import sys
import time

from desktop import Desktop, song, wait_until

FILE_MANAGERS = {
    "nautilus": ("nautilus", "-w"),
    "caja": ("caja", "--no-desktop"),
    "nemo": ("nemo",),
    "thunar": ("thunar",),
    "dolphin": ("dolphin",),
}
PLAYERS = {
    "quodlibet": ("quodlibet",),
    "rhythmbox": ("rhythmbox",),
}
TICK = os.sysconf("SC_CLK_TCK")


def seconds_used(process):
    """Of user and system time (proc(5), fields 14 and 15 of stat)."""
    with open(f"/proc/{process.pid}/stat", encoding="ascii", errors="replace") as stat:
        fields = stat.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / TICK


def kilobytes(process):
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS"))


class Following:
    def __init__(self, program):
        self.program = program
        self.desktop = Desktop()
        music = self.desktop.home / "Music"
        music.mkdir()
        song(music / "song.mp3", title="a")
        if program in PLAYERS:
            song(music / "other.mp3", title="z")
        settings = self.desktop.home / ".config/quodlibet"
        settings.mkdir(parents=True)
        (settings / "config").write_text(f"[settings]\nscan = {music}\n")
        self.desktop.connect(program)
        self.desktop.start_sonarin(kind=6 if program in PLAYERS else 5)
        command = PLAYERS[program] if program in PLAYERS else (*FILE_MANAGERS[program], music)
        self.host = self.desktop.spawn(*command)
        window = self.desktop.wait_for_window(program)
        time.sleep(6)
        self.desktop.activate(window)
        if program in PLAYERS:
            self.desktop.click_track(window)
            self.desktop.keys("End", "Home")
        else:
            self.desktop.click_empty_room(window)
            self.desktop.keys("ctrl+a")
        assert wait_until(lambda: self.desktop.shown, 5), (program, self.desktop.names())

    def sample(self):
        return time.monotonic(), seconds_used(self.desktop.sonarin), seconds_used(self.host), kilobytes(self.host)


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 60
    wanted = sys.argv[2:] or [program for program in (*FILE_MANAGERS, *PLAYERS) if shutil.which(program)]
    running = [Following(program) for program in wanted]
    time.sleep(20)  # what programs do at their start is not meant
    before = [each.sample() for each in running]
    time.sleep(seconds)
    print(f"{'':12}{'Sonarin':>10}{'program':>10}{'together':>10}{'growth':>12}   of one core, over {seconds:.0f} s")
    for each, old in zip(running, before):
        new = each.sample()
        time_passed = new[0] - old[0]
        sonarin, host = [100 * (new[i] - old[i]) / time_passed for i in (1, 2)]
        print(f"{each.program:12}{sonarin:9.2f}%{host:9.2f}%{sonarin + host:9.2f}%{new[3] - old[3]:+9} KB")
    for each in running:
        each.desktop.close()


if __name__ == "__main__":
    main()
