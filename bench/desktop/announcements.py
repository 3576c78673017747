# SPDX-License-Identifier: MIT
"""How often assistive tools are told something for each key in a new thought: of the text, of the
caret, and of the number of characters."""

from measuring import run, until

TEXT = "a thought of some words"
LIMIT = 3


def measure(bench):
    print("What assistive tools are told")
    quillmark = bench.start(bench.home("empty"), QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    quillmark.open_editor()
    keyboard = bench.desktop.keyboard

    # The first key also tells that something is to be saved, and the pause that it is.
    keyboard.type("x ")
    field = quillmark.element("text", "Note text")
    until(lambda: field.text() == "x ", "the first keys are there")
    listener = bench.desktop.assistive.listen_to_everything(quillmark.process)
    keyboard.type(TEXT)
    until(lambda: field.text() == "x " + TEXT, "all keys are there")
    bench.results.limit("for each key", listener.count() / len(TEXT), LIMIT)
    listener.close()
    quillmark.stop()


if __name__ == "__main__":
    run(measure)
