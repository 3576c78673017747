# SPDX-License-Identifier: MIT
"""The installed tree is whole, and finds its resources wherever it is moved."""

import pathlib
import shutil
import struct
import subprocess
from xml.etree import ElementTree

from harness import DesktopTest, main
from harness.translations import chinese


class Installed(DesktopTest):
    def setUp(self):
        super().setUp()
        build = pathlib.Path(self.program).parents[1]
        first = self.home / "first place"
        subprocess.run(["cmake", "--install", build, "--prefix", first], check=True,
                       stdout=subprocess.DEVNULL)
        self.prefix = self.home / "another place"
        shutil.move(first, self.prefix)
        self.program = str(self.prefix / "bin/quillmark")

    def test_the_moved_tree_speaks_chinese(self):
        self.write_settings({"ui.language": "zh-Hans"})

        quillmark = self.start("--show-editor")

        quillmark.editor()
        quillmark.element(name=chinese("Save this thought"))

    def test_the_moved_command_line_speaks_chinese(self):
        program = self.prefix / "bin/quillmark-notes"
        environment = self.desktop.environment_for(self.home) | {"LC_ALL": "zh_CN.UTF-8",
                                                                 "LANGUAGE": "zh_CN"}

        done = subprocess.run([program, "add", " "], env=environment, stderr=subprocess.PIPE,
                              text=True, check=False)

        self.assertEqual((done.returncode, done.stderr),
                         (3, f"quillmark-notes: {chinese('There is no text to save.')}\n"))
        share = self.prefix / "share"
        for file in ("man/man1/quillmark-notes.1", "bash-completion/completions/quillmark-notes",
                     "zsh/site-functions/_quillmark-notes",
                     "fish/vendor_completions.d/quillmark-notes.fish"):
            self.assertTrue((share / file).exists(), file)

    def test_the_desktop_is_told_of_it(self):
        share = self.prefix / "share"
        entry = (share / "applications/org.quillmark.Quillmark.desktop").read_text()
        service = (share / "dbus-1/services/org.quillmark.Quillmark.service").read_text()

        self.assertIn("Name=Quillmark\n", entry)
        self.assertIn("DBusActivatable=true\n", entry)
        self.assertIn("Name=org.quillmark.Quillmark\n", service)

    def test_every_size_of_icon_has_a_drawing_of_its_own(self):
        icons = self.prefix / "share/icons/hicolor"
        for size in (16, 22, 24, 32, 48):
            with self.subTest(size=size):
                icon = icons / f"{size}x{size}/apps/org.quillmark.Quillmark.png"
                signature, width, height = struct.unpack(">16sII", icon.read_bytes()[:24])
                self.assertEqual(signature, b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR")
                self.assertEqual((width, height), (size, size))
        for drawing in ("scalable/apps/org.quillmark.Quillmark.svg",
                        "symbolic/apps/org.quillmark.Quillmark-symbolic.svg"):
            self.assertEqual(ElementTree.parse(icons / drawing).getroot().tag,
                             "{http://www.w3.org/2000/svg}svg")

    def test_shells_take_the_completions(self):
        completions = {"bash": "bash-completion/completions/quillmark",
                       "zsh": "zsh/site-functions/_quillmark",
                       "fish": "fish/vendor_completions.d/quillmark.fish"}
        for shell, place in completions.items():
            with self.subTest(shell=shell):
                file = self.prefix / "share" / place
                self.assertTrue(file.exists())
                if shutil.which(shell):
                    subprocess.run([shell, "-n", file], check=True)


if __name__ == "__main__":
    main()
