# SPDX-License-Identifier: MIT
"""Other programs that do not answer hold nothing up."""

import os
import signal
import subprocess

from harness import DesktopTest, main, until
from harness.buses import NameOwner, SilentBus
from harness.dead_mount import DeadMount
from harness.translations import chinese

APPLICATION = "org.quillmark.Quillmark"
PORTAL = "org.freedesktop.portal.Desktop"


class SilentOthers(DesktopTest):
    def expect_a_working_bubble(self, quillmark):
        quillmark.open_editor()
        self.keyboard.type("not held up")
        until(lambda: self.data.draft() == "not held up", "the text is kept")

    def own_name(self, name):
        owner = NameOwner(self.desktop, name)
        self.addCleanup(owner.close)
        return owner

    def test_a_session_bus_that_is_stopped(self):
        address, process = self.desktop.start_bus(self.home)
        os.kill(process.pid, signal.SIGSTOP)

        self.expect_a_working_bubble(self.start(DBUS_SESSION_BUS_ADDRESS=address))

    def test_a_session_bus_that_falls_silent(self):
        for silent in ("listening", "accepting", "authenticating", "greeting"):
            with self.subTest(silent=silent):
                bus = SilentBus(self.home, silent)
                self.addCleanup(bus.close)
                quillmark = self.start(DBUS_SESSION_BUS_ADDRESS=bus.address)
                try:
                    quillmark.launcher()
                finally:
                    quillmark.kill()

    def test_a_bus_with_two_addresses_of_which_one_is_silent(self):
        bus = SilentBus(self.home, "listening")
        self.addCleanup(bus.close)
        own = self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"]
        first = self.start(DBUS_SESSION_BUS_ADDRESS=f"{bus.address};{own}")
        first.launcher()

        second = self.start(DBUS_SESSION_BUS_ADDRESS=own)

        self.assertEqual(second.wait_until_ended(), 0)
        first.editor()

    def test_a_settings_portal_that_is_stopped(self):
        os.kill(self.own_name(PORTAL).process, signal.SIGSTOP)

        self.expect_a_working_bubble(self.start())

    def stop_on_accessibility_bus(self, name):
        process = self.desktop.assistive.process_of(name)
        os.kill(process, signal.SIGSTOP)
        self.addCleanup(os.kill, process, signal.SIGCONT)

    def test_a_registry_of_assistive_technology_that_is_stopped(self):
        self.stop_on_accessibility_bus("org.a11y.atspi.Registry")

        self.expect_a_working_bubble(self.start())

    def test_a_bus_of_assistive_technology_that_is_stopped(self):
        self.stop_on_accessibility_bus("org.freedesktop.DBus")

        self.expect_a_working_bubble(self.start())

    def test_a_first_instance_that_is_stopped(self):
        first = self.start()
        first.launcher()
        first.send(signal.SIGSTOP)
        self.addCleanup(first.send, signal.SIGCONT)

        self.expect_refusal("Quillmark is running already but does not answer. "
                            "End it, then start it again.")

    def test_another_program_with_the_name(self):
        self.own_name(APPLICATION)

        self.expect_refusal("Another program has taken Quillmark’s name on the session bus. "
                            "End that program, then start Quillmark again.")

    def test_another_program_with_the_name_that_is_stopped(self):
        os.kill(self.own_name(APPLICATION).process, signal.SIGSTOP)

        self.expect_refusal("Quillmark is running already but does not answer. "
                            "End it, then start it again.")

    def expect_refusal(self, sentence):
        """A start ends with this sentence: where somebody reads its errors, and where nobody does."""
        for language, said in (("en", sentence), ("zh-Hans", chinese(sentence))):
            with self.subTest(language=language):
                settings = self.settings_file.read_bytes() if self.settings_file.exists() else b""
                self.addCleanup(self.settings_file.write_bytes, settings)
                self.write_settings({"ui.language": language})
                ended = subprocess.run([self.program], text=True, timeout=20,
                                       env=self.desktop.environment_for(self.home),
                                       stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                self.assertEqual((ended.returncode, ended.stdout, ended.stderr),
                                 (1, "", said + "\n"))

                unread = self.start()
                unread.element(name=said)
                self.assertEqual(unread.output().splitlines()[-1], said)
                unread.element(name="OK" if language == "en" else chinese("OK")).press()
                self.assertEqual(unread.wait_until_ended(), 1)

    def test_a_lock_that_was_left_beside_the_settings(self):
        self.settings_file.parent.mkdir(parents=True)
        lock = self.settings_file.with_name("Penwick.conf.lock")
        lock.touch()
        quillmark = self.start()

        quillmark.launcher()

        self.assertIn("launcher.x", quillmark.settings())
        lock.touch()
        self.mouse.drag(quillmark.launcher().centre(), (500, 500))
        until(lambda: quillmark.settings()["launcher.x"] == "468", "the new place is remembered")
        lock.touch()
        self.expect_a_working_bubble(quillmark)

    def test_a_lock_of_the_settings_that_cannot_be_removed(self):
        lock = self.settings_file.with_name("Penwick.conf.lock")
        (lock / "not empty").mkdir(parents=True)
        quillmark = self.start()

        self.expect_a_working_bubble(quillmark)

        quillmark.send(signal.SIGTERM)
        self.assertEqual(quillmark.wait_until_ended(), 0)

    def test_a_pipe_in_the_place_of_the_settings(self):
        self.settings_file.parent.mkdir(parents=True)
        os.mkfifo(self.settings_file)
        quillmark = self.start()

        self.expect_a_working_bubble(quillmark)

        quillmark.send(signal.SIGTERM)
        self.assertEqual(quillmark.wait_until_ended(), 0)
        self.assertEqual(os.listdir(self.settings_file.parent), [self.settings_file.name])

    def test_a_start_that_waits_for_a_disk_can_be_ended(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                self.data.path.mkdir(parents=True, exist_ok=True)
                try:
                    disk = DeadMount(self.data.path)
                except OSError as error:
                    self.skipTest(f"Nothing may be mounted: {error}")
                try:
                    quillmark = self.start()
                    disk.wait_for_somebody()

                    quillmark.send(number)

                    self.assertEqual(quillmark.wait_until_ended(), -number)
                finally:
                    disk.close()


if __name__ == "__main__":
    main()
