#!/usr/bin/env python3
"""Types at "stagehost watch" as somebody at a terminal does: lines are edited, those of before come back, also from an earlier run, what
the show prints stands above the line that is being typed, and Ctrl-D ends it. Without a terminal nothing of that is there.

    typed_lines.py STAGEHOST EXAMPLES
"""
import fcntl
import os
import pty
import select
import subprocess
import sys
import tempfile
import termios
import time

stagehost, examples = (os.path.abspath(path) for path in sys.argv[1:3])
show = examples + "/driver/show.json"
environment = dict(os.environ, TERM="xterm", LC_ALL="C.UTF-8", QT_QPA_PLATFORM="offscreen")
UP, LEFT = "\x1b[A", "\x1b[D"


class Typist:
    def __init__(self, home):
        self.seen = ""
        self.leader, follower = pty.openpty()
        self.before = termios.tcgetattr(follower)
        self.follower = follower
        self.process = subprocess.Popen(
            [stagehost, "watch", show],
            stdin=follower,
            stdout=follower,
            stderr=follower,
            env=dict(environment, HOME=home, XDG_DATA_HOME=home),
            preexec_fn=self.take_terminal,
        )

    def take_terminal(self):
        """So that Ctrl-C reaches the program."""
        os.setsid()
        fcntl.ioctl(self.follower, termios.TIOCSCTTY, 0)

    def type(self, text):
        os.write(self.leader, text.encode())

    def wait(self, text):
        deadline = time.monotonic() + 60
        while text not in self.seen:
            ready, _, _ = select.select([self.leader], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                sys.exit(f"{text!r} does not come; there is {self.seen!r}")
            self.seen += os.read(self.leader, 4096).decode(errors="replace")
        self.seen = self.seen[self.seen.index(text) + len(text) :]

    def end(self):
        code = self.process.wait(60)
        # What the terminal was is what it is again.
        if termios.tcgetattr(self.follower)[3] != self.before[3]:
            sys.exit("the terminal is not as it was")
        os.close(self.leader)
        os.close(self.follower)
        return code


with tempfile.TemporaryDirectory() as home:
    first = Typist(home)
    first.wait("runs.")
    first.type("get Pice" + LEFT + LEFT + "\x7fa\n")  # Pice, back before "ce", the "i" away, an "a" in its place
    first.wait("\n5\r")
    first.type("set Pace 7\n")
    first.wait("Pace = 7")
    first.type(UP + UP + "\n")
    first.wait("\n7\r")
    # While "send fro" stands there, something is printed; the line is there again behind it.
    first.type('ramp x 1 1\nsend front "Fade to" level=10 seconds=0\nget front.Le')
    first.wait("front.Level = 10")
    first.wait("get front.Le")
    first.type("vel\n")
    first.wait("\n10\r")
    first.type("\x04")
    if first.end() != 2:
        sys.exit("the line that went wrong is not the exit code")
    second = Typist(home)
    second.wait("runs.")
    second.type(UP + UP + UP + UP + UP + "\n")
    second.wait("Pace = 7")
    second.type("quit\n")
    if second.end() != 0:
        sys.exit("quit does not end well")
    long = Typist(home)
    long.wait("runs.")
    long.type("set Pace " + "1" * 6000)
    long.wait("left out")
    long.type("1\nget Pace\n")
    long.wait("get Pace")
    long.wait("\n5\r")
    long.type("quit\n")
    if long.end() != 0:
        sys.exit("a line that is too long ends the program")
    third = Typist(home)
    third.wait("runs.")
    third.type("get Pa\x03")
    if third.end() != 0:
        sys.exit("Ctrl-C does not end well")

plain = subprocess.run(
    [stagehost, "watch", show], input="set Pace 7\nquit\n", capture_output=True, text=True, timeout=60, env=environment
)
if "\x1b" in plain.stdout + plain.stderr or plain.returncode != 0:
    sys.exit(f"a program gets what is for terminals: {plain.stdout!r}")
print("typed, edited, remembered, and printed above the line")
