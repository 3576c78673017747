# SPDX-License-Identifier: MIT
"""How the program starts, with which arguments, and how it ends."""

import os
import stat
import subprocess

from harness import DesktopTest, main, processes, until
from harness.activation import (GLib, choose_action, choose_entry, open_addresses, owner,
                                ping)
from harness.translations import chinese
from harness.waiting import holds_for, until_it_stays


class Starting(DesktopTest):
    def quit_from_menu(self, quillmark):
        x, y, width, height = self.open_menu(quillmark).rectangle()
        self.mouse.click((x + width // 2, y + height * 3 // 4))

    def brightness(self, window):
        x, y, width, height = window.rectangle()
        picture = self.desktop.picture(x, y, width, height)
        points = [picture.colour(column, row) for row in range(40, height - 40, 20)
                  for column in range(20, width - 20, 20)]
        return sum(sum(point) for point in points) / (3 * len(points))

    def test_no_note_is_written_before_there_is_something_to_write(self):
        before = os.umask(0)
        self.addCleanup(os.umask, before)
        quillmark = self.start(XDG_STATE_HOME=str(self.home / "state"))

        quillmark.launcher()

        self.assertEqual(os.listdir(self.data.path), [])
        for folder in (self.data.path, self.settings_file.parent, self.home / "state/Penwick",
                       self.home / ".cache/Penwick"):
            self.assertEqual(stat.S_IMODE(folder.stat().st_mode), 0o700, folder)

    def test_show_editor_opens_the_editor_at_once(self):
        quillmark = self.start("--show-editor")

        quillmark.editor()

        self.keyboard.type("at once")
        until(lambda: self.data.draft() == "at once", "it gets the keys")

    def test_interface_tests_see_and_leave_nothing(self):
        self.data.create()
        self.data.add_note("a real note")
        self.write_settings({"ui.language": "zh-Hans", "ui.appearance": "dark",
                             "launcher.x": 100, "launcher.y": 100})
        before = self.data.state(), self.settings_file.read_bytes()

        quillmark = self.start("--ui-testing")

        self.assertEqual(quillmark.launcher().rectangle(), (1352, 44, 64, 64))
        editor = quillmark.open_editor()
        quillmark.element(name="0 notes")
        self.assertGreater(self.brightness(editor), 128)
        self.keyboard.type("only in memory")
        self.keyboard.press("ctrl+Return")
        quillmark.open_editor()
        quillmark.element(name="1 note")
        self.keyboard.press("Escape")
        self.mouse.drag(quillmark.launcher().centre(), (500, 500))
        until_it_stays(0.1, lambda: quillmark.launcher().rectangle() == (468, 468, 64, 64),
                       "it was dragged")
        self.quit_from_menu(quillmark)
        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual((self.data.state(), self.settings_file.read_bytes()), before)

    def test_interface_tests_choose_language_and_appearance(self):
        quillmark = self.start("--ui-testing", "--language=zh-Hans", "--appearance=dark",
                               "--show-editor")

        editor = quillmark.editor()

        quillmark.element(name=chinese("Save this thought"))
        until(lambda: self.brightness(editor) < 100, "the editor is dark")

    def test_language_and_appearance_are_not_chosen_otherwise(self):
        quillmark = self.start("--language=zh-Hans", "--appearance=dark", "--show-editor")

        editor = quillmark.editor()

        quillmark.element(name="Save this thought")
        self.assertGreater(self.brightness(editor), 128)

    def test_stored_language_and_appearance_are_used(self):
        self.write_settings({"ui.language": "zh-Hans", "ui.appearance": "dark"})

        quillmark = self.start("--show-editor")

        editor = quillmark.editor()
        quillmark.element(name=chinese("Save this thought"))
        until(lambda: self.brightness(editor) < 100, "the editor is dark")

    def test_an_unknown_stored_language_follows_the_system(self):
        self.write_settings({"ui.language": "fr"})

        quillmark = self.start("--show-editor", LANGUAGE="zh_TW", LANG="zh_TW.UTF-8")

        quillmark.editor()
        quillmark.element(name=chinese("Save this thought"))

    def test_the_host_of_previews_shows_and_writes_nothing(self):
        quillmark = self.start("--show-editor", XCODE_RUNNING_FOR_PREVIEWS="1")
        reference = self.start("--ui-testing", XCODE_RUNNING_FOR_PREVIEWS="0")

        reference.launcher()

        holds_for(0.5, lambda: not any(window.is_viewable() for window in quillmark.windows()),
                  "it shows no window")
        self.assertFalse(self.data.path.exists())
        self.assertFalse(self.settings_file.exists())
        quillmark.stop()
        self.assertEqual(quillmark.wait_until_ended(), 0)

    def test_a_second_start_opens_the_editor_of_the_first(self):
        first = self.start()
        first.launcher()

        second = self.start()

        self.assertEqual(second.wait_until_ended(), 0)
        first.editor()
        self.keyboard.type("one program")
        until(lambda: self.data.draft() == "one program", "the editor gets the keys")
        third = self.start()
        self.assertEqual(third.wait_until_ended(), 0)
        self.assertEqual(first.element("text", "Note text").text(), "one program")

    def start_by_bus(self, send):
        """Has the bus start the program for what is sent to it."""
        environment = self.desktop.environment_for(self.home)
        service = self.desktop.folder / "services/org.quillmark.Quillmark.service"
        variables = " ".join(f"{key}={value}" for key, value in environment.items()
                             if " " not in value)
        service.write_text("[D-BUS Service]\nName=org.quillmark.Quillmark\n"
                           f"Exec=/usr/bin/env {variables} {self.program} --started-by-bus\n",
                           encoding="utf-8")
        self.addCleanup(service.unlink)
        send(self.desktop)
        return self.adopt(until(lambda: owner(self.desktop), "the bus has started it"))

    def test_the_bus_starts_it_with_the_bubble(self):
        quillmark = self.start_by_bus(choose_entry)

        quillmark.launcher()

        holds_for(0.5, quillmark.shows_launcher, "the bubble stays")
        choose_entry(self.desktop)
        quillmark.editor()

    def test_the_first_start_after_another_message_opens_the_editor(self):
        quillmark = self.start_by_bus(ping)
        quillmark.launcher()

        choose_entry(self.desktop)

        quillmark.editor()

    def test_the_bus_starts_it_with_the_editor_for_a_new_note(self):
        quillmark = self.start_by_bus(lambda desktop: choose_action(desktop, "new-note"))

        quillmark.editor()

        self.keyboard.type("from the menu")
        until(lambda: self.data.draft() == "from the menu", "it gets the keys")

    def test_the_bus_starts_it_with_the_list_of_notes(self):
        quillmark = self.start_by_bus(lambda desktop: choose_action(desktop, "show-notes"))

        quillmark.editor()
        quillmark.element(name="Find a thought…")

    def test_a_second_start_shows_the_list_of_notes(self):
        first = self.start()
        first.launcher()

        second = self.start("--show-notes")

        self.assertEqual(second.wait_until_ended(), 0)
        first.editor()
        first.element(name="Find a thought…")

    def test_it_starts_with_the_list_of_notes(self):
        quillmark = self.start("--show-notes")

        quillmark.editor()
        quillmark.element(name="Find a thought…")

    def test_the_bus_starts_it_with_what_is_opened(self):
        quillmark = self.start_by_bus(
            lambda desktop: open_addresses(desktop, ["https://example.org", "file:///tmp/a"]))

        quillmark.launcher()

        until(lambda: [note.body for note in self.data.read_notes()]
              == ["https://example.org\nfile:///tmp/a"], "they are a note")

    def test_an_unknown_action_is_refused(self):
        quillmark = self.start()
        quillmark.launcher()

        with self.assertRaises(GLib.Error):
            choose_action(self.desktop, "dance")

        holds_for(0.5, quillmark.shows_launcher, "the bubble stays")

    def test_a_restored_session_opens_nothing(self):
        first = self.start()
        first.launcher()

        second = self.start("-session", "10_1_1")

        self.assertEqual(second.wait_until_ended(), 0)
        holds_for(0.5, first.shows_launcher, "the bubble stays")

    def test_a_start_with_the_session_opens_nothing(self):
        first = self.start("-session", "10_1_1")
        first.launcher()

        second = self.start("--autostart")

        self.assertEqual(second.wait_until_ended(), 0)
        holds_for(0.5, first.shows_launcher, "the bubble stays")

    def test_a_start_on_another_display_says_so(self):
        first = self.start()
        first.launcher()
        environment = self.desktop.environment_for(self.home)
        environment["DISPLAY"] = self.desktop.start_display()

        ended = subprocess.run([self.program], env=environment, text=True, timeout=20,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        self.assertEqual(ended.returncode, 1)
        self.assertEqual(ended.stderr, "Quillmark is running on another display already. "
                                       "Go on there, or quit it first.\n")
        holds_for(0.5, first.shows_launcher, "the bubble stays")

    def test_an_unknown_argument_is_told_and_changes_nothing(self):
        quillmark = self.start("--dance", "-style", "fusion", "--show-editor")

        quillmark.editor()

        self.assertEqual(quillmark.output(), "quillmark: unknown: --dance (see quillmark --help)\n")

    def test_the_short_options_answer(self):
        for short, long in (("-h", "--help"), ("-v", "--version")):
            answers = [subprocess.run([self.program, option], text=True, timeout=20, check=True,
                                      stdout=subprocess.PIPE).stdout for option in (short, long)]
            self.assertEqual(*answers)

    def test_a_failed_write_at_the_end_asks_first(self):
        quillmark = self.start("--show-editor")
        quillmark.editor()
        self.keyboard.type("first")
        until(lambda: self.data.draft() == "first", "the draft is on the disk")
        self.data.add_note("by another program")
        before = self.data.state()
        self.keyboard.type("!")

        self.keyboard.press("ctrl+q")
        quillmark.element(name="Some changes could not be saved")
        quillmark.element(name="Return to notes").press()
        until(lambda: not quillmark.has_element(name="Return to notes"), "the question is gone")
        self.assertTrue(quillmark.is_running())
        quillmark.editor()
        self.keyboard.press("ctrl+q")
        quillmark.element(name="Quit anyway").press()

        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual(self.data.state(), before)

    def test_without_a_display_it_says_so_and_ends(self):
        for display in (None, ":4711"):
            with self.subTest(display=display):
                environment = self.desktop.environment_for(self.home)
                environment.pop("DISPLAY")
                if display:
                    environment["DISPLAY"] = display

                ended = subprocess.run([self.program], env=environment, text=True, timeout=20,
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)

                self.assertEqual(ended.returncode, 1)
                self.assertEqual(ended.stdout, "")
                self.assertIn("display", ended.stderr)
                self.assertEqual(len(ended.stderr.strip().splitlines()), 1, ended.stderr)
                self.assertEqual(os.listdir(self.data.path), [])

    def test_it_runs_without_a_session_bus(self):
        quillmark = self.start(DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")

        quillmark.open_editor()
        self.keyboard.type("alone")
        self.keyboard.press("ctrl+Return")

        quillmark.launcher()
        self.assertEqual([note.body for note in self.data.read_notes()], ["alone"])

    def test_beside_another_one_on_the_same_notes_it_says_so_and_ends(self):
        self.data.create()
        first = self.start(DBUS_SESSION_BUS_ADDRESS="disabled:")
        first.launcher()
        before = self.data.state()
        environment = self.desktop.environment_for(self.home)
        environment["DBUS_SESSION_BUS_ADDRESS"] = "disabled:"

        ended = subprocess.run([self.program], env=environment, text=True, timeout=20,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        self.assertEqual(ended.returncode, 1)
        self.assertEqual(ended.stderr, f"“{self.data.path}” is in use by another Quillmark: "
                                       "go on there, or quit that one first.\n")
        self.assertEqual(self.data.state(), before)
        self.assertTrue(first.is_running())

    def test_beside_another_one_without_a_terminal_it_says_so_in_an_alert(self):
        self.data.create()
        first = self.start(DBUS_SESSION_BUS_ADDRESS="disabled:")
        first.launcher()

        # On the desktop's own bus: the first one is on none.
        second = self.start()

        until(second.popup, "the alert is on screen")
        self.assertEqual(second.wait_until_ended(), 1)

    def test_interface_tests_run_beside_another_one(self):
        self.data.create()
        first = self.start(DBUS_SESSION_BUS_ADDRESS="disabled:")
        first.launcher()

        second = self.start("--ui-testing")

        second.launcher()

    def test_the_notes_are_free_again_after_a_kill(self):
        self.data.create()
        first = self.start()
        first.launcher()
        first.kill()

        second = self.start()

        second.launcher()


    def test_nobody_needs_to_read_what_it_prints(self):
        read, write = os.pipe()
        # Prints something for every event from the X server.
        quillmark = self.start("-c", f'exec "$0" 2>/proc/{os.getpid()}/fd/{write}', self.program,
                               program="sh", QT_LOGGING_RULES="qt.qpa.*=true")
        quillmark.launcher()
        self.assertTrue(os.read(read, 1), "it prints")
        os.close(write)
        os.close(read)

        quillmark.open_editor()
        self.keyboard.type("unheard")

        until(lambda: self.data.draft() == "unheard", "the text is kept")

    def test_no_file_takes_the_place_of_a_closed_output(self):
        for closed in (0, 1, 2):
            with self.subTest(closed=closed):
                quillmark = self.start("-c", f'exec "$0" {closed}>&-', self.program, program="sh")

                quillmark.launcher()

                self.assertEqual(os.readlink(f"/proc/{quillmark.process}/fd/{closed}"), "/dev/null")
                quillmark.kill()

    def test_it_starts_no_session_bus_of_its_own(self):
        before = processes.children()
        quillmark = self.start(DBUS_SESSION_BUS_ADDRESS=None, XDG_RUNTIME_DIR=None,
                               QT_LINUX_ACCESSIBILITY_ALWAYS_ON=None)
        quillmark.open_editor()
        self.keyboard.press("Escape")
        quillmark.launcher()

        # A daemon that it had started would have been left to this process.
        self.assertEqual(set(processes.children()) - set(before), {quillmark.process})


if __name__ == "__main__":
    main()
