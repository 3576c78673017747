# SPDX-License-Identifier: MIT
"""The installed tree is whole, and finds its resources wherever it is moved."""

import pathlib
import shutil
import subprocess

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

    def test_the_desktop_is_told_of_it(self):
        share = self.prefix / "share"
        entry = (share / "applications/org.quillmark.Quillmark.desktop").read_text()
        service = (share / "dbus-1/services/org.quillmark.Quillmark.service").read_text()
        icons = list((share / "icons/hicolor").rglob("org.quillmark.Quillmark.*"))

        self.assertIn("Name=Quillmark\n", entry)
        self.assertIn("DBusActivatable=true\n", entry)
        self.assertIn("Name=org.quillmark.Quillmark\n", service)
        self.assertTrue(icons)


if __name__ == "__main__":
    main()
