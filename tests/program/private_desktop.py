#!/usr/bin/env python3
"""Runs a command on a desktop of its own: X server, window manager, session bus and accessibility bus.

usage: private_desktop.py COMMAND [ARGUMENT ...]

Ends as the command ends. Nothing that was started outlives it, however it ends.
"""

import contextlib
import ctypes
import os
import pathlib
import select
import signal
import subprocess
import sys
import tempfile
from collections.abc import Callable, Iterator
from typing import TextIO

from wait import until

BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir={folder}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
ACCESSIBILITY_LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
START_SECONDS = 30
END_SECONDS = 10
PR_SET_PDEATHSIG, PR_SET_CHILD_SUBREAPER = 1, 36

system = ctypes.CDLL(None, use_errno=True)


def end_with_parent() -> None:
    system.prctl(PR_SET_PDEATHSIG, signal.SIGTERM, 0, 0, 0)


@contextlib.contextmanager
def running(command: list[str], environment: dict[str, str], **options) -> Iterator[subprocess.Popen]:
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, preexec_fn=end_with_parent,
                               **options)
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(END_SECONDS)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


@contextlib.contextmanager
def shown_on_failure() -> Iterator[TextIO]:
    """A log of the servers, printed only when the desktop does not come up."""
    with tempfile.TemporaryFile("w+", errors="replace") as log:
        try:
            yield log
        except BaseException:
            log.seek(0)
            sys.stderr.write(log.read())
            raise


@contextlib.contextmanager
def ready_server(command: Callable[[int], list[str]], environment: dict[str, str], log: TextIO) -> Iterator[str]:
    """A server that writes one line to a file descriptor as soon as it is ready; yields that line."""
    ours, theirs = os.pipe()
    with (running(command(theirs), environment, pass_fds=[theirs], stdout=log,
                  stderr=log),
          open(ours, encoding="ascii") as reader):
        os.close(theirs)
        if not select.select([ours], [], [], START_SECONDS)[0]:
            sys.exit(f"private_desktop: no answer from {command(theirs)[0]}")
        line = reader.readline().strip()
        if not line:
            sys.exit(f"private_desktop: {command(theirs)[0]} did not start")
        yield line


def answer(command: list[str], environment: dict[str, str]) -> str:
    return subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True, timeout=START_SECONDS).stdout


def children() -> list[int]:
    own = os.getpid()
    listed = pathlib.Path(f"/proc/{own}/task/{own}/children").read_text().split()
    return [int(process) for process in listed]


def end_orphans() -> None:
    """What the servers started has become ours with their end."""
    def none_left() -> bool:
        for process in children():
            os.kill(process, signal.SIGTERM)
            os.waitpid(process, os.WNOHANG)
        return not children()

    until(none_left, "the end of what the desktop had started", END_SECONDS)


@contextlib.contextmanager
def desktop() -> Iterator[dict[str, str]]:
    """Yields the environment of programs on it."""
    with contextlib.ExitStack() as stack:
        folder = pathlib.Path(stack.enter_context(tempfile.TemporaryDirectory(prefix="desktop-")))
        stack.callback(end_orphans)
        kept = ("PATH", "LANG", "LC_ALL", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS")
        environment = {name: value for name, value in os.environ.items()
                       if name in kept or name.startswith("CRATEWELL_")}
        environment |= {"HOME": str(folder), "XDG_RUNTIME_DIR": str(folder), "GSETTINGS_BACKEND": "memory"}
        log = stack.enter_context(shown_on_failure())

        screen = ["Xvfb", "-screen", "0", "1600x1000x24", "-nolisten", "tcp", "-noreset", "-displayfd"]
        number = stack.enter_context(ready_server(lambda out: [*screen, str(out)], environment, log))
        environment["DISPLAY"] = f":{number}"
        configuration = folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(folder=folder))
        bus = ["dbus-daemon", "--nofork", f"--config-file={configuration}", "--print-address"]
        address = stack.enter_context(ready_server(lambda out: [*bus[:-1], f"{bus[-1]}={out}"], environment, log))
        environment["DBUS_SESSION_BUS_ADDRESS"] = address

        stack.enter_context(running(["openbox", "--sm-disable"], environment, stdout=log, stderr=log))
        launcher = next((path for path in ACCESSIBILITY_LAUNCHERS if os.path.exists(path)), None)
        if launcher is None:
            sys.exit("private_desktop: at-spi2-core is not installed")
        stack.enter_context(running([launcher, "--launch-immediately"], environment, stdout=log, stderr=log))
        manager = ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]
        until(lambda: "window id" in answer(manager, environment), "the window manager")
        accessibility = ["dbus-send", "--session", "--print-reply", "--reply-timeout=5000",
                         "--dest=org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"]
        until(lambda: "unix:" in answer(accessibility, environment), "the accessibility bus")
        yield environment


def main() -> int:
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    system.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("private_desktop: terminated"))
    with desktop() as environment, running(sys.argv[1:], environment) as command:
        return command.wait()


if __name__ == "__main__":
    sys.exit(main())
