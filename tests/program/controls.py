"""The program's window as assistive tools meet it, through AT-SPI."""

from __future__ import annotations

from collections.abc import Callable, Iterator

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402
from wait import Found, until  # noqa: E402

CALL_MILLISECONDS = 10_000

BUTTON, CARD, FOLDER, TEXT, FIELD = "push button", "list item", "table cell", "label", "text"
HEADING, MENU_ITEM, TAB, SLIDER, ALERT = "heading", "menu item", "page tab", "slider", "alert"


class Control:
    def __init__(self, node: Atspi.Accessible):
        self.node = node
        self.states = frozenset(state.value_nick for state in node.get_state_set().get_states())
        self.role = node.get_role_name()
        self.name = node.get_name()

    def __str__(self) -> str:
        return f'{self.role} "{self.name}"'

    def actions(self) -> list[str]:
        if "Action" not in self.node.get_interfaces():
            return []
        count = Atspi.Action.get_n_actions(self.node)
        return [Atspi.Action.get_action_name(self.node, index) for index in range(count)]

    def press(self) -> None:
        assert Atspi.Action.do_action(self.node, self.actions().index("Press")), self

    def write(self, text: str) -> None:
        assert Atspi.EditableText.set_text_contents(self.node, text), self

    def value(self) -> float:
        return Atspi.Value.get_current_value(self.node)

    def set_value(self, value: float) -> None:
        assert Atspi.Value.set_current_value(self.node, value), self

    def place(self) -> tuple[int, int]:
        """The middle on the screen, in pixels."""
        rect = Atspi.Component.get_extents(self.node, Atspi.CoordType.SCREEN)
        return rect.x + rect.width // 2, rect.y + rect.height // 2


class Window:
    """The window of a running program. What is looked for is waited for, up to a limit."""

    def __init__(self, process: int, alive: Callable[[], bool]):
        Atspi.init()
        Atspi.set_timeout(CALL_MILLISECONDS, CALL_MILLISECONDS)
        self._alive = alive

        def application() -> Atspi.Accessible | None:
            desktop = Atspi.get_desktop(0)
            desktop.clear_cache()
            listed = [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]
            return next((entry for entry in listed if entry and entry.get_process_id() == process), None)

        self._application = self._until(application, "the program on the desktop", 60)
        self._application.set_cache_mask(Atspi.Cache.NONE)

    def _until(self, look: Callable[[], Found], what: str, seconds: float = 20) -> Found:
        """What changes while it is read counts as not found: the next look sees it whole."""
        def whole() -> Found | None:
            assert self._alive(), "the program has ended"
            try:
                return look()
            except GLib.Error:
                return None

        return until(whole, what, seconds)

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

        return self._until(lambda: list(walk(self._application)), "a tree that holds still")

    def all(self, role: str, name: str | None = None) -> list[Control]:
        return [control for control in self.controls() if control.role == role and name in (None, control.name)]

    def find(self, role: str, name: str, state: str = "showing") -> Control:
        def look() -> Control | None:
            return next((control for control in self.all(role, name) if state in control.states), None)

        return self._until(look, f'{role} "{name}", {state}')

    def until_gone(self, role: str, name: str) -> None:
        self._until(lambda: not self.all(role, name), f'{role} "{name}" leaves')

    def until_cards(self, *names: str) -> None:
        """Waits for exactly these cards, in this order, line by line."""
        def same() -> bool:
            placed = sorted((card.place()[::-1], card.name) for card in self.all(CARD))
            return [name for _, name in placed] == list(names)

        self._until(same, f"the cards {names}")
