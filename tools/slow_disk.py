#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""slow_disk.py FOLDER MOUNTPOINT: shows the folder as a disk whose files are slow by their names.

hang-CALL…      that call never answers, until a file "answer" is put into FOLDER;
                CALL is stat, open, read, codes (the extended attributes), access or rename
late-MS-…       every read takes that many milliseconds
broken-…        reads behind the first 8 KiB fail

It says "ready" when the disk is there.
"""
import errno
import os
import sys
import time

from fusepy import FUSE, FuseOSError, Operations


class SlowDisk(Operations):
    def init(self, path):
        print("ready", flush=True)

    def path(self, path, call=""):
        name = os.path.basename(path)
        while call and name.startswith("hang-" + call) and not os.path.exists(f"{sys.argv[1]}/answer"):
            time.sleep(0.01)
        return sys.argv[1] + path

    def getattr(self, path, fh=None):
        status = os.lstat(self.path(path, "stat"))
        return {key: getattr(status, key) for key in ("st_mode", "st_size", "st_nlink", "st_uid", "st_gid", "st_mtime")}

    def open(self, path, flags):
        return os.open(self.path(path, "open"), flags)

    def read(self, path, size, offset, fh):
        name = os.path.basename(self.path(path, "read"))
        if name.startswith("late-"):
            time.sleep(int(name.split("-")[1]) / 1000)
        if name.startswith("broken-") and offset >= 8192:
            raise FuseOSError(errno.EIO)
        return os.pread(fh, size, offset)

    def release(self, path, fh):
        os.close(fh)

    def readdir(self, path, fh):
        return [".", "..", *os.listdir(self.path(path))]

    def listxattr(self, path):
        self.path(path, "codes")
        return []

    def access(self, path, mode):
        self.path(path, "access")

    # Renaming without replacing goes through a second name here.
    def link(self, new, old):
        os.link(self.path(old, "rename"), self.path(new))

    def unlink(self, path):
        os.unlink(self.path(path))


FUSE(SlowDisk(), sys.argv[2], foreground=True, direct_io=True, attr_timeout=0, entry_timeout=0)
