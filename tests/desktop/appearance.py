# SPDX-License-Identifier: MIT
"""The program looks as the desktop says, and changes with it while it runs."""

from harness import DesktopTest, main, until
from harness.appearance import BlurOffer, DARK, LIGHT, NO_PREFERENCE, Portal, SettingsManager

WHITE = (255, 255, 255)


class Appearance(DesktopTest):
    def portal(self, **settings):
        portal = Portal(self.desktop)
        self.addCleanup(portal.close)
        for key, value in settings.items():
            portal.say(key.replace("_", "-"), value)
        return portal

    def settings_manager(self, **settings):
        manager = SettingsManager(self.desktop, **settings)
        self.addCleanup(manager.close)
        return manager

    def start_with_editor(self):
        quillmark = self.start("--show-editor")
        quillmark.editor()
        return quillmark

    def ground(self, window):
        """The colour between the window's edge and its content."""
        x, y, _, height = window.rectangle()
        return self.desktop.picture(x + 8, y + height // 2, 1, 1).colour(0, 0)

    def expect_light(self, quillmark, why):
        until(lambda: min(self.ground(quillmark.editor())) > 200, f"the editor is light: {why}")

    def expect_dark(self, quillmark, why):
        until(lambda: max(self.ground(quillmark.editor())) < 80, f"the editor is dark: {why}")

    def test_it_follows_the_portal(self):
        portal = self.portal(color_scheme=DARK)
        quillmark = self.start_with_editor()
        self.expect_dark(quillmark, "the portal says so")

        portal.say("color-scheme", LIGHT)

        self.expect_light(quillmark, "the portal says so")

    def test_it_follows_the_theme_of_the_settings_manager(self):
        manager = self.settings_manager(theme="Adwaita-dark")
        quillmark = self.start_with_editor()
        self.expect_dark(quillmark, "the theme is")

        manager.write(theme="Adwaita")

        self.expect_light(quillmark, "the theme is")

    def test_it_follows_the_settings_file_of_the_toolkit(self):
        file = self.home / ".config/gtk-3.0/settings.ini"
        file.parent.mkdir(parents=True)
        file.write_text("[Settings]\ngtk-theme-name=Adwaita-dark\n", encoding="utf-8")
        quillmark = self.start_with_editor()
        self.expect_dark(quillmark, "the theme is")

        file.write_text("[Settings]\ngtk-theme-name=Adwaita\n", encoding="utf-8")

        self.expect_light(quillmark, "the theme is")

    def test_a_portal_without_a_preference_leaves_it_to_the_theme(self):
        self.settings_manager(theme="Adwaita-dark")
        portal = self.portal(color_scheme=LIGHT)
        quillmark = self.start_with_editor()
        self.expect_light(quillmark, "the portal says so")

        portal.say("color-scheme", NO_PREFERENCE)

        self.expect_dark(quillmark, "the theme is")

    def test_high_contrast_makes_it_black_on_white(self):
        portal = self.portal(color_scheme=LIGHT)
        quillmark = self.start_with_editor()
        self.expect_light(quillmark, "the portal says so")
        self.assertNotEqual(self.ground(quillmark.editor()), WHITE)

        portal.say("contrast", 1)

        until(lambda: self.ground(quillmark.editor()) == WHITE, "the editor is white")
        portal.say("contrast", 0)
        until(lambda: self.ground(quillmark.editor()) != WHITE, "the editor is warm again")

    def test_it_stands_still_where_animations_are_switched_off(self):
        manager = self.settings_manager(animations=0)
        quillmark = self.start()
        launcher = quillmark.launcher()
        at_rest = until(lambda: self.disc(launcher), "the bubble is drawn")
        colour = self.plus(launcher)

        self.mouse.move(launcher.centre())
        until(lambda: self.plus(launcher) != colour, "the plus takes the accent colour")
        self.assertEqual(self.disc(launcher), at_rest)

        manager.write(animations=1)
        until(lambda: self.disc(launcher) > at_rest, "the disc grows")

    def test_what_lies_behind_is_blurred_where_that_is_offered(self):
        if not self.windows.has_compositor():
            self.skipTest("nobody draws through windows here")
        portal = self.portal()
        offer = BlurOffer(self.desktop)
        quillmark = self.start()
        launcher = quillmark.launcher()
        until(lambda: launcher.property(BlurOffer.NAME) is not None, "the bubble asks for blur")

        editor = quillmark.open_editor()
        until(lambda: editor.property(BlurOffer.NAME) is not None, "the editor asks for blur")
        region = editor.property(BlurOffer.NAME)
        rectangles = [region[at:at + 4] for at in range(0, len(region), 4)]
        area = sum(width * height for _, _, width, height in rectangles)
        self.assertGreater(area, 0.97 * 424 * 560)
        self.assertLess(area, 424 * 560)

        portal.say("contrast", 1)
        until(lambda: editor.property(BlurOffer.NAME) is None, "an opaque editor needs none")
        portal.say("contrast", 0)
        until(lambda: editor.property(BlurOffer.NAME) is not None, "the editor asks again")
        offer.close()
        until(lambda: editor.property(BlurOffer.NAME) is None, "the offer is gone")

    # The bubble from outside

    def disc(self, launcher):
        """How many pixels across its middle are the disc's."""
        x, y, width, height = launcher.rectangle()
        row = self.desktop.picture(x, y + height // 2, width, 1)
        return sum(min(row.colour(column, 0)) > 150 for column in range(width))

    def plus(self, launcher):
        return self.desktop.picture(*launcher.centre(), 1, 1).colour(0, 0)


if __name__ == "__main__":
    main()
