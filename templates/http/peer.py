#!/usr/bin/env python3
"""The other end of @NAME@.js: a device that speaks HTTP and JSON.

    peer.py [PORT]

The show starts it and ends it. It ends with its standard input, so nothing is left behind.
"""
import http.server
import json
import signal
import sys
import threading

state = {"power": "off", "level": 0}


def is_state(change):
    return (
        isinstance(change, dict)
        and change.get("power", "on") in ("on", "off")
        and isinstance(change.get("level", 0), int)
        and 0 <= change.get("level", 0) <= 100
        and set(change) <= set(state)
    )


class Client(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def reply(self, code):
        text = json.dumps(state).encode()
        self.send_response(code)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(text)))
        self.end_headers()
        self.wfile.write(text)

    def do_GET(self):
        self.reply(200 if self.path == "/state" else 404)

    def do_PUT(self):
        text = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        try:
            change = json.loads(text)
        except ValueError:
            change = None
        if self.path == "/state" and is_state(change):
            state.update(change)
            self.reply(200)
        else:
            self.reply(400)

    def log_message(self, *words):
        pass


signal.signal(signal.SIGINT, signal.SIG_IGN)  # Ctrl-C is for stagehost, which ends this one
with http.server.ThreadingHTTPServer(("127.0.0.1", int(sys.argv[1]) if len(sys.argv) > 1 else @PORT@), Client) as server:
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print("ready", flush=True)
    sys.stdin.read()
