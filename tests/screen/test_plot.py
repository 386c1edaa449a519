"""Plots as pages, in a browser, and in characters, in a terminal."""

import os
import re

import pytest
from conftest import PROGRAM, accessibility_faults

DATABASE = """BS_:
BU_: N
BO_ 1 Motion: 8 N
 SG_ Speed : 0|16@1+ (0.5,0) [0|0] "km/h" N
 SG_ Level : 16|8@1+ (1,0) [0|0] "<b onclick='alert(1)'>&%" N
 SG_ Gear : 24|2@1+ (1,0) [0|3] "" N
VAL_ 1 Gear 0 "</script><script>alert(1)</script>" 1 "First" 2 "Second" 3 "x\x01" ;
"""


def frame(time, speed, level=0, gear=0):
    return f"({time:.6f}) can0 001#{(speed & 255):02X}{speed >> 8:02X}{level:02X}{gear:02X}\n"


@pytest.fixture
def plot(zelk, tmp_path):
    """Makes the page of a log."""

    def make(lines, *arguments, name="drive.log"):
        (tmp_path / "car.dbc").write_text(DATABASE)
        (tmp_path / name).write_text("".join(lines))
        zelk("plot", "car.dbc", name, "Speed", "Level", "Gear", "-o", "plot.html", *arguments, cwd=tmp_path)
        return tmp_path / "plot.html"

    return make


# Speed is half of the time in seconds: from 0 to 100 s, with a point each second.
RAMP = [frame(i, i, 7, i // 25 % 4) for i in range(101)]


def window(page):
    """The part of the time that is shown, in seconds."""
    return [float(number) for number in re.findall(r"[\d.]+", page.locator("#window").inner_text())]


def wait_for_window(page, begin, end, tolerance=0.3):
    page.wait_for_function(
        """([begin, end, tolerance]) => {
          const shown = document.getElementById('window').textContent.match(/[\\d.]+/g).map(Number);
          return Math.abs(shown[0] - begin) <= tolerance && Math.abs(shown[1] - end) <= tolerance;
        }""",
        arg=[begin, end, tolerance],
        timeout=5000,
    )


def at(page, part, chart=0):
    """A place in a chart, at a part of its width."""
    box = page.locator(".u-over").nth(chart).bounding_box()
    return box["x"] + part * box["width"], box["y"] + box["height"] / 2


def values(page):
    return page.locator("tbody tr td:nth-child(3)").all_inner_texts()


def test_mouse_and_keys(plot, show):
    page = show(plot(RAMP, "--relative"))
    wait_for_window(page, 0, 100, 0)

    page.mouse.move(*at(page, 0.505))
    page.locator("#cursor", has_text="at 50.").wait_for()
    assert values(page) == ["25", "7", "Second"]
    page.mouse.move(*at(page, 0.205, chart=2))
    page.locator("#cursor", has_text="at 20.").wait_for()
    assert values(page) == ["10", "7", "</script><script>alert(1)</script>"]

    page.mouse.move(*at(page, 0.2))
    page.mouse.down()
    page.mouse.move(*at(page, 0.6), steps=4)
    page.mouse.up()
    wait_for_window(page, 20, 60)
    page.keyboard.down("Shift")
    page.mouse.move(*at(page, 0.5))
    page.mouse.down()
    page.mouse.move(*at(page, 0.75), steps=4)
    page.mouse.up()
    page.keyboard.up("Shift")
    wait_for_window(page, 10, 50)
    page.mouse.wheel(0, -300)
    wait_for_window(page, 27.8, 44.1, 1)
    page.mouse.dblclick(*at(page, 0.5))
    wait_for_window(page, 0, 100, 0)

    page.locator("#charts").focus()
    page.keyboard.press("Escape")
    for key, begin, end in [
        ("+", 25, 75), ("ArrowRight", 30, 80), ("ArrowLeft", 25, 75), ("End", 50, 100), ("-", 0, 100),
        ("+", 25, 75), ("PageDown", 50, 100), ("Home", 0, 100),
    ]:  # fmt: skip
        page.keyboard.press(key)
        wait_for_window(page, begin, end)
    for key, speed in [("ArrowRight", "0.5"), ("ArrowRight", "1"), ("ArrowLeft", "0.5")]:
        page.keyboard.press(f"Shift+{key}")
        page.locator("#curve-rows td:nth-child(3)", has_text=re.compile(f"^{re.escape(speed)}$")).wait_for()


def test_what_is_not_shown(plot, show):
    page = show(plot(RAMP))
    canvas = page.locator("canvas").first
    whole = canvas.screenshot()
    button = page.get_by_role("button", name="Speed")
    button.click()
    assert button.get_attribute("aria-pressed") == "false"
    page.wait_for_timeout(100)
    assert canvas.screenshot() != whole
    lanes = page.locator("canvas").last
    height = lanes.bounding_box()["height"]
    page.get_by_role("button", name="Gear").click()
    page.wait_for_timeout(100)
    assert lanes.bounding_box()["height"] < height


def test_dates(plot, show):
    page = show(plot([frame(1700000004 + i / 1000, i) for i in range(11)]))
    page.locator("#window", has_text="2023-11-14 22:13:24.000").wait_for()
    page.locator("#charts").focus()
    page.keyboard.press("t")
    page.locator("#window", has_text="0.010").wait_for()


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_everyone_can_read_it(plot, show, scheme):
    page = show(plot(RAMP, name="<img src=x onerror=alert(1)>.log" if os.name == "posix" else "a.log"), color_scheme=scheme)
    page.mouse.move(*at(page, 0.5))
    assert accessibility_faults(page) == []
    assert page.locator("h1").inner_text().startswith("<img src=x onerror=alert(1)>.log")
    assert page.locator("thead th").count() == 13
    assert page.locator("#curve-rows tr").first.locator("td").all_inner_texts()[2:] == ["km/h", "0", "50", "24.75", "101"]


PEAK = """() => {
  const canvas = document.querySelector('canvas');
  const { data, width, height } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
  let highest = height;
  for (let i = 0; i < data.length; i += 4) {
    const isCurve = data[i] < 60 && data[i + 2] > 140 && data[i + 3] > 100;
    if (isCurve) highest = Math.min(highest, Math.floor(i / 4 / width));
  }
  return highest / height;
}"""


def test_one_peak_among_many_points(plot, show):
    count = 400_000
    page = show(plot([frame(i / 1000, 40_000 if i == 123_457 else i % 7) for i in range(count)]))
    page.locator(".u-over").first.wait_for()
    page.wait_for_timeout(200)
    assert page.evaluate(PEAK) < 0.15
    assert page.locator("#curve-rows tr").first.locator("td").last.inner_text() == str(count)
    page.locator("#charts").focus()
    for _ in range(30):
        page.keyboard.press("+")
    page.wait_for_timeout(200)
    begin, end = window(page)
    assert end - begin < 0.001


def test_in_a_terminal(plot, terminal):
    folder = plot(RAMP, "--relative").parent
    command = f"{PROGRAM} plot car.dbc drive.log Speed Gear --relative; read wait"
    colored = terminal(f"cd '{folder}'; {command}", columns=60, lines=20)
    lines = colored.wait_for("100", "Gear", "\x1b[36m", "┴", colors=True).splitlines()
    assert any("\u2800" < c <= "\u28ff" for line in lines for c in line)
    assert all(len(re.sub(r"\x1b\[[\d;]*m", "", line)) <= 60 for line in lines)
    plain = terminal(f"cd '{folder}'; NO_COLOR=1 LC_ALL=C {command}", columns=60, lines=20)
    text = plain.wait_for("100", "Gear", "+--", colors=True)
    assert "\x1b[36m" not in text and text.isascii()
