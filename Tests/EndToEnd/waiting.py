"""Waiting for something to become so, never without a bound."""

import time


class Late(AssertionError):
    """Something did not happen in time."""


def until(what, question, seconds=20.0, pause=0.05):
    """Asks again and again until the answer is true, and gives it back; raises Late after `seconds`, naming
    `what` was waited for."""
    limit = time.monotonic() + seconds
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() >= limit:
            raise Late(f"not within {seconds:g} s: {what}")
        time.sleep(pause)
