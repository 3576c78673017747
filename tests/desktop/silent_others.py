# SPDX-License-Identifier: MIT
"""Other programs that do not answer hold nothing up."""

import os
import signal

from harness import DesktopTest, main, until
from harness.buses import NameOwner, SilentBus
from harness.dead_mount import DeadMount

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

    def test_a_settings_portal_that_is_stopped(self):
        os.kill(self.own_name(PORTAL).process, signal.SIGSTOP)

        self.expect_a_working_bubble(self.start())

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
