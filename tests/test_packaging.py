# SPDX-License-Identifier: MIT
"""What is installed beside the programs, and the Debian package of it."""

import os
import pathlib
import pty
import re
import select
import shutil
import struct
import subprocess
import tempfile
import time
import unittest

from program import INFO, SAMPLES

SOURCE = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(INFO).parent
IDENTIFIER = "org.sonarin.Sonarin"
VERSION = re.search(r"^## (\S+)", (SOURCE / "CHANGELOG.md").read_text(), re.M)[1]


def said(*command, **options):
    """What a command that must succeed says, its complaints among it."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300, check=False, **options)
    assert done.returncode == 0, (command, done.stdout)
    return done.stdout


def typed(shell, words, keys, folder, environment):
    """The line that somebody sees who types these keys into an interactive shell."""
    child, terminal = pty.fork()
    if child == 0:
        os.chdir(folder)
        os.execvpe(shell[0], shell, {**os.environ, **environment, "TERM": "dumb", "LC_ALL": "C.UTF-8"})
    try:
        os.write(terminal, f"{words}; echo rea''dy\n".encode())
        seen = b""
        end = time.monotonic() + 20
        isTyped = False
        while time.monotonic() < end:
            if select.select([terminal], [], [], 1.5)[0]:
                seen += os.read(terminal, 4096)
            elif isTyped:
                break
            if not isTyped and b"ready" in seen:
                os.write(terminal, keys.encode())
                isTyped, seen = True, b""
        return seen.decode(errors="replace")
    finally:
        os.kill(child, 9)
        os.close(terminal)
        os.waitpid(child, 0)


class Installed(unittest.TestCase):
    """Installed under one prefix and then moved to another."""

    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.home = pathlib.Path(scratch.name)
        cls.first = cls.home / "first 'place' #$1"
        said("cmake", "--install", BUILD, "--prefix", cls.first)
        cls.share = cls.home / "moved/share"
        shutil.move(cls.first, cls.home / "moved")
        cls.environment = {"HOME": str(cls.home), "PATH": f"{cls.home}/moved/bin:/usr/bin:/bin"}
        music = cls.home / "Music"
        music.mkdir()
        for sample in SAMPLES.glob("sample.*"):
            shutil.copy(sample, music)
        shutil.copy(SAMPLES / "sample.mp3", cls.home / "song.mp3")
        for name in ("some.txt", "LOUD SONG.MP3"):
            (cls.home / name).touch()

    def test_finds_its_texts_and_says_its_version(self):
        for locale, size, genre in (("fr_FR.UTF-8", "27,6\u00a0Ko", "Classique"), ("de_DE.UTF-8", "27,6 KB", "Klassik"),
                                    ("ja_JP.UTF-8", "27.6 KB", "クラシック"), ("xx", "27.6 KB", "Classical")):
            text = said("sonarin-info", "song.mp3", cwd=self.home, env={**self.environment, "LC_ALL": locale})
            self.assertRegex(text, f"Size      {size}\n")
            self.assertRegex(text, f"Genre     {genre}\n")
        for program in ("sonarin", "sonarin-info", "sonarin-connect"):
            self.assertEqual(said(program, "--version", env=self.environment), f"{program} {VERSION}\n")

    def test_desktop_finds_what_it_looks_for(self):
        entry = self.share / f"applications/{IDENTIFIER}.desktop"
        self.assertEqual(said("desktop-file-validate", entry), "")
        metainfo = self.share / f"metainfo/{IDENTIFIER}.metainfo.xml"
        complaints = re.findall(r"^[EWIP]: [^:]*:[^:]*: (\S+)", said("appstreamcli", "validate", "--no-net", "--pedantic", metainfo), re.M)
        self.assertEqual(complaints, ["cid-contains-uppercase-letter"])  # as the name on the bus
        self.assertIn(f'<release version="{VERSION}"', metainfo.read_text())
        service = (self.share / f"dbus-1/services/{IDENTIFIER}.service").read_text()
        self.assertIn(f'\nExec="{self.first}/bin/sonarin"\n', service.replace("\\$", "$"))
        for size in (16, 22, 24, 32, 48, 64, 128, 256):
            picture = (self.share / f"icons/hicolor/{size}x{size}/apps/{IDENTIFIER}.png").read_bytes()
            self.assertEqual(struct.unpack(">II", picture[16:24]), (size, size))
        for name in ("scalable/apps/{}.svg", "symbolic/apps/{}-symbolic.svg"):
            self.assertTrue((self.share / "icons/hicolor" / name.format(IDENTIFIER)).exists())

    def test_opens_every_type_of_its_names(self):
        entry = (self.share / f"applications/{IDENTIFIER}.desktop").read_text()
        offered = re.search("^MimeType=(.*);$", entry, re.M)[1].split(";")
        known = [line.split(":") for line in pathlib.Path("/usr/share/mime/globs2").read_text().split("\n") if "audio/" in line]
        for name in ("mp3", "m4a", "aac", "m4b", "m4p", "m4r", "wav", "wave", "aif", "aiff"):
            types = {line[1] for line in known if line[2] == "*." + name}
            self.assertTrue(types <= set(offered), (name, types))
            self.assertTrue(types or name in ("m4p", "wave"), name)

    def page(self, name):
        """A manual page as people read it, without its lines being filled anew."""
        path = self.share / f"man/man1/{name}.1.gz"
        environment = {**os.environ, "MANWIDTH": "200", "LC_ALL": "C.UTF-8", "MAN_KEEP_FORMATTING": "", "GROFF_NO_SGR": "1"}
        self.assertNotIn("warning", said("man", "--warnings", "-l", path, env=environment))
        return said("sh", "-c", 'man -l "$0" | col -bx', path, env=environment)

    def test_manual_pages_name_every_option(self):
        for program in ("sonarin", "sonarin-info", "sonarin-connect"):
            page = self.page(program)
            self.assertIn(f"Sonarin {VERSION}", page)
            for option in self.options(program):
                self.assertIn(option, page)

    def options(self, program):
        return set(re.findall(r"--[a-z0-9-]+", said(program, "--help", env=self.environment)))

    def test_examples_of_the_manual_page(self):
        examples = self.page("sonarin-info").split("\nEXAMPLES\n")[1].split("\nSEE ALSO\n")[0]
        blocks = re.findall(r"^ +\$ (.*)\n((?: {10,}[^$ ].*\n)*)", examples, re.M)
        self.assertGreater(len(blocks), 5)
        for command, output in blocks:
            expected = [line.strip() for line in output.splitlines()]
            printed = said("bash", "-c", command, cwd=self.home, env={**self.environment, "LC_ALL": "C.UTF-8"}).splitlines()
            if expected[-1:] == ["..."]:
                del expected[-1], printed[len(expected):]
            self.assertEqual(printed, expected, command)
        self.assertTrue((self.home / "cover.png").read_bytes().startswith(b"\x89PNG"))

    def test_completions(self):
        bash = f". /usr/share/bash-completion/bash_completion; . {self.share}/bash-completion/completions/sonarin-info"
        zsh = f"fpath=({self.share}/zsh/site-functions $fpath); autoload -U compinit; compinit -u -D"
        for shell, words in ((["bash", "--norc", "-i"], bash), (["zsh", "-f", "-i"], zsh)):
            for start, whole in (("--rec", "--recursive"), ("--json so", "--json song.mp3"), ("Mus", "Music/"),
                                 ("-- LO", "-- LOUD\\ SONG.MP3")):
                seen = typed(shell, words, f"sonarin-info {start}\t", self.home, self.environment)
                self.assertIn(f"sonarin-info {whole}", seen.replace("\r", "").replace("\a", ""), shell)
            every = typed(shell, words, "sonarin-info --\t\t", self.home, self.environment)
            self.assertLessEqual(self.options("sonarin-info"), set(re.findall(r"--[a-z0-9-]+", every)), shell)
        fish = said("fish", "--no-config", "-c",
                    f"source {self.share}/fish/vendor_completions.d/sonarin-info.fish; complete -C 'sonarin-info --'",
                    env=self.environment)
        self.assertEqual(self.options("sonarin-info"), set(re.findall(r"^--[a-z0-9-]+", fish, re.M)))


class Package(unittest.TestCase):
    def test_is_what_debian_wants(self):
        with tempfile.TemporaryDirectory() as folder:
            package = pathlib.Path(said(SOURCE / "package", folder).strip())
            self.assertEqual(package.name, f"sonarin_{VERSION}_{said('dpkg', '--print-architecture').strip()}.deb")
            self.assertEqual(said("lintian", "--allow-root", "--fail-on", "error,warning", package), "")
            self.assertIn("libqt6widgets6", said("dpkg-deb", "-f", package, "Depends"))
            self.assertNotIn("qt5", said("dpkg-deb", "-f", package, "Depends"))
            # Whatever a connector lacks on somebody's machine, the package has suggested.
            suggested = said("dpkg-deb", "-f", package, "Suggests")
            requirements = re.findall(r'(?:\.so|typelib)", "([a-z0-9.-]+)"', (SOURCE / "platform/host/connectors.cpp").read_text())
            self.assertGreater(len(requirements), 5)
            for requirement in requirements:
                self.assertIn(requirement, suggested)


if __name__ == "__main__":
    unittest.main()
