#!/usr/bin/env python3
"""A blind operator's contacts, end to end with the screen reader Orca.

The real program under a real X server (Xvfb) with its own session bus, the
accessibility bus of at-spi2-core and Orca, driven by real keystrokes (xdotool). Orca
runs without a voice and writes what it would say into its debug file ("SPEECH
OUTPUT" lines). Steps: open a log from the log manager, a band change by the band box,
the contest time set by hand, a contact with a wrong district, the same contact
corrected and logged, a dupe warning while a call is typed; each must be spoken.

    screen_reader.py BUILD_DIR SOURCE_DIR      (helpers in e2e_support.py beside it)

Exit status 0 when everything was spoken, 1 on the first failed check (with a message),
77 when a package is missing (the line says which; tools/dev.sh test installs them).
"""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from e2e_support import Failure, Processes, Screen, check, start_xvfb, wait_until

SKIP = 77
# Runs the orca program with every file it opens for writing line-buffered.
LINE_BUFFERED_ORCA = (
    "import builtins, runpy, sys\n"
    "_open = builtins.open\n"
    "def line_open(f, mode='r', *a, **k):\n"
    "    if 'w' in mode and not a and 'buffering' not in k:\n"
    "        k['buffering'] = 1\n"
    "    return _open(f, mode, *a, **k)\n"
    "builtins.open = line_open\n"
    "sys.argv = sys.argv[1:]\n"
    "runpy.run_path(sys.argv[0], run_name='__main__')\n")
LOG_NAME = "A11Y_OE3XYZ.KOLBO"
TOOLS = {
    "Xvfb": "xvfb",
    "xdotool": "xdotool",
    "dbus-daemon": "dbus-daemon",
    "orca": "orca",
    "/usr/libexec/at-spi-bus-launcher": "at-spi2-core",
}


class Speech:
    """What Orca said, read from its debug file."""

    def __init__(self, path):
        self.path = path
        self.seen = 0

    def lines(self):
        try:
            text = self.path.read_text(errors="replace")
        except OSError:
            return []
        return re.findall(r"SPEECH OUTPUT: '([^'\n]*)'", text)

    def mark(self):
        self.seen = len(self.lines())

    def wait_for(self, what, words, timeout=20.0):
        """Some utterance since the last mark contains words."""
        def spoken():
            return any(words in line for line in self.lines()[self.seen:])
        try:
            wait_until(f"Orca sagt {words!r} ({what})", spoken, timeout)
        except Failure:
            heard = " | ".join(self.lines()[self.seen:][-15:])
            raise Failure(f"Orca sagt nicht {words!r} ({what}); gehört: {heard}")
        self.mark()


class Session:
    def __init__(self, build, source, work):
        self.build, self.source, self.work = build, source, work
        self.procs = Processes()
        self.home = work / "home"
        self.env = None

    def start_bus(self):
        """A session bus of our own; its address comes on the daemon's first line."""
        p = self.procs.start(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        address = p.stdout.readline().strip()
        check(address, "dbus-daemon gibt keine Adresse")
        return address

    def run(self):
        display = start_xvfb(self.procs, self.work)
        self.screen = Screen(display, self.work)
        s = self.screen
        s.park_pointer()
        runtime = self.work / "runtime"
        runtime.mkdir(mode=0o700)
        self.env = dict(s.env, DBUS_SESSION_BUS_ADDRESS=self.start_bus(), XDG_RUNTIME_DIR=str(runtime),
                        HOME=str(self.work / "user"), XDG_CONFIG_HOME=str(self.work / "user" / "config"),
                        XDG_DATA_HOME=str(self.work / "user" / "data"), LC_ALL="de_AT.UTF-8",
                        LANG="de_AT.UTF-8", GTK_MODULES="", NO_AT_BRIDGE="0")
        (self.work / "user").mkdir()
        s.env = self.env
        log = open(self.work / "atspi.log", "w")
        self.procs.start(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"], env=self.env,
                         stdout=log, stderr=subprocess.STDOUT)
        speech = Speech(self.work / "orca.debug")
        prefs = self.work / "orca-prefs"
        prefs.mkdir()
        orca_log = open(self.work / "orca.log", "w")
        # No voice and no braille display: what Orca would say stays in its debug file.
        # Orca writes its debug file through a buffer; line by line it can be followed.
        self.procs.start(["/usr/bin/python3", "-c", LINE_BUFFERED_ORCA, shutil.which("orca"), "--debug",
                          "--debug-file", str(speech.path), "-u", str(prefs), "--disable=speech,braille"],
                         env=self.env, stdout=orca_log, stderr=subprocess.STDOUT)
        wait_until("Orca ist bereit", lambda: "ORCA: Starting registry" in (
            speech.path.read_text(errors="replace") if speech.path.exists() else ""), 60)
        speech.mark()

        # A log with a contact at 14:00 on 80 m SSB (OE3ABC), opened from the log manager.
        (self.home / "Logs").mkdir(parents=True)
        shutil.copy(self.source / "tests" / "fixtures" / "basic.rebuilt.KOLBO", self.home / "Logs" / LOG_NAME)
        program_env = dict(self.env, KOLIBRINO_HOME=str(self.home), QT_QPA_PLATFORM="xcb",
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1")
        program_env.pop("KOLIBRINO_TEST_DRIVE", None)
        self.program_log = open(self.work / "kolibrino.log", "w")
        self.program = self.procs.start([str(self.build / "kolibrino")], env=program_env,
                                        stdout=self.program_log, stderr=subprocess.STDOUT)
        manager = s.wait_window("^Kolibrino$", (), 30)
        s.wait_focus(manager)
        s.key("Return")  # the list has the focus on the log: Enter opens it
        main = s.wait_window(r"^Kolibrino \(" + re.escape(LOG_NAME) + r"\)$", (), 30)
        s.wait_focus(main)
        speech.wait_for("das Hauptfenster steht im Rufzeichenfeld", "Rufzeichen")

        # The band: call -> mode -> band, "8" picks 80m, the box jumps back to the call.
        s.key("shift+Tab", "shift+Tab")
        time.sleep(0.5)
        speech.mark()
        s.type("8")
        speech.wait_for("Bandwechsel", "Band 80m")

        # The contest time by hand: band -> time, "1430", Space to the call.
        s.key("shift+Tab", "shift+Tab", "shift+Tab")
        time.sleep(0.5)
        s.type("1430")
        s.key("space")
        time.sleep(0.5)

        # A wrong district: the check after Enter is spoken in the district box.
        speech.mark()
        s.type("oe5abc w")
        s.key("Return")
        speech.wait_for("falscher Bezirk", "BEZIRK ungültig")

        # Corrected and logged.
        s.key("BackSpace")
        s.type("br")
        speech.mark()
        s.key("Return")
        speech.wait_for("geloggt", "Geloggt OE5ABC 80m SSB BR")
        log = (self.home / "Logs" / LOG_NAME).read_bytes().decode("cp1252")
        check("OE5ABC\xb680\xb6BR" in log, "der Kontakt steht nicht in der Logdatei")

        # A dupe: OE3ABC was worked at 14:00 on 80 m SSB. The clock runs again after a
        # contact, so the time is set once more.
        s.key("shift+Tab", "shift+Tab", "shift+Tab")
        time.sleep(0.5)
        s.type("1430")
        s.key("space")
        time.sleep(0.5)
        speech.mark()
        s.type("oe3abc")
        speech.wait_for("Dupe-Warnung", "Station bereits")

        s.key("ctrl+w")
        s.key("alt+d", "e")
        wait_until("das Programm endet", lambda: self.program.poll() is not None, 30)
        print("Orca hat gesprochen: falscher Bezirk, Kontakt, Dupe-Warnung, Bandwechsel")


def main():
    if len(sys.argv) != 3:
        print(__doc__)
        return 2
    missing = sorted({pkg for tool, pkg in TOOLS.items() if not shutil.which(tool)})
    if missing:
        print(f"ÜBERSPRUNGEN: es fehlt {', '.join(missing)} (tools/dev.sh test installiert es)")
        return SKIP
    build, source = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    work = Path(tempfile.mkdtemp(prefix="kolibrino-orca-"))
    session = Session(build, source, work)
    ok = False
    try:
        session.run()
        ok = True
    except Failure as e:
        print("FEHLER:", e, file=sys.stderr)
    finally:
        session.procs.stop_all()
        if ok:
            shutil.rmtree(work, ignore_errors=True)
        else:
            for name in ("kolibrino.log", "orca.log"):
                p = work / name
                if p.exists() and p.stat().st_size:
                    print(f"{name}:\n" + p.read_text(errors="replace")[-3000:], file=sys.stderr)
            print(f"Arbeitsordner bleibt: {work}", file=sys.stderr)
    return 0 if ok else 1


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    sys.exit(main())
