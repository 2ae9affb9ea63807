"""The program's window as assistive tools meet it, through AT-SPI."""

from __future__ import annotations

import functools
from collections.abc import Callable, Iterator

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402
from wait import until  # noqa: E402

CALL_MILLISECONDS = 10_000

BUTTON, CARD, FOLDER, TEXT, FIELD = "push button", "list item", "table cell", "label", "text"
HEADING, MENU_ITEM, TAB, SLIDER, ALERT = "heading", "menu item", "page tab", "slider", "alert"


class Control:
    """One control; each of its properties is asked for once, when it is first used."""

    def __init__(self, node: Atspi.Accessible):
        self.node = node
        self.states = frozenset(state.value_nick for state in node.get_state_set().get_states())

    @functools.cached_property
    def role(self) -> str:
        return self.node.get_role_name()

    @functools.cached_property
    def name(self) -> str:
        return self.node.get_name()

    @functools.cached_property
    def description(self) -> str:
        return self.node.get_description()

    @functools.cached_property
    def interfaces(self) -> frozenset[str]:
        return frozenset(self.node.get_interfaces())

    @functools.cached_property
    def actions(self) -> list[str]:
        if "Action" not in self.interfaces:
            return []
        count = Atspi.Action.get_n_actions(self.node)
        return [Atspi.Action.get_action_name(self.node, index) for index in range(count)]

    def __str__(self) -> str:
        return f'{self.role} "{self.name}"'

    def act(self, action: str) -> None:
        if not Atspi.Action.do_action(self.node, self.actions.index(action)):
            raise AssertionError(f"{self} does not carry out {action}")

    def press(self) -> None:
        self.act("Press")

    def write(self, text: str) -> None:
        if not Atspi.EditableText.set_text_contents(self.node, text):
            raise AssertionError(f"{self} takes no text")

    def text(self) -> str:
        return Atspi.Text.get_text(self.node, 0, Atspi.Text.get_character_count(self.node))

    def value(self) -> float:
        return Atspi.Value.get_current_value(self.node)

    def set_value(self, value: float) -> None:
        if not Atspi.Value.set_current_value(self.node, value):
            raise AssertionError(f"{self} takes no value")

    def place(self) -> tuple[int, int]:
        """The middle on the screen, in pixels."""
        rect = Atspi.Component.get_extents(self.node, Atspi.CoordType.SCREEN)
        return rect.x + rect.width // 2, rect.y + rect.height // 2

    def hover(self) -> None:
        Atspi.generate_mouse_event(*self.place(), "abs")


class Window:
    """The window of a running program. What is looked for is waited for, up to a limit."""

    def __init__(self, process: int, alive: Callable[[], bool]):
        Atspi.init()
        Atspi.set_timeout(CALL_MILLISECONDS, CALL_MILLISECONDS)
        self._alive = alive

        def application() -> Atspi.Accessible | None:
            self._require_program()
            desktop = Atspi.get_desktop(0)
            desktop.clear_cache()
            listed = [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]
            return next((entry for entry in listed if entry and entry.get_process_id() == process), None)

        self._application = until(lambda: self._quietly(application), "the program on the desktop", 60)
        self._application.set_cache_mask(Atspi.Cache.NONE)

    def _require_program(self) -> None:
        if not self._alive():
            raise AssertionError("the program has ended")

    @staticmethod
    def _quietly(look):
        """What changes while it is read counts as not found: the next look sees it whole."""
        try:
            return look()
        except GLib.Error:
            return None

    def controls(self) -> list[Control]:
        """Everything that shows, in the order of the tree."""
        def walk(node: Atspi.Accessible) -> Iterator[Control]:
            control = Control(node)
            if "showing" not in control.states:
                return
            yield control
            for index in range(node.get_child_count()):
                child = node.get_child_at_index(index)
                if child is not None:
                    yield from walk(child)

        def read() -> list[Control]:
            self._require_program()
            return list(walk(self._application))

        return until(lambda: self._quietly(read), "a tree that holds still")

    def all(self, role: str, name: str | None = None) -> list[Control]:
        def look() -> tuple[list[Control]] | None:
            return self._quietly(lambda: ([control for control in self.controls() if control.role == role
                                           and name in (None, control.name)],))

        return until(look, f"a look at every {role}")[0]

    def find(self, role: str, name: str, state: str = "showing") -> Control:
        def look() -> Control | None:
            return next((control for control in self.all(role, name) if state in control.states), None)

        return until(look, f'{role} "{name}", {state}')

    def until_gone(self, role: str, name: str) -> None:
        until(lambda: not self.all(role, name), f'{role} "{name}" leaves')

    def cards(self) -> list[str]:
        """Names of the cards, line by line."""
        def look() -> list[str]:
            placed = [(card.place(), card.name) for card in self.all(CARD)]
            return [name for _, name in sorted(placed, key=lambda card: (card[0][1], card[0][0]))]

        return self._quietly(look) or []

    def until_cards(self, *names: str) -> None:
        """Waits for exactly these cards, in this order."""
        seen: list[str] = []

        def same() -> bool:
            seen[:] = self.cards()
            return seen == list(names)

        try:
            until(same, "the cards")
        except TimeoutError:
            raise AssertionError(f"the cards are {seen}, not {list(names)}") from None
