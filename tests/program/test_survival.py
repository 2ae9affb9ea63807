"""What the user changed more than a second ago survives the program's sudden end."""

import time

from controls import BUTTON, CARD, FOLDER, SLIDER
from program import ProgramCase
from wait import until

# The promise, and what a loaded machine may add until it is seen.
PROMISE_SECONDS, SLACK_SECONDS = 1.0, 1.0


class SuddenEnd(ProgramCase):
    def test_nothing_older_than_a_second_is_lost(self) -> None:
        self.window.find(CARD, "Boom").press()
        self.window.find(BUTTON, "Add to Favorites").press()
        self.window.find(BUTTON, "Collapse SFX").press()
        self.window.find(SLIDER, "Card size").set_value(310)
        changed = time.monotonic()
        wanted = {
            "favorites": [str(self.home.vault / "SFX" / "Hits" / "Boom.wav")],
            f"expanded.{self.home.vault}/SFX": False,
            "cardSize": 310,
        }
        until(lambda: wanted.items() <= self.home.settings().items(), "all changes in the settings file")
        self.assertLess(time.monotonic() - changed, PROMISE_SECONDS + SLACK_SECONDS)

        self.program.kill()
        self.start()
        self.assertEqual(self.window.find(SLIDER, "Card size").value(), 310)
        self.window.find(FOLDER, "SFX", "collapsed")
        self.window.find(BUTTON, "Favorites").press()
        self.window.until_cards("Boom")
        self.assertLessEqual(wanted.items(), self.home.settings().items())
