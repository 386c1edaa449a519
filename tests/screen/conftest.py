"""What tests of the program's pages and full screens share: the program, a browser, a terminal."""

import os
import pathlib
import subprocess
import time
import uuid

import pytest
from playwright.sync_api import sync_playwright

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = os.environ.get("ZELK_PROGRAM", str(ROOT / "build/release/bin/zelk"))
AXE = pathlib.Path("/usr/src/axe-core/axe.min.js")
PATIENCE_SECONDS = 30


@pytest.fixture(scope="session")
def zelk():
    """Runs the program: `zelk("report", path, cwd=...)` gives its subprocess.CompletedProcess."""

    def run(*arguments, **options):
        options = {"capture_output": True, "timeout": 120, "check": True} | options
        return subprocess.run([PROGRAM, *map(str, arguments)], **options)

    return run


@pytest.fixture(scope="session")
def browser():
    with sync_playwright() as playwright:
        browser = playwright.chromium.launch(
            executable_path="/usr/bin/chromium", args=["--no-sandbox", "--disable-dev-shm-usage"]
        )
        yield browser
        browser.close()


@pytest.fixture
def show(browser):
    """Opens a page from disk; `show(path, color_scheme="dark")`. A request to anywhere else, an error
    of a script and a message box (a script that came from a database) fail the test."""
    contexts, faults = [], []

    def open_page(path, **options):
        context = browser.new_context(**options)
        contexts.append(context)
        page = context.new_page()
        page.on("pageerror", lambda error: faults.append(f"script: {error}"))
        page.on("dialog", lambda dialog: (faults.append(f"box: {dialog.message}"), dialog.dismiss()))
        page.on(
            "request",
            lambda request: request.url.startswith(("file:", "data:", "blob:"))
            or faults.append(f"request: {request.url}"),
        )
        page.goto(pathlib.Path(path).resolve().as_uri())
        return page

    yield open_page
    for context in contexts:
        context.close()
    assert not faults


def accessibility_faults(page):
    """What axe finds against WCAG 2.1 A and AA: one text for each rule, with the first elements."""
    page.evaluate(AXE.read_text(encoding="utf-8"))
    result = page.evaluate(
        "axe.run({runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'best-practice']})"
    )
    return [
        f"{fault['id']}: {fault['help']}: {[node['html'] for node in fault['nodes'][:3]]}"
        for fault in result["violations"]
    ]


class Terminal:
    """A terminal of tmux, in which a shell command runs."""

    def __init__(self, command, columns=100, lines=30, environment=None):
        self.server = f"zelk-{uuid.uuid4().hex}"
        variables = {"LC_ALL": "C.UTF-8", **(environment or {})}
        settings = [word for name, value in variables.items() for word in ("-e", f"{name}={value}")]
        self._tmux("-f", "/dev/null", "new-session", "-d", "-x", str(columns), "-y", str(lines), *settings, command)
        self._tmux("set-option", "-g", "remain-on-exit", "on")

    def _tmux(self, *arguments):
        command = ["tmux", "-u", "-L", self.server, *arguments]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def keys(self, *names):
        """Presses keys, as tmux names them: "q", "Down", "C-c", "Escape"."""
        self._tmux("send-keys", *names)

    def text(self, colors=False):
        """What is on the screen; with `colors`, its escape sequences too."""
        return self._tmux("capture-pane", "-p", *(["-e"] if colors else []))

    def wait_for(self, *parts, colors=False):
        """Waits until all parts are on the screen, and returns its text."""
        end = time.monotonic() + PATIENCE_SECONDS
        while not all(part in (text := self.text(colors)) for part in parts):
            assert time.monotonic() < end, f"{parts} did not come:\n{text}"
            time.sleep(0.05)
        return text

    def resize(self, columns, lines):
        self._tmux("resize-window", "-x", str(columns), "-y", str(lines))

    def close(self):
        subprocess.run(["tmux", "-L", self.server, "kill-server"], check=False, capture_output=True)


@pytest.fixture
def terminal():
    """Makes terminals: `terminal("zelk ...")`; they are closed when the test ends."""
    terminals = []

    def make(command, **options):
        terminals.append(Terminal(command, **options))
        return terminals[-1]

    yield make
    for each in terminals:
        each.close()
