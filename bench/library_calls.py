#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""library_calls.py SONARIN-INFO: what whole libraries cost in one call. Prints ratios of runs taken in turns, and the most
memory that the program itself took."""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

INFO = sys.argv[1]
FRAME = b"\xff\xfb\x90\0" + bytes(413)
TURNS = 9


def song(cover):
    frames = b""
    for name, data in ((b"TIT2", b"\0The Title of a Song"), (b"TPE1", b"\0The Artist Who Plays It"), (b"TALB", b"\0The Album"),
                       (b"TRCK", b"\0003/12"), (b"APIC", b"\0image/jpeg\0\3\0\xff\xd8\xff\xe0" + b"j" * cover)):
        frames += name + len(data).to_bytes(4, "big") + b"\0\0" + data
    size = bytes(len(frames) >> shift & 127 for shift in (21, 14, 7, 0))
    return b"ID3\3\0\0" + size + frames + FRAME * 500


def taken(*command, prepare=lambda: None):
    """Seconds and KiB of memory."""
    prepare()
    # Through the shell: what this Python took of memory would count as the program's until it is started.
    script = f'exec /usr/bin/env time -f %M -o "$0" -- {" ".join(command)} > /dev/null'
    with tempfile.NamedTemporaryFile("r") as said:
        start = time.perf_counter()
        subprocess.run(["sh", "-c", script, said.name], check=True)
        return time.perf_counter() - start, int(said.read())


def in_turns(one, other, prepare=lambda: None):
    runs = [(taken(*one, prepare=prepare)[0], taken(*other, prepare=prepare)[0]) for _ in range(TURNS)]
    return [statistics.median(times) for times in zip(*runs)]


def forget(paths):
    """Lets the system's cache go of the files, as far as it does."""
    os.sync()
    for path in paths:
        file = os.open(path, os.O_RDONLY)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(file)


def main():
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        paths = [folder / f"{number:04}.mp3" for number in range(2000)]
        for number, path in enumerate(paths):
            path.write_bytes(song((0, 57000, 0, 322000)[number % 4]))
        lists = {}
        for count in (1000, 50000, 1000000):
            lists[count] = folder / f"names-{count}"
            lists[count].write_bytes(b"".join(os.fsencode(paths[number % 2000]) + b"\0" for number in range(count)))
        call = (INFO, "--json", "--files0-from")

        alone, both = in_turns((*call, str(lists[50000]), "--jobs", "1"), (*call, str(lists[50000]), "--jobs", "2"))
        print(f"two jobs: {alone / both:.2f} times the files a second of one ({50000 / both:.0f})")

        small, _ = taken(*call, str(lists[1000]))
        large, memory = taken(*call, str(lists[1000000]))
        print(f"a file of a million costs {large / 1000 / small:.2f} of what one of a thousand does; "
              f"{large:.1f} s, {memory / 1024:.1f} MB")

        cold = folder / "cold"
        cold.write_bytes(b"".join(os.fsencode(path) + b"\0" for path in paths))
        xargs = ("xargs", "-0", "-a", str(cold), "-P", "2", "-n", "250", INFO, "--json", "--jobs", "1")
        ours, theirs = in_turns((*call, str(cold), "--jobs", "2"), xargs, prepare=lambda: forget(paths))
        print(f"cold (POSIX_FADV_DONTNEED): {theirs / ours:.2f} times as fast as xargs -P 2 ({ours * 1e6 / 2000:.0f} us a file)")
        few = folder / "few"
        few.write_bytes(b"".join(os.fsencode(path) + b"\0" for path in paths[:64]))
        plain, xargs = in_turns((*call, str(few)), ("xargs", "-0", "-a", str(few), "-n", "1", INFO, "--json"))
        print(f"64 files: {xargs / plain:.0f} times as fast as one call a file")


main()
