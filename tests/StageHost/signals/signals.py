#!/usr/bin/env python3
"""Sends signals to the program at random instants of its commands. It ends as it was asked to or goes on as before, leaves no file torn
and nothing running behind it, and a second request to end always ends it.

    signals.py STAGEHOST COUNT [SEED]
"""
import glob
import json
import os
import random
import signal
import subprocess
import sys
import tempfile
import time

stagehost, count = os.path.abspath(sys.argv[1]), int(sys.argv[2])
seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
LIMIT = 60
ENDING = [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]
OTHERS = [signal.SIGWINCH, signal.SIGSTOP, signal.SIGCONT, signal.SIGPIPE]
FAULTS = {-signal.SIGSEGV, -signal.SIGABRT, -signal.SIGBUS, -signal.SIGFPE, -signal.SIGILL}

LAMP = """({
    Info: { Setup: { channel: { MinValue: 1, MaxValue: 512 } } },
    Setup: { channel: 1 },
    Go: function () {
        var id = QCalverin.PostponeResult();
        QCalverin.SetTimeout(function () { QCalverin.SetResult(id, "gone"); }, 200);
    },
    Hang: function () { while (true) {} }
})
"""
PEER = """import subprocess, sys
subprocess.Popen(["sleep", "600"], start_new_session=True)
print("ready", flush=True)
sys.stdin.read()
"""
SHOW = {
    "variables": [{"name": "Level", "type": "Integer"}],
    "peers": [{"name": "other end", "run": ["python3", "peer.py"]}],
    "devices": [{"name": "lamp", "driver": "lamp.js"}],
    "steps": [{"device": "lamp", "command": "Go"}, {"set": {"Level": 3}}, {"pause": 100}],
}

COMMANDS = {
    "run": ["run", "--junit", "steps.xml", "show.json"],
    "watch": ["watch", "show.json"],
    "exec": ["exec", "lamp.js", "Go"],
    "setup": ["setup", "show.json", "lamp", "channel=7"],
}
LINES = b"set Level 2\npause 100\nsend lamp Go\nlist\nquit\n"


def lay_out(folder):
    for name, text in (("lamp.js", LAMP), ("peer.py", PEER), ("show.json", json.dumps(SHOW))):
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)


def begin(folder, words, stdin=None):
    environment = dict(os.environ, HOME=folder, TMPDIR=folder, QT_QPA_PLATFORM="offscreen", XDG_RUNTIME_DIR=folder)
    with open(folder + "/lines", "wb") as file:
        file.write(LINES)
    with open(folder + "/lines", "rb") as lines, open(folder + "/told", "wb") as told:
        return subprocess.Popen([stagehost, *words], cwd=folder, env=environment, stdin=stdin or lines, stdout=told, stderr=told)


def told(folder):
    with open(folder + "/told", encoding="utf-8", errors="replace") as file:
        return file.read()


def running_in(folder):
    """Processes that work in a folder: what the program has left behind."""
    found = []
    for link in glob.glob("/proc/[0-9]*/cwd"):
        try:
            if os.readlink(link) == folder:
                found.append(link.split("/")[2])
        except OSError:
            pass
    return found


def files_are_whole(folder):
    with open(folder + "/show.json", encoding="utf-8") as file:
        show = json.load(file)  # a torn one is no JSON
    setup = show["devices"][0].pop("setup", None)
    if show != SHOW or (setup is not None and 'Value="7"' not in setup):
        return "the show file is neither the old nor the new one"
    if os.path.exists(folder + "/steps.xml"):
        with open(folder + "/steps.xml", encoding="utf-8") as file:
            if not file.read().rstrip().endswith(">"):
                return "the report is torn"
    return None


def wait_for(process, what):
    try:
        return process.wait(LIMIT)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        raise SystemExit(f"{what}: does not end")


def judge(folder, code, undisturbed, sent):
    if code in FAULTS:
        return f"ends by {signal.Signals(-code).name}"
    ending = [number for number in sent if number in ENDING + [signal.SIGPIPE]]
    if code < 0 and -code not in ending:
        return f"ends by {signal.Signals(-code).name}, which nobody sent"
    if not ending and code != undisturbed:
        return f"ends with {code}, not {undisturbed}"
    deadline = time.monotonic() + LIMIT
    while running_in(folder) and time.monotonic() < deadline:
        time.sleep(0.01)
    if running_in(folder):
        return "leaves something running"
    left = glob.glob(folder + "/stagehost*")
    if code >= 0 and left:
        return f"leaves {left} behind"
    return files_are_whole(folder)


def play(chance, name, duration, undisturbed):
    """Sends one signal or two, and looks at the end."""
    with tempfile.TemporaryDirectory(prefix="signals-") as folder:
        os.chmod(folder, 0o700)
        folder = os.path.realpath(folder)
        lay_out(folder)
        sent = [chance.choice(ENDING + OTHERS)]
        if sent[0] in ENDING and chance.random() < 0.5:
            sent.append(chance.choice(ENDING))
        if sent[0] == signal.SIGSTOP:
            sent.append(signal.SIGCONT)
        process = begin(folder, COMMANDS[name])
        time.sleep(chance.uniform(0, duration * 1.1))
        for number in sent:
            process.send_signal(number)
            time.sleep(chance.uniform(0, 0.05))
        code = wait_for(process, f"{name}, {sent}")
        problem = judge(folder, code, undisturbed, sent)
        return problem and f"{name}, {[signal.Signals(number).name for number in sent]}: {problem}\n{told(folder)}"


def wait_for_text(process, folder, text):
    deadline = time.monotonic() + LIMIT
    while text not in told(folder):
        if time.monotonic() > deadline or process.poll() is not None:
            raise SystemExit(f"{text!r} does not come: {told(folder)}")
        time.sleep(0.01)


def second_one_ends_it():
    """Whatever hangs, and whichever two they are."""
    for first in ENDING:
        for second in ENDING:
            with tempfile.TemporaryDirectory(prefix="signals-") as folder:
                folder = os.path.realpath(folder)
                lay_out(folder)
                with open(folder + "/hang.js", "w", encoding="utf-8") as file:
                    # Once it hangs it says so, and does not come back.
                    file.write('({ F: function () { print("here"); while (true) {} } })')
                process = begin(folder, ["exec", "--timeout", "600000", "hang.js", "F"])
                wait_for_text(process, folder, "here")
                process.send_signal(first)
                process.send_signal(second)
                started = time.monotonic()
                code = wait_for(process, f"{first.name} and {second.name}")
                if code not in (3, -second, -first):
                    raise SystemExit(f"{first.name} and {second.name}: ends with {code}\n{told(folder)}")
                if time.monotonic() - started > 30:
                    raise SystemExit(f"{first.name} and {second.name}: takes {time.monotonic() - started:.0f} s to end")


def one_stops_the_show():
    """Each of them ends a show as it ends by itself: devices are stopped, and that is told by the exit code."""
    for number in ENDING:
        with tempfile.TemporaryDirectory(prefix="signals-") as folder:
            folder = os.path.realpath(folder)
            lay_out(folder)
            with open(folder + "/lamp.js", "w", encoding="utf-8") as file:
                file.write('({ _mStart: function () { print("here"); }, _mStop: function () { print("stopped"); } })')
            with open(folder + "/show.json", "w", encoding="utf-8") as file:
                json.dump({"devices": SHOW["devices"], "peers": SHOW["peers"], "steps": [{"pause": 600000}]}, file)
            process = begin(folder, ["run", "show.json"])
            wait_for_text(process, folder, "here")
            wait_for_text(process, folder, "1. ")
            process.send_signal(number)
            code = wait_for(process, number.name)
            if code != 3 or "stopped" not in told(folder):
                raise SystemExit(f"{number.name}: ends with {code}, and the device was not stopped\n{told(folder)}")


def killed_ones_folder_goes_at_the_next_start():
    """And only that: the folder of one that lives stays."""
    with tempfile.TemporaryDirectory(prefix="signals-") as folder:
        folder = os.path.realpath(folder)
        lay_out(folder)
        with open(folder + "/show.json", "w", encoding="utf-8") as file:
            json.dump({"steps": [{"say": "here", "pause": 600000}]}, file)
        killed = begin(folder, ["run", "show.json"])
        wait_for_text(killed, folder, "here")
        killed.send_signal(signal.SIGKILL)
        wait_for(killed, "SIGKILL")
        left = glob.glob(folder + "/stagehost-*")
        living = begin(folder, ["run", "show.json"])
        wait_for_text(living, folder, "here")
        kept = glob.glob(folder + "/stagehost-*")
        if len(left) != 1 or len(kept) != 1 or left == kept:
            raise SystemExit(f"the folder of one that was killed stays: {left}, {kept}")
        wait_for(begin(folder, ["exec", "lamp.js", "Go"]), "exec")
        if glob.glob(folder + "/stagehost-*") != kept:
            raise SystemExit("the folder of one that lives has gone")
        living.send_signal(signal.SIGTERM)
        wait_for(living, "SIGTERM")
        if glob.glob(folder + "/stagehost-*"):
            raise SystemExit("a folder stays")


def ignored_stays_ignored():
    """Who starts it so that it outlives the terminal has it outlive that."""
    with tempfile.TemporaryDirectory(prefix="signals-") as folder:
        folder = os.path.realpath(folder)
        lay_out(folder)
        signal.signal(signal.SIGHUP, signal.SIG_IGN)
        process = begin(folder, COMMANDS["run"])
        signal.signal(signal.SIGHUP, signal.SIG_DFL)
        wait_for_text(process, folder, "1. ")
        process.send_signal(signal.SIGHUP)
        code = wait_for(process, "SIGHUP that is ignored")
        if code != 0:
            raise SystemExit(f"SIGHUP that was to be ignored ends it with {code}\n{told(folder)}")


# Commands that go on until they are ended, and what they say once they do.
LASTING = {
    "run": (["run", "show.json"], "here", 3),
    "watch": (["watch", "show.json"], "runs.", 0),
    "counterpart": (["counterpart", "fake.js"], "plays at", 0),
    "record": (["record", "--udp", "127.0.0.1:9", "new.traffic"], "leads to", 0),
    "replay": (["replay", "old.traffic"], "plays", 0),
}


def lay_out_lasting(folder):
    lay_out(folder)
    for name, text in (
        ("show.json", json.dumps({"steps": [{"say": "here", "pause": 600000}]})),
        ("fake.js", "Counterpart.tcp();"),
        ("old.traffic", '{"device":"127.0.0.1:9","kind":"tcp","traffic":1}\n'),
    ):
        with open(folder + "/" + name, "w", encoding="utf-8") as file:
            file.write(text)


def one_in_the_background_is_ended_by_name():
    """A shell without job control has what it begins with "&" ignore Ctrl-C: a script that ends it so is heard all the same."""
    for name, (words, ready, expected) in LASTING.items():
        for number in (signal.SIGINT, signal.SIGTERM):
            with tempfile.TemporaryDirectory(prefix="signals-") as folder:
                folder = os.path.realpath(folder)
                lay_out_lasting(folder)
                before = signal.signal(number, signal.SIG_IGN)
                process = begin(folder, words, stdin=subprocess.PIPE)
                signal.signal(number, before)
                wait_for_text(process, folder, ready)
                process.send_signal(number)
                code = wait_for(process, f"{name} in the background, {number.name}")
                process.stdin.close()
                if code != expected:
                    raise SystemExit(f"{name} in the background: {number.name} ends it with {code}, not {expected}\n{told(folder)}")


def main():
    signal.signal(signal.SIGHUP, signal.SIG_DFL)  # under nohup it would be ignored here, and so in every program that is begun
    chance = random.Random(seed)
    one_stops_the_show()
    second_one_ends_it()
    killed_ones_folder_goes_at_the_next_start()
    ignored_stays_ignored()
    one_in_the_background_is_ended_by_name()
    usual = {}
    for name, words in COMMANDS.items():
        with tempfile.TemporaryDirectory(prefix="signals-") as folder:
            folder = os.path.realpath(folder)
            lay_out(folder)
            started = time.monotonic()
            code = wait_for(begin(folder, words), name)
            usual[name] = (time.monotonic() - started, code)
            if code != 0:
                sys.exit(f"{name} without a signal ends with {code}: {told(folder)}")
    problems = []
    for _ in range(count):
        name = chance.choice(list(COMMANDS))
        problem = play(chance, name, *usual[name])
        if problem:
            problems.append(problem)
            print(problem, flush=True)
    if problems:
        sys.exit(f"{len(problems)} of {count} signals were not met well (seed {seed})")
    print(f"{count} signals at random instants, each met")


main()
