# SPDX-License-Identifier: MIT
"""What is installed beside the programs, and the Debian package of it."""

import os
import pathlib
import re
import shutil
import struct
import subprocess

from program import INFO, SAMPLE, SAMPLES, Folder

SOURCE = pathlib.Path(__file__).resolve().parent.parent
IDENTIFIER = "org.sonarin.Sonarin"
VERSION = re.search(r"^## (\S+)", (SOURCE / "CHANGELOG.md").read_text(), re.M)[1]


def said(*command, **options):
    """What a command that must succeed says, its complaints among it."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=300, **options)
    assert done.returncode == 0, (command, done.stdout)
    return done.stdout


def options(text):
    return set(re.findall(r"--[a-z0-9-]+", text))


class Installed(Folder):
    """Installed under one prefix and then moved to another."""

    def setUp(self):
        super().setUp()
        self.first = self.folder / "first 'place' #$1"
        said("cmake", "--install", pathlib.Path(INFO).parent, "--prefix", self.first)
        self.share = self.first.rename(self.folder / "moved") / "share"
        self.environment = {"HOME": str(self.folder), "PATH": f"{self.folder}/moved/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8"}
        shutil.copytree(SAMPLES, self.folder / "Music", copy_function=shutil.copy)
        for name, content in (("song.mp3", SAMPLE.read_bytes()), ("some.txt", b""), ("LOUD SONG.MP3", b"")):
            self.write(name, content)

    def said(self, *command, **environment):
        """By somebody who has it installed, and nothing else of this environment."""
        return said(*command, cwd=self.folder, env={**self.environment, **environment})

    def test_finds_its_texts(self):
        for locale, size, genre in (("fr_FR.UTF-8", "27,6\u00a0Ko", "Classique"), ("de_DE.UTF-8", "27,6 KB", "Klassik"),
                                    ("ja_JP.UTF-8", "27.6 KB", "クラシック"), ("xx", "27.6 KB", "Classical")):
            text = self.said("sonarin-info", "song.mp3", LC_ALL=locale)
            self.assertEqual(re.findall("(?:Size|Genre) +(.*)", text), [size, genre])

    def test_desktop_finds_what_it_looks_for(self):
        self.assertEqual(said("desktop-file-validate", self.share / f"applications/{IDENTIFIER}.desktop"), "")
        metainfo = self.share / f"metainfo/{IDENTIFIER}.metainfo.xml"
        complaints = said("appstreamcli", "validate", "--no-net", "--pedantic", metainfo)
        self.assertEqual(re.findall(r"^[EWIP]: [^:]*:[^:]*: (\S+)", complaints, re.M),
                         ["cid-contains-uppercase-letter"])  # as the name on the bus
        self.assertIn(f'<release version="{VERSION}"', metainfo.read_text())
        service = (self.share / f"dbus-1/services/{IDENTIFIER}.service").read_text()
        self.assertIn(f'\nExec="{self.first}/bin/sonarin"\n', service.replace("\\$", "$"))
        icons = self.share / "icons/hicolor"
        sizes = {path.parts[-3]: path.read_bytes()[16:24] for path in icons.glob(f"*/apps/{IDENTIFIER}.png")}
        self.assertEqual(sizes, {f"{size}x{size}": struct.pack(">II", size, size) for size in (16, 22, 24, 32, 48, 64, 128, 256)})
        for name in (f"scalable/apps/{IDENTIFIER}.svg", f"symbolic/apps/{IDENTIFIER}-symbolic.svg"):
            self.assertTrue((icons / name).exists())

    def test_opens_every_type_of_its_names(self):
        entry = (self.share / f"applications/{IDENTIFIER}.desktop").read_text()
        offered = re.search("^MimeType=(.*);$", entry, re.M)[1].split(";")
        known = pathlib.Path("/usr/share/mime/globs2").read_text()
        for name in ("mp3", "m4a", "aac", "m4b", "m4p", "m4r", "wav", "wave", "aif", "aiff"):
            types = set(re.findall(rf"^\d+:(.*audio/.*):\*\.{name}(?::|$)", known, re.M))
            self.assertTrue(types <= set(offered) and (types or name in ("m4p", "wave")), (name, types))

    def page(self, name):
        """A manual page as people read it, without its lines being filled anew."""
        page = self.said("man", "--warnings", "-l", self.share / f"man/man1/{name}.1.gz",
                         MANWIDTH="200", MAN_KEEP_FORMATTING="", GROFF_NO_SGR="1")
        self.assertNotIn("warning", page)
        return re.sub(".\b", "", page)  # by which it is bold or underlined

    def test_every_program_has_its_version_and_a_manual_page_with_its_options(self):
        for program in ("sonarin", "sonarin-info", "sonarin-connect"):
            self.assertEqual(self.said(program, "--version"), f"{program} {VERSION}\n")
            page = self.page(program)
            self.assertIn(f"Sonarin {VERSION}", page)
            self.assertLessEqual(options(self.said(program, "--help")), options(page))

    def test_examples_of_the_manual_page(self):
        examples = self.page("sonarin-info").split("\nEXAMPLES\n")[1].split("\nSEE ALSO\n")[0]
        blocks = re.findall(r"^ +\$ (.*)\n((?: {10,}[^$ ].*\n)*)", examples, re.M)
        self.assertGreater(len(blocks), 5)
        for command, output in blocks:
            expected, is_cut, _ = re.sub("^ +", "", output, flags=re.M).partition("...\n")
            printed = self.said("bash", "-c", command)
            self.assertEqual(printed[:len(expected)] if is_cut else printed, expected, command)
        self.assertTrue((self.folder / "cover.png").read_bytes().startswith(b"\x89PNG"))

    def test_completions(self):
        every = options(self.said("sonarin-info", "--help"))
        for shell, words in (
                ("bash --norc -i", ". /usr/share/bash-completion/bash_completion; "
                                   f". {self.share}/bash-completion/completions/sonarin-info"),
                ("zsh -f -i", f"fpath=({self.share}/zsh/site-functions $fpath); autoload -U compinit; compinit -u -D")):
            terminal, type_keys = self.terminal()
            process = self.enterContext(subprocess.Popen(
                shell.split(), cwd=self.folder, env={**os.environ, **self.environment, "TERM": "dumb"},
                stdin=terminal, stdout=terminal, stderr=terminal, start_new_session=True))
            self.addCleanup(process.kill)
            type_keys(f"{words}; echo rea''dy\n", "ready")
            for start, whole in (("--rec", "--recursive"), ("--json so", "--json song.mp3"), ("Mus", "Music/"),
                                 ("-- LO", "-- LOUD\\ SONG.MP3")):
                seen = type_keys(f"\x15sonarin-info {start}\t", whole[-4:])
                self.assertIn(f"sonarin-info {whole}", re.sub("[\r\a]", "", seen), shell)
            self.assertLessEqual(every, options(type_keys("\x15sonarin-info --\t\t", "--version")), shell)
        fish = f"source {self.share}/fish/vendor_completions.d/sonarin-info.fish; complete -C 'sonarin-info --'"
        self.assertEqual(set(re.findall(r"^--[a-z0-9-]+", self.said("fish", "--no-config", "-c", fish), re.M)), every)


class Package(Folder):
    def test_is_what_debian_wants(self):
        package = pathlib.Path(said(SOURCE / "package", self.folder).strip())
        self.assertEqual(package.name, f"sonarin_{VERSION}_{said('dpkg', '--print-architecture').strip()}.deb")
        self.assertEqual(said("lintian", "--allow-root", "--fail-on", "error,warning", package), "")
        depends, suggests = (said("dpkg-deb", "-f", package, field) for field in ("Depends", "Suggests"))
        self.assertIn("libqt6widgets6", depends)
        self.assertNotIn("qt5", depends)
        # Whatever a connector lacks on somebody's machine, the package has suggested.
        requirements = re.findall(r'(?:\.so|typelib)", "([a-z0-9.-]+)"', (SOURCE / "platform/host/connectors.cpp").read_text())
        self.assertGreater(len(requirements), 5)
        self.assertEqual([requirement for requirement in requirements if requirement not in suggests], [])
