import time
from collections.abc import Callable
from typing import TypeVar

Found = TypeVar("Found")


def until(look: Callable[[], Found], what: str, seconds: float = 20) -> Found:
    """The first answer of `look` that counts as true; else a TimeoutError that names `what`."""
    deadline = time.monotonic() + seconds
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > deadline:
            raise TimeoutError(f"{what}: not within {seconds} s")
        time.sleep(0.02)
