#!/usr/bin/env python3
"""Fails one call of the system after the other under a fixed evening of work, and looks at what becomes of it: no crash, no hang, a
failure that is told, and what was stored before as it was, or whole as it was to become.

    faults.py BIN [--kind KIND]... [--part PART]... [--most N] [--from N] [--to N] [--jobs N] [--verbose]

Of allocations only those count that code of the program itself makes, or the library of the language for it. Those of Qt and of the
script engine are not failed: they end the process by themselves, at dozens of places. Those of `stagehost` are failed only where --kind
allocation asks for it; those of the module in a host of another kind always are.

Without --most every call is failed that an evening makes; with it, N of each kind in each part, spread evenly. Kinds are those of
FaultyCalls.cpp; "host", where the host itself refuses a call that the module makes of it; and those where every second or third call is short
or interrupted.
"""
import argparse
import collections
import concurrent.futures
import http.server
import json
import os
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import threading

here = os.path.dirname(os.path.abspath(__file__))
KINDS = ["thread", "descriptor", "write", "read", "short-write", "short-read", "interrupt", "allocation", "host"]
OFTEN = ["short-write", "short-read", "interrupt"]
LIMIT = 90  # seconds for one run on a busy machine; a run takes less than one
OLD_FILE = b"what was kept the last time\n" * 40
NEW_FILE = b"what the server has\n" * 400

# Where a library ends the process by itself. The words are those of the stack of the call that failed, or of what the library says.
# docs/scripts.md tells them to those who write scripts.
LIBRARY_ENDS = {
    # Its D-Bus thread, which the network part of the toolkit starts, does not start, and is waited for or torn down all the same.
    "thread": [r"QDBusConnection"],
    "descriptor": [r"Can not continue without a thread pipe", r"no Qt platform plugin could be initialized"],
}


class Server(http.server.BaseHTTPRequestHandler):
    """One port for lines, which come back, and for pages."""

    protocol_version = "HTTP/1.1"

    def handle_one_request(self):
        self.raw_requestline = self.rfile.readline(65537)
        if self.raw_requestline.startswith((b"GET ", b"HEAD ")):
            if self.parse_request():
                self.do_GET()
            return
        self.close_connection = not self.raw_requestline
        self.wfile.write(self.raw_requestline)

    def do_GET(self):
        body = NEW_FILE if self.path == "/file" else b"a page"
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def handle(self):
        try:
            super().handle()
        except OSError:
            pass  # the other side has failed, on purpose

    def log_message(self, *words):
        pass


class Part:
    """One program of the evening: its words, and what has to be whole behind it."""

    def __init__(self, name, program, words, whole=None):
        self.name, self.program, self.words, self.whole = name, program, words, whole or (lambda folder, code: None)


def show_is_whole(changed):
    """The show file is the old one, where a failure was told, or the new one with what was to be stored."""

    def look(folder, code):
        with open(folder + "/show.json", "rb") as file:
            now = file.read()
        with open(folder + "/before.json", "rb") as file:
            before = file.read()
        if now == before:
            return None if code != 0 else "nothing was stored, and no failure is told"
        try:
            return None if changed(json.loads(now)) else "the show file has changed, and not to what was stored"
        except ValueError:
            return "the show file is torn"

    return look


def download_is_whole(folder, _):
    with open(folder + "/kept.txt", "rb") as file:
        now = file.read()
    if now not in (OLD_FILE, NEW_FILE):
        return "the file of the download is torn"
    junit = folder + "/steps.xml"
    if os.path.exists(junit):
        with open(junit, encoding="utf-8") as file:
            text = file.read()
        if not text.rstrip().endswith("</testsuites>") and not text.rstrip().endswith("</testsuite>"):
            return "the report is torn"
    return None


def parts_of(folder_of_programs):
    stagehost = folder_of_programs + "/stagehost"
    return [
        Part("run", stagehost, ["run", "--junit", "steps.xml", "--log-file", "log.txt", "show.json"], download_is_whole),
        Part(
            "setup",
            stagehost,
            ["setup", "show.json", "lamp", "channel=7"],
            show_is_whole(lambda show: 'Value="7"' in show["devices"][0]["setup"]),
        ),
        Part(
            "store",
            stagehost,
            ["store", "show.json", "Half", "lamp", "Fade to", "level=50"],
            show_is_whole(lambda show: "Fade to" in show["commands"][0]["xml"]),
        ),
        Part("module", folder_of_programs + "/module_evening", ["{port}", "kept.txt"], download_is_whole),
    ]


class Evening:
    def __init__(self, programs, port, owners):
        self.programs, self.port, self.owners = programs, port, owners

    def lay_out(self, folder):
        shutil.copytree(here + "/evening", folder, dirs_exist_ok=True)
        with open(folder + "/show.json", encoding="utf-8") as file:
            show = file.read().replace('"value": 1 }', f'"value": {self.port} }}')
        for name in ("show.json", "before.json"):
            with open(f"{folder}/{name}", "w", encoding="utf-8") as file:
                file.write(show)
        with open(folder + "/kept.txt", "wb") as file:
            file.write(OLD_FILE)

    def play(self, part, kind, at=0, every=0):
        """Plays one part with a fault. Gives how often it could have failed, and what is wrong."""
        with tempfile.TemporaryDirectory(prefix="faults-") as folder:
            self.lay_out(folder)
            os.chmod(folder, 0o700)
            count, stack = folder + "/count", folder + "/stack"
            with open(count, "wb") as file:
                file.write(bytes(8))
            environment = dict(
                os.environ,
                HOME=folder,
                TMPDIR=folder,
                XDG_DATA_HOME=folder + "/home",
                XDG_RUNTIME_DIR=folder,
                QT_QPA_PLATFORM="offscreen",
                LC_ALL="C.UTF-8",
                LD_PRELOAD=self.programs + "/faultycalls.so",
                FAULTS_PROGRAM=os.path.basename(part.program),
                FAULTS_KIND=kind,
                FAULTS_AT=str(at),
                FAULTS_EVERY=str(every),
                FAULTS_OWNERS=self.owners,
                FAULTS_COUNT=count,
                FAULTS_STACK=stack,
            )
            words = [word.format(port=self.port) for word in part.words] + ([str(at)] if kind == "host" else [])
            program = subprocess.Popen(
                [part.program, *words],
                cwd=folder,
                env=environment,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=subprocess.PIPE,
            )
            try:
                output, errors = program.communicate(timeout=LIMIT)
                hangs = False
            except subprocess.TimeoutExpired:
                hangs = True
                place = subprocess.run(
                    ["gdb", "-p", str(program.pid), "-batch", "-ex", "thread apply all bt 14"], capture_output=True, text=True
                ).stdout if shutil.which("gdb") else ""
                program.kill()
                output, errors = program.communicate()
                errors += place.encode()
            with open(count, "rb") as file:
                reached = struct.unpack("Q", file.read(8))[0]
            struck = ""
            if os.path.exists(stack):
                with open(stack, encoding="utf-8", errors="replace") as file:
                    struck = file.read()
            told = (output + errors).decode(errors="replace")
            asked = re.search(r"the module has asked (\d+) times", told)
            if kind == "host" and asked:
                reached = int(asked[1])
            if hangs:
                problem = "hangs"
            elif program.returncode < 0:
                problem = f"ends by {signal.Signals(-program.returncode).name}"
            elif program.returncode != 0 and not told.strip():
                problem = f"ends with {program.returncode} and says nothing"
            else:
                problem = part.whole(folder, program.returncode)
            return reached, problem, program.returncode, told, struck


def is_the_library(kind, problem, told, struck):
    return problem.startswith("ends by ") and any(re.search(words, told + struck) for words in LIBRARY_ENDS.get(kind, []))


def numbers(count, first, most):
    if most == 0 or count - first + 1 <= most:
        return list(range(first, count + 1))
    step = (count - first + 1) / most
    return sorted({first + int(i * step) for i in range(most)})


def main():
    reader = argparse.ArgumentParser()
    reader.add_argument("programs")
    reader.add_argument("--kind", action="append")
    reader.add_argument("--part", action="append")
    reader.add_argument("--most", type=int, default=0)
    reader.add_argument("--from", type=int, default=1, dest="first")
    reader.add_argument("--to", type=int, default=0, dest="last")
    reader.add_argument("--owners", default="stagehost:kxpCalverinScript.kxp6:logsE.so", help="whose allocations fail")
    reader.add_argument("--jobs", type=int, default=2)
    reader.add_argument("--verbose", action="store_true")
    wanted = reader.parse_args()
    programs = os.path.abspath(wanted.programs)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    evening = Evening(programs, server.server_port, wanted.owners)
    parts = [part for part in parts_of(programs) if not wanted.part or part.name in wanted.part]
    plan = []
    for part in parts:
        for kind in wanted.kind or KINDS:
            if kind == "allocation" and part.name != "module" and not wanted.kind:
                continue  # what the engine needs for a value of ours ends the process now and then, elsewhere on each machine
            if part.name != "module" and kind == "host":
                continue
            count, problem, code, told, _ = evening.play(part, kind)
            if problem or code != 0 or count == 0:
                sys.exit(f"{part.name} without a fault ({kind}, {count} calls): {problem}, {code}\n{told}")
            chosen = numbers(min(count, wanted.last or count), wanted.first, wanted.most)
            print(f"{part.name}, {kind}: {count} calls, {len(chosen)} of them fail", flush=True)
            plan += [(part, kind, at, 0) for at in chosen]
            if kind in OFTEN:
                plan += [(part, kind, 0, every) for every in (2, 3)]
    bad = 0
    told_codes = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(wanted.jobs) as pool:
        runs = {pool.submit(evening.play, *entry): entry for entry in plan}
        for done in concurrent.futures.as_completed(runs):
            part, kind, at, every = runs[done]
            reached, problem, code, told, struck = done.result()
            here_it_is = f"{part.name}, {kind}, " + (f"the call {at}" if at else f"every call {every}")
            told_codes[f"{kind}: exit code {code}"] += 1
            if problem and is_the_library(kind, problem, told, struck):
                told_codes[f"{kind}: ended by a library, as it is told"] += 1
                problem = None
            if problem or wanted.verbose:
                print(f"{here_it_is}: {problem or code}\n{told[-6000:]}\n{struck}", flush=True)
            bad += 1 if problem else 0
    for line, count in sorted(told_codes.items()):
        print(f"  {line}: {count}")
    if bad:
        sys.exit(f"{bad} of {len(plan)} faults were not met well")
    print(f"{len(plan)} faults, each met")


main()
