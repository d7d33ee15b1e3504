"""The real program on a pseudo-terminal: keys in, screen out."""
import fcntl
import os
import pty
import resource
import select
import shutil
import signal
import struct
import tempfile
import termios
import time

from screen import Screen

UP, DOWN, RIGHT, LEFT = "\x1b[A", "\x1b[B", "\x1b[C", "\x1b[D"
HOME, END, INSERT, DELETE, PGUP, PGDN = "\x1b[H", "\x1b[F", "\x1b[2~", "\x1b[3~", "\x1b[5~", "\x1b[6~"
ENTER, ESC, BACKSPACE, CONTROLC, CONTROLD = "\r", "\x1b", "\x7f", "\x03", "\x04"

TARN = ""  # the program, set by run.py
SECONDS = 20


class Session:
    """with Session("--vanilla") as s: s.line("X = 3"); s.expect("* ")"""

    def __init__(self, *words, columns=80, rows=25, env=None, files=None, filesize=None):
        self.screen = Screen(columns, rows)
        self.raw = b""
        self.folder = tempfile.mkdtemp()
        for name, text in (files or {}).items():
            with open(os.path.join(self.folder, name), "w") as file:
                file.write(text)
        environment = {"PATH": os.environ["PATH"], "TERM": "xterm", "HOME": self.folder, "LC_ALL": "C.UTF-8"}
        environment.update(env or {})
        words = words or ("--quiet", "--vanilla")
        self.process, self.fd = pty.fork()
        if self.process == 0:
            os.chdir(self.folder)
            if filesize:  # a disk that is full behind so many bytes
                resource.setrlimit(resource.RLIMIT_FSIZE, (filesize, filesize))
            os.execve(TARN, [TARN, *words], environment)
        self.status = None
        self.resize(columns, rows)

    def __enter__(self):
        return self

    def __exit__(self, *failure):
        if self.status is None:
            os.kill(self.process, signal.SIGKILL)
            os.waitpid(self.process, 0)
        os.close(self.fd)
        shutil.rmtree(self.folder)

    def resize(self, columns, rows):
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def read(self, seconds):
        """Takes in what the program writes within this time; False if there was nothing."""
        if not select.select([self.fd], [], [], seconds)[0]:
            return False
        try:
            data = os.read(self.fd, 65536)
        except OSError:  # the program has gone
            data = b""
        self.raw += data
        self.screen.feed(data)
        return bool(data)

    def until(self, there, what):
        """Reads on until there() is true of the screen."""
        end = time.monotonic() + SECONDS
        while not there():
            if time.monotonic() > end:
                raise AssertionError(f"{what}: not within {SECONDS} s; the screen shows\n{self.screen.text()}")
            if not self.read(0.2) and self.ended():
                if there():
                    return
                raise AssertionError(f"{what}: the program ended; the screen shows\n{self.screen.text()}")

    def expect(self, text):
        self.until(lambda: text in self.screen.everything(), f"expected {text!r}")

    def prompted(self, text="* "):
        """Waits until the cursor stands right behind a prompt (and what has been typed)."""
        self.until(lambda: self.cursorline() == text, f"expected the line {text!r}")

    def cursorline(self):
        return "".join(self.screen.cells[self.screen.row][: self.screen.column])

    def send(self, keys):
        os.write(self.fd, keys.encode())

    def line(self, text):
        """Types a statement at a waiting prompt and waits until it has been performed."""
        self.prompted()
        lines = len(self.screen.history) + self.screen.row
        self.send(text + ENTER)
        self.until(
            lambda: len(self.screen.history) + self.screen.row > lines and self.cursorline() == "* ",
            f"expected a prompt after {text!r}",
        )

    def ended(self):
        if self.status is None:
            process, status = os.waitpid(self.process, os.WNOHANG)
            if process:
                self.status = os.waitstatus_to_exitcode(status)
        return self.status is not None

    def end(self):
        """Waits for the end of the program and gives its exit status."""
        end = time.monotonic() + SECONDS
        while not self.ended():
            if time.monotonic() > end:
                raise AssertionError(f"the program did not end; the screen shows\n{self.screen.text()}")
            self.read(0.1)
        while self.read(0):
            pass
        return self.status

    def modes(self):
        return termios.tcgetattr(self.fd)

    def log(self, name="tarn.log"):
        with open(os.path.join(self.folder, name)) as file:
            return file.read()
