#!/usr/bin/env python3
"""The other end of @NAME@.js: a device that speaks lines over TCP.

    peer.py [PORT]

The show starts it and ends it. It ends with its standard input, so nothing is left behind.
"""
import signal
import socketserver
import sys
import threading

state = {"power": "OFF", "level": 0}


def answer(line):
    words = line.split()
    if words == ["STATE"]:
        return f"STATE {state['power']} {state['level']}"
    if len(words) == 2 and words[0] == "POWER" and words[1] in ("ON", "OFF"):
        state["power"] = words[1]
        return "OK"
    if len(words) == 2 and words[0] == "LEVEL" and words[1].isdigit() and int(words[1]) <= 100:
        state["level"] = int(words[1])
        return "OK"
    return "ERR what is " + line


class Client(socketserver.StreamRequestHandler):
    def handle(self):
        try:
            for line in self.rfile:
                self.wfile.write((answer(line.decode("latin-1").strip()) + "\r\n").encode("latin-1"))
        except ConnectionError:
            pass


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


signal.signal(signal.SIGINT, signal.SIG_IGN)  # Ctrl-C is for stagehost, which ends this one
with Server(("127.0.0.1", int(sys.argv[1]) if len(sys.argv) > 1 else @PORT@), Client) as server:
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print("ready", flush=True)
    sys.stdin.read()
