"""Helpers of the end-to-end tests: the processes a test starts (Xvfb, rigctld, the
loopback log server), the X side (windows found by title, keys by xdotool, screenshots
by ImageMagick's import) and polling with a time limit. Every wait polls; a helper
program that hangs is cut off after its own time limit. Failures raise Failure.
"""

import hashlib
import os
import re
import socket
import subprocess
import time
from pathlib import Path

KEY_DELAY_MS = "12"  # between keystrokes of one xdotool call
POLL_S = 0.02
KEYBOARD_INPUT_INTERVAL_S = 0.5  # Qt's 400 ms and a margin


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


def wait_until(what, predicate, timeout=20.0):
    """Polls predicate until it gives a true value; fails with `what` on timeout."""
    end = time.monotonic() + timeout
    while True:
        value = predicate()
        if value:
            return value
        if time.monotonic() > end:
            raise Failure("Zeitüberschreitung: " + what)
        time.sleep(POLL_S)


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def port_open(port):
    try:
        with socket.create_connection(("127.0.0.1", port), timeout=0.2):
            return True
    except OSError:
        return False


# ---- Processes ------------------------------------------------------------------------


class Processes:
    """Every process the test starts, ended at the end by its own id."""

    def __init__(self):
        self.procs = []

    def start(self, args, **kw):
        p = subprocess.Popen(args, **kw)
        self.procs.append(p)
        return p

    def stop(self, p, timeout=10):
        if p.poll() is None:
            p.terminate()
            try:
                p.wait(timeout)
            except subprocess.TimeoutExpired:
                p.kill()
                p.wait()

    def stop_all(self):
        for p in reversed(self.procs):
            self.stop(p)


def display_taken(n):
    """Some X server holds display n: its lock file, its socket file or its abstract
    socket (shared by every file system view on the machine)."""
    if Path(f"/tmp/.X{n}-lock").exists() or Path(f"/tmp/.X11-unix/X{n}").exists():
        return True
    with socket.socket(socket.AF_UNIX) as s:
        try:
            s.connect(f"\0/tmp/.X11-unix/X{n}")
            return True
        except OSError:
            return False


def start_xvfb(procs, work):
    """Xvfb on a free display number, proven ours by the process id in its lock file."""
    first = 100 + os.getpid() % 800
    for n in list(range(first, 900)) + list(range(100, first)):
        if display_taken(n):
            continue
        log = open(work / "xvfb.log", "a")
        # -noreset: no reset when the last client leaves, which would refuse the
        # program's next start for a moment.
        p = procs.start(["Xvfb", f":{n}", "-screen", "0", "1920x1200x24", "-nolisten", "tcp", "-noreset"],
                        stdout=log, stderr=subprocess.STDOUT)
        lock = Path(f"/tmp/.X{n}-lock")

        def ready():
            if p.poll() is not None:
                return "dead"
            try:
                ours = lock.read_text().strip() == str(p.pid)
            except OSError:
                ours = False
            return "up" if ours and Path(f"/tmp/.X11-unix/X{n}").exists() else None

        if wait_until("Xvfb startet", ready, 20) == "up":
            return f":{n}"
    raise Failure("keine freie Display-Nummer für Xvfb")


def start_rigctld(procs, work):
    port = free_port()
    log = open(work / "rigctld.log", "w")
    procs.start(["rigctld", "-m", "1", "-T", "127.0.0.1", "-t", str(port)], stdout=log,
                stderr=subprocess.STDOUT)
    wait_until("rigctld nimmt Verbindungen an", lambda: port_open(port), 20)
    return port


def rig_command(port, line):
    with socket.create_connection(("127.0.0.1", port), timeout=5) as s:
        s.sendall((line + "\n").encode())
        data = b""
        while not data.endswith(b"\n"):
            chunk = s.recv(1024)
            if not chunk:
                break
            data += chunk
        return data.decode().strip()


def start_log_server(procs, work, source):
    """lighttpd with the upload CGI of the export tests, taken from their header."""
    header = (source / "tests" / "upload_server.h").read_text()
    cgi = re.search(r'R"PERL\((.*?)\)PERL"', header, re.S)
    check(cgi, "upload.cgi nicht in tests/upload_server.h gefunden")
    root = work / "server"
    (root / "www" / "cgi-bin").mkdir(parents=True)
    (root / "store").mkdir()
    (root / "www" / "cgi-bin" / "upload.cgi").write_text(cgi.group(1))
    (root / "www" / "cgi-bin" / "show.cgi").write_text(
        'print "Content-Type: text/html\\r\\n\\r\\n<p>Logs</p>";\n')
    (root / "store" / "mode").write_text("ok")
    port = free_port()
    (root / "lighttpd.conf").write_text(
        f'server.document-root = "{root}/www"\n'
        'server.bind = "127.0.0.1"\n'
        f"server.port = {port}\n"
        f'server.errorlog = "{root}/error.log"\n'
        'server.modules = ("mod_cgi", "mod_setenv")\n'
        'cgi.assign = (".cgi" => "/usr/bin/perl")\n'
        f'setenv.add-environment = ("STORE" => "{root}/store")\n')
    procs.start(["/usr/sbin/lighttpd", "-D", "-f", str(root / "lighttpd.conf")])
    wait_until("lighttpd nimmt Verbindungen an", lambda: port_open(port), 20)
    return port, root / "store"


# ---- The X side -----------------------------------------------------------------------


class Screen:
    def __init__(self, display, shots):
        self.env = dict(os.environ, DISPLAY=display)
        self.shots = shots
        self.count = 0

    def xdo(self, *args, check_rc=True):
        r = subprocess.run(["xdotool", *args], env=self.env, capture_output=True, text=True, timeout=60)
        if check_rc and r.returncode != 0:
            raise Failure(f"xdotool {' '.join(args)}: {r.stderr.strip()}")
        return r.stdout

    def windows(self, pattern):
        out = self.xdo("search", "--onlyvisible", "--name", pattern, check_rc=False)
        return [int(w) for w in out.split()]

    def name(self, wid):
        return self.xdo("getwindowname", str(wid), check_rc=False).strip()

    def wait_window(self, pattern, known=(), timeout=20.0):
        """A visible window whose title matches pattern and that is not in known."""
        def found():
            for w in self.windows(pattern):
                if w not in known:
                    return w
            return None
        return wait_until(f"Fenster '{pattern}' erscheint", found, timeout)

    def wait_gone(self, wid, timeout=20.0):
        def gone():
            out = self.xdo("search", "--onlyvisible", "--name", ".", check_rc=False)
            return str(wid) not in out.split()
        wait_until(f"Fenster {wid} ({self.name(wid)}) verschwindet", gone, timeout)

    def focus(self):
        return int(self.xdo("getwindowfocus").strip() or 0)

    def wait_focus(self, wid, timeout=10.0):
        wait_until(f"Fenster {wid} ({self.name(wid)}) hat den Tastaturfokus",
                   lambda: self.focus() == wid, timeout)

    def type(self, text):
        self.xdo("type", "--delay", KEY_DELAY_MS, "--", text)

    def key(self, *keys):
        self.xdo("key", "--delay", KEY_DELAY_MS, *keys)

    def park_pointer(self):
        # Out of every window: keys must reach a window by its focus, never by the pointer.
        self.xdo("mousemove", "1919", "1199")

    def shot(self, wid, label):
        self.count += 1
        path = self.shots / f"{self.count:02d}_{label}.png"
        check(wid in self.windows("."), f"Bildschirmfoto {label}: Fenster {wid} ist nicht zu sehen")
        wait_until(f"Fenster {wid} ist gezeichnet", lambda: self.rgb(wid).strip(b"\0"), 20)
        subprocess.run(["import", "-window", str(wid), str(path)], env=self.env, check=True,
                       capture_output=True, timeout=60)
        return path

    def rgb(self, wid):
        r = subprocess.run(["import", "-window", str(wid), "-depth", "8", "rgb:-"], env=self.env,
                           capture_output=True, timeout=60)
        return r.stdout

    def image_hash(self, wid):
        return hashlib.md5(self.rgb(wid)).hexdigest()

    def column_colours(self, wid, x):
        """The colours of one pixel column of a window, top to bottom, as hex texts."""
        r = subprocess.run(["import", "-window", str(wid), "-depth", "8", "ppm:-"], env=self.env,
                           capture_output=True, check=True, timeout=60)
        m = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", r.stdout)
        check(m, "import liefert kein PPM-Bild")
        w, h = int(m.group(1)), int(m.group(2))
        pixels = r.stdout[m.end():]
        return [pixels[(y * w + x) * 3:(y * w + x) * 3 + 3].hex().upper() for y in range(h)]

    def geometry(self, wid):
        out = self.xdo("getwindowgeometry", "--shell", str(wid))
        g = dict(line.split("=", 1) for line in out.split())
        return int(g["X"]), int(g["Y"]), int(g["WIDTH"]), int(g["HEIGHT"])
