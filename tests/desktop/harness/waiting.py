# SPDX-License-Identifier: MIT
"""Waiting for conditions."""

import time

DEADLINE = 10.0
INTERVAL = 0.01


def until(condition, what, seconds=DEADLINE):
    """The first true value of condition(); fails, saying what was awaited, at the deadline."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"waited {seconds:g} s in vain: {what}")
        time.sleep(INTERVAL)


def holds_for(seconds, condition, what):
    """Fails as soon as the condition does not hold; for what must not happen afterwards."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not condition():
            raise AssertionError(f"did not stay so for {seconds:g} s: {what}")
        time.sleep(INTERVAL)


def until_it_stays(seconds, condition, what):
    """Waits until the condition has held for so long; for what others, too, take part in, who may
    act later than the first moment at which it holds."""
    since = None

    def has_stayed():
        nonlocal since
        if not condition():
            since = None
            return False
        since = since or time.monotonic()
        return time.monotonic() - since >= seconds
    until(has_stayed, f"{what}, for {seconds:g} s", DEADLINE + seconds)
