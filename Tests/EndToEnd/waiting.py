"""Waiting for something to become so, never without a bound."""

import time


class Gone(Exception):
    """What was asked is not there any more, or did not answer."""


class Late(AssertionError):
    """Something did not happen in time."""


def until(what, question, seconds=20.0, pause=0.05):
    """Asks again and again until the answer is true, and gives it back; raises Late after `seconds`, naming
    `what` was waited for. What is gone in the middle of the question may be there again for the next."""
    limit = time.monotonic() + seconds
    while True:
        try:
            answer = question()
        except Gone:
            answer = None
        if answer:
            return answer
        if time.monotonic() >= limit:
            raise Late(f"not within {seconds:g} s: {what}")
        time.sleep(pause)
