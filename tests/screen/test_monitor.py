"""The full screen of `zelk monitor`, in a terminal."""

import os
import re
import shlex
import signal
import sys
import time

import pytest

from conftest import PROGRAM

# Names that would change the screen or its colours, and one of wide and combining characters.
DATABASE = """VERSION ""
BS_:
BU_: N
BO_ 256 Engine: 8 N
 SG_ Speed : 0|16@1+ (0.25,0) [0|0] "rpm" N
 SG_ Gear : 16|8@1+ (1,0) [0|0] "" N
BO_ 512 Brakes: 2 N
 SG_ Pedal : 0|8@1+ (1,0) [0|0] "\x1b[31m\u202e\u6c34e\u0301" N
BO_ 768 Doors: 1 N
 SG_ Open : 0|8@1+ (1,0) [0|0] "" N
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 10000;
BA_DEF_DEF_ "GenMsgCycleTime" 0;
BA_ "GenMsgCycleTime" BO_ 768 100;
VAL_ 256 Gear 0 "Neutral" 1 "First \x1b]0;title\x07" ;
"""

SENDER = """
import itertools, sys, time
for i in itertools.count():
    now = time.time()
    print(f"({now:.6f}) can0 100#{i % 65536 >> 8:02X}{i % 256:02X}01", flush=False)
    print(f"({now:.6f}) can0 200#0700")
    if i == 0:
        print(f"({now:.6f}) can0 300#00")
    print(f"({now:.6f}) can1 1ABCDEF0#0102", flush=True)
    time.sleep(0.02)
"""


@pytest.fixture
def monitor(terminal, tmp_path):
    """Starts the monitor on frames that keep coming; the shell's prompt stands around it."""
    (tmp_path / "m.dbc").write_text(DATABASE, encoding="utf-8")
    (tmp_path / "sender.py").write_text(SENDER)

    def start(arguments="", source=f"{sys.executable} sender.py |", before="", setup="", **options):
        command = f"{source} {before} {PROGRAM} monitor m.dbc {arguments}; echo exit ${{PIPESTATUS[-1]}}"
        script = f"{setup} cd {shlex.quote(str(tmp_path))}; echo before; stty -g >a; {command}; stty -g >b; sleep 60"
        return terminal("bash -c " + shlex.quote(script), **options)

    start.folder = tmp_path
    return start


def rows_of(text):
    """The identifiers of the rows, from top to bottom."""
    return re.findall(r"^[▸▾+-].\s*(?:can\d\s+)?([0-9A-F]{3,8}) ", text, re.MULTILINE)


def wait_until(seen, what):
    for _ in range(200):
        if (result := seen()) == what:
            return
        time.sleep(0.05)
    assert result == what


def check_restored(screen, folder):
    """The old screen and settings are back, and the cursor is seen."""
    text = screen.wait_for("before", "exit")
    assert "Engine" not in text
    wait_until(lambda: (folder / "b").exists() and (folder / "b").read_text() != "", True)
    assert (folder / "a").read_text() == (folder / "b").read_text()
    flags = screen._tmux("display-message", "-p", "#{alternate_on}#{cursor_flag}#{mouse_any_flag}")
    assert flags.strip() == "010"
    return text


def test_sorts_filters_and_hides(monitor):
    screen = monitor()
    screen.wait_for("Engine", "Brakes", "1ABCDEF0", "(unknown)", "MISSING", "1 MISSING")
    assert rows_of(screen.text()) == ["100", "200", "300", "1ABCDEF0"]
    screen.keys("s")
    screen.wait_for("by name", "name↑")
    assert rows_of(screen.text()) == ["200", "300", "100", "1ABCDEF0"]
    screen.keys("S")
    screen.wait_for("by name reversed", "name↓")
    assert rows_of(screen.text()) == ["100", "300", "200", "1ABCDEF0"]
    screen.keys("/", "b", "R", "a")
    screen.wait_for("filter: bRa_")
    wait_until(lambda: rows_of(screen.text()), ["200"])
    screen.keys("C-u", "0", "x", "1", "a", "b", "Enter")
    wait_until(lambda: rows_of(screen.text()), ["1ABCDEF0"])
    screen.keys("Escape", "u")
    wait_until(lambda: rows_of(screen.text()), ["100", "300", "200"])
    screen.keys("m")
    wait_until(lambda: rows_of(screen.text()), ["300"])


def test_expands_and_draws_a_curve(monitor):
    screen = monitor()
    screen.wait_for("Engine")
    screen.keys("Enter")
    screen.wait_for("Speed", "rpm", '"First \\x1B]0;title\\x07"', "every")
    screen.keys("Down", "Down", "c")
    text = screen.wait_for("Engine.Speed = ", "last 30 s", "⣀")
    assert "●" in text
    screen.keys("-")
    screen.wait_for("last 60 s")
    screen.keys("c", "e")
    text = screen.wait_for("Pedal", "\\x1B[31m\\u202E水e\u0301")
    assert "last 60 s" not in text
    screen.keys("?")
    screen.wait_for("freeze the display")
    screen.keys("x")
    screen.wait_for("Pedal")


def test_freezes_while_frames_come(monitor):
    screen = monitor()
    screen.wait_for("Engine")
    screen.keys("Space")
    frozen = screen.wait_for("FROZEN").splitlines()
    time.sleep(0.3)
    later = screen.text().splitlines()
    assert later[1:] == frozen[1:]
    assert later[0] != frozen[0]
    screen.keys("Space")
    wait_until(lambda: "FROZEN" in screen.text(), False)


def test_records(monitor):
    screen = monitor()
    screen.wait_for("Engine")
    screen.keys("r", "o", "u", "t", ".", "l", "o", "g", "Enter")
    screen.wait_for("RECORDING out.log")
    time.sleep(0.2)
    screen.keys("r")
    screen.wait_for("frames recorded")
    lines = (monitor.folder / "out.log").read_text().splitlines()
    assert lines and all(re.fullmatch(r"\(\d+\.\d{6}\) can\d [0-9A-F]+#[0-9A-F]+", x) for x in lines)
    screen.keys("r", "/", "n", "o", "/", "x", "Enter")
    screen.wait_for("/no/x", "No such file")


def test_fits_any_size(monitor):
    screen = monitor()
    screen.wait_for("Engine")
    screen.keys("e", "c")
    screen.wait_for("last 30 s")
    for columns, lines in [(20, 5), (1, 1), (200, 50), (10, 2), (80, 24)]:
        screen.resize(columns, lines)
        time.sleep(0.15)
    text = screen.wait_for("Engine", "q quit")
    assert max(map(len, text.splitlines())) <= 80
    screen.keys("q")
    assert "exit 0" in check_restored(screen, monitor.folder)


@pytest.mark.parametrize(
    "name, status",
    [("INT", 130), ("TERM", 143), ("HUP", 129), ("QUIT", 131), ("SEGV", 139), ("ABRT", 134)],
)
def test_restores_the_terminal(monitor, name, status):
    screen = monitor(before="env sh -c 'echo $$ >pid; ulimit -c 0; exec \"$@\"' -")
    screen.wait_for("Engine")
    pid = (monitor.folder / "pid").read_text().strip()
    os.kill(int(pid), getattr(signal, "SIG" + name))
    assert f"exit {status}" in check_restored(screen, monitor.folder)


def test_is_suspended_and_goes_on(monitor):
    screen = monitor("; echo suspended; read; fg", setup="set -m;")
    screen.wait_for("Engine")
    screen.keys("C-z")
    assert "Engine" not in screen.wait_for("before", "suspended")
    screen.keys("Enter")
    screen.wait_for("Engine", "q quit")
    screen.keys("q")
    assert "exit 0" in check_restored(screen, monitor.folder)


def test_stays_when_the_input_ends(monitor):
    screen = monitor(source="echo '(1.5) can0 100#0001' |")
    screen.wait_for("ENDED", "Engine", "1 frame ")
    screen.keys("q")
    assert "exit 0" in check_restored(screen, monitor.folder)


@pytest.mark.parametrize(
    "environment, part",
    [({"TERM": "dumb"}, "cannot move its cursor"), ({"TERM": "no-such"}, "are unknown")],
)
def test_falls_back_to_plain_mode(monitor, environment, part):
    settings = " ".join(f"{name}={value}" for name, value in environment.items())
    screen = monitor(source="echo '(1.5) can0 100#0001' |", before=f"env {settings}")
    assert part in re.sub(r"\n", " ", screen.wait_for("no full screen", "Engine", "exit 0"))


def test_shows_what_the_terminal_can(monitor):
    screen = monitor(before="env LC_ALL=C NO_COLOR=1")
    screen.wait_for("Engine", "^id")
    screen.keys("e", "c")
    text = screen.wait_for("\\x1B[31m??e?", "last 30 s", "-!can0")
    assert text.isascii()
    assert not re.search(r"\x1b\[(\d+;)*[34][0-7]", screen.text(colors=True))
