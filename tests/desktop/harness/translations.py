# SPDX-License-Identifier: MIT
"""The program's texts in another language, from the tables that it is built with."""

import functools
import pathlib
import xml.etree.ElementTree

_RESOURCES = pathlib.Path(__file__).parents[3] / "resources"


@functools.cache
def table(language):
    """English text → translation."""
    file = _RESOURCES / f"{language}.lproj" / "Localizable.ts"
    messages = xml.etree.ElementTree.parse(file).getroot().iter("message")
    return {message.findtext("source"): message.findtext("translation") for message in messages}


def chinese(text):
    return table("zh-Hans")[text]
