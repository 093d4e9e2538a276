#!/usr/bin/env python3
"""The other end of @NAME@.js: a device on a serial line.

    peer.py [PATH]

makes a serial port of its own and a link to it, "line" beside the show if no other name is given. The show starts it and ends it.
It ends with its standard input, and takes the link away.
"""
import os
import select
import signal
import sys
import tty

chosen = "1"


def answer(text):
    global chosen
    words = text.split()
    if words == ["IN?"]:
        return "IN " + chosen
    if len(words) == 2 and words[0] == "IN" and words[1] in "12345678":
        chosen = words[1]
        return "OK"
    return "ERR what is " + text


def serve(port):
    received = b""
    while True:
        ready, _, _ = select.select([port, sys.stdin], [], [])
        if sys.stdin in ready and not sys.stdin.read(1):
            return
        if port in ready:
            received += os.read(port, 1024)
            while b"\x03" in received:
                frame, received = received.split(b"\x03", 1)
                text = frame.rpartition(b"\x02")[2].decode("latin-1")
                os.write(port, b"\x02" + answer(text).encode("latin-1") + b"\x03")


def leave(*_):
    sys.exit(0)


signal.signal(signal.SIGINT, signal.SIG_IGN)  # Ctrl-C is for stagehost, which ends this one
signal.signal(signal.SIGTERM, leave)
path = sys.argv[1] if len(sys.argv) > 1 else "line"
port, line = os.openpty()
tty.setraw(line)
if os.path.islink(path):
    os.remove(path)  # left behind by one that was killed
os.symlink(os.ttyname(line), path)
print("ready", flush=True)
try:
    serve(port)
finally:
    os.remove(path)
