#!/usr/bin/env python3
"""Runs a command on a desktop of its own: X server, window manager, session bus and accessibility bus.

usage: private_desktop.py COMMAND [ARGUMENT ...]

Ends as the command ends. Nothing that was started outlives it, however it ends.
"""

import ctypes
import os
import pathlib
import select
import signal
import subprocess
import sys
import tempfile

from wait import until

# Nothing is started on demand.
BUS_CONFIGURATION = """<busconfig>
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


def start(environment: dict[str, str], *command: str, **options) -> subprocess.Popen:
    return subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL,
                            preexec_fn=lambda: system.prctl(PR_SET_PDEATHSIG, signal.SIGTERM, 0, 0, 0), **options)


def start_server(environment: dict[str, str], *command: str) -> str:
    """One that writes a line as soon as it is ready, to the descriptor that is added to its command."""
    ours, theirs = os.pipe()
    start(environment, *command[:-1], f"{command[-1]}{theirs}", pass_fds=[theirs])
    os.close(theirs)
    with open(ours, encoding="ascii") as reader:
        line = select.select([reader], [], [], START_SECONDS)[0] and reader.readline().strip()
    return line or sys.exit(f"private_desktop: {command[0]} did not start")


def answer(environment: dict[str, str], *command: str) -> str:
    return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=START_SECONDS).stdout


def started_desktop(folder: str) -> dict[str, str]:
    """Gives the environment of programs on it."""
    kept = ("PATH", "LANG", "LC_ALL", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS")
    environment = {name: value for name, value in os.environ.items()
                   if name in kept or name.startswith("CRATEWELL_")}
    environment |= {"HOME": folder, "XDG_RUNTIME_DIR": folder, "GSETTINGS_BACKEND": "memory"}
    environment["DISPLAY"] = ":" + start_server(environment, "Xvfb", "-screen", "0", "1600x1000x24", "-nolisten",
                                                "tcp", "-noreset", "-displayfd", "")
    configuration = pathlib.Path(folder, "bus.conf")
    configuration.write_text(BUS_CONFIGURATION.format(folder=folder))
    environment["DBUS_SESSION_BUS_ADDRESS"] = start_server(
        environment, "dbus-daemon", "--nofork", f"--config-file={configuration}", "--print-address=")
    start(environment, "openbox", "--sm-disable")
    start(environment, next(filter(os.path.exists, ACCESSIBILITY_LAUNCHERS)), "--launch-immediately")
    until(lambda: "window id" in answer(environment, "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
          "the window manager")
    until(lambda: "unix:" in answer(environment, "dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus",
                                    "/org/a11y/bus", "org.a11y.Bus.GetAddress"), "the accessibility bus")
    return environment


def end_children() -> None:
    """What the servers started becomes ours with their end."""
    listed = pathlib.Path(f"/proc/self/task/{os.getpid()}/children")

    def none_left() -> bool:
        for process in map(int, listed.read_text().split()):
            os.kill(process, signal.SIGTERM)
            os.waitpid(process, os.WNOHANG)
        return not listed.read_text()

    until(none_left, "the end of what the desktop had started", END_SECONDS)


def main() -> int:
    system.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("private_desktop: terminated"))
    with tempfile.TemporaryDirectory(prefix="desktop-") as folder:
        try:
            return start(started_desktop(folder), *sys.argv[1:]).wait()
        finally:
            end_children()


if __name__ == "__main__":
    sys.exit(main())
