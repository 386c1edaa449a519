"""Bit layouts in the pages of reports."""

import pytest

from conftest import accessibility_faults

HEAD = "BS_:\nBU_: N\n"
MOTION = """BO_ 100 Motion: 8 N
 SG_ Speed : 7|16@0+ (0.1,0) [0|400] "km/h" N
 SG_ Torque : 16|12@1- (0.5,-100) [-100|900] "Nm" N
 SG_ AVeryLongNameOfAFlag : 31|1@1+ (1,0) [0|1] "" N
"""
PAGES = """BO_ 103 Pages: 8 N
 SG_ Page M : 0|4@1+ (1,0) [0|15] "" N
 SG_ P0 m0 : 8|16@1+ (1,0) [0|15] "" N
 SG_ Sub m2M : 8|4@1+ (1,0) [0|15] "" N
 SG_ S0 m0 : 16|8@1+ (1,0) [0|15] "" N
 SG_ S1 m1 : 16|16@0+ (1,0) [0|15] "" N
VAL_ 103 Page 0 "<script>alert(1)</script>\x01\u202e" ;
SG_MUL_VAL_ 103 P0 Page 0-0;
SG_MUL_VAL_ 103 Sub Page 2-2;
SG_MUL_VAL_ 103 S0 Sub 0-0;
SG_MUL_VAL_ 103 S1 Sub 1-3, 5-5;
"""


@pytest.fixture
def report(tmp_path, zelk, show):
    def make(text, **options):
        (tmp_path / "in.dbc").write_text(HEAD + text, encoding="utf-8")
        zelk("report", tmp_path / "in.dbc", "-o", tmp_path / "out.html")
        return show(tmp_path / "out.html", **options)

    return make


def point_at(page, shape):
    """Moves the mouse to the name in a shape: the middle of what surrounds it may lie outside."""
    page.locator(shape).scroll_into_view_if_needed()
    box = page.locator(f"{shape} > text").bounding_box()
    page.mouse.move(box["x"] + box["width"] / 2, box["y"] + box["height"] / 2)


def lit(page):
    return page.evaluate("[...document.querySelectorAll('.on')].map(e => e.dataset.n ?? e.cells[0].innerText)")


def test_the_mouse_tells_the_signal(report):
    page = report(MOTION)
    point_at(page, '#message-100 g[data-n="2"]')
    box = page.locator("#signal-box")
    for part in ("Torque", "12", "Intel, signed", "0.5", "-100", "Nm"):
        assert part in box.inner_text()
    assert lit(page) == ["2", "Torque"]
    page.mouse.move(5, 5)
    assert not box.is_visible() and lit(page) == []
    page.locator('#message-100 table.signals tr:has-text("Speed")').hover()
    assert lit(page)[0] == "1"


def test_the_keyboard_walks_over_signals(report):
    page = report(MOTION)
    stops = page.evaluate("document.querySelectorAll('#message-100 .bits [tabindex=\"0\"]').length")
    assert stops == 1
    page.locator('#message-100 g[data-n="1"]').focus()
    for key, name in (("ArrowRight", "Torque"), ("End", "AVeryLong"), ("ArrowDown", "AVeryLong"), ("Home", "Speed")):
        page.keyboard.press(key)
        assert name in page.locator("#signal-box").inner_text()
        assert name in page.evaluate("document.activeElement.getAttribute('aria-label')")
    page.keyboard.press("Escape")
    assert not page.locator("#signal-box").is_visible()
    page.keyboard.press("Enter")
    assert page.evaluate("location.hash") == "#100.Speed"


def test_a_multiplexor_value_is_selected(report):
    page = report(PAGES)
    figures = page.locator("#message-103 figure")
    shown = lambda: [i for i in range(figures.count()) if figures.nth(i).is_visible()]
    select = page.get_by_role("combobox", name="Multiplexor value")
    assert shown() == [0]
    assert "<script>alert(1)</script>" in select.locator("option").first.inner_text()
    select.select_option(label="Page = 2, Sub = 1..3, 5")
    assert shown() == [3]
    assert figures.nth(3).locator("g").count() == 3
    page.locator(".tree a", has_text="Sub = 0").click()
    assert shown() == [2]
    select.select_option(label="all 4 layouts")
    assert shown() == [0, 1, 2, 3]
    select.select_option(index=0)
    page.emulate_media(media="print")
    assert shown() == [0, 1, 2, 3]


def test_without_scripts_all_layouts_are_there(report):
    page = report(MOTION + PAGES, java_script_enabled=False)
    assert page.locator("#message-103 figure:visible").count() == 4
    assert page.locator("#message-100 svg >> text=Speed").first.is_visible()
    colors = page.eval_on_selector_all("#message-100 .bits g > :first-child", "shapes => shapes.map(shape => getComputedStyle(shape).fill)")
    assert len(set(colors)) == 3


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_is_accessible_to_all(report, scheme):
    wide = 'BO_ 104 Wide: 64 N\n SG_ L : 180|100@1+ (1,0) [0|0] "" N\n SG_ B : 190|8@1+ (1,0) [0|0] "" N\n'
    page = report(MOTION + wide + PAGES, color_scheme=scheme)
    assert accessibility_faults(page) == []
    page.set_viewport_size({"width": 400, "height": 800})
    assert page.evaluate("document.documentElement.scrollWidth") <= 400
