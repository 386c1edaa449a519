"""The page that compares two databases."""

import pytest

from conftest import accessibility_faults

OLD = """BS_:
BU_: N Dash
VAL_TABLE_ T 0 "off" ;
BO_ 100 Motion: 8 N
 SG_ Mux M : 56|8@1+ (1,0) [0|0] "" N
 SG_ Speed : 0|16@1+ (1,0) [0|400] "km/h" N
 SG_ Gear : 16|3@1+ (1,0) [0|7] "" N
 SG_ P0 m0 : 24|8@1+ (1,0) [0|7] "" N
 SG_ P1 m1 : 24|8@1+ (1,0) [0|7] "" N
BO_ 101 Same: 8 N
BO_ 102 Gone: 8 N
 SG_ G : 0|8@1+ (1,0) [0|0] "" N
CM_ BO_ 100 "old\ntext";
"""
NEW = (
    OLD.replace("0|16@1+", "7|16@0+")
    .replace(' SG_ Gear : 16|3@1+ (1,0) [0|7] "" N\n', "")
    .replace("P1 m1 : 24|8", "P1 m1 : 24|12")
    .replace("BO_ 102 Gone", "BO_ 202 Come")
    .replace("old\ntext", "<img src=x onerror=alert(1)>&amp;\x02")
    .replace('0 "off"', '0 "<script>alert(1)</script>"')
)


@pytest.fixture
def compare(tmp_path, zelk, show):
    def make(old, new, **options):
        for name, text in (("old<b>.dbc", old), ("new.dbc", new)):
            (tmp_path / name).write_text(text, encoding="utf-8")
        zelk("report", tmp_path / "old<b>.dbc", tmp_path / "new.dbc", "-o", tmp_path / "diff.html")
        return show(tmp_path / "diff.html", **options)

    return make


def rows(page, section):
    return [[cell.strip() for cell in row.locator("th, td").all_inner_texts()] for row in page.locator(f"#{section} tbody tr").all()]


def test_tells_what_differs(compare):
    page = compare(OLD, NEW)
    assert rows(page, "summary") == [
        ["messages", "1", "1", "1"],
        ["signals", "0", "1", "2"],
        ["tables", "0", "0", "1"],
    ]
    changes = rows(page, "message-100")
    assert ["message Motion", "comment", "old\ntext", "<img src=x onerror=alert(1)>&amp;\u2402"] in changes
    assert ["signal Speed", "order", "Intel", "Motorola"] in changes
    assert ["signal Gear", "removed", "", ""] in changes
    assert ["signal G", "place", "byte 0 bits 7 to 0", "none"] in rows(page, "removed-message-102")
    assert page.locator("text=Same").count() == 0
    assert page.locator("h1").inner_text() == "old<b>.dbc \u2192 new.dbc"


def test_layouts_stand_side_by_side(compare):
    page = compare(OLD, NEW)
    page.locator("#messages a", has_text="Motion").click()
    before, after = page.locator("#message-100 .side").all()
    left, right = before.bounding_box(), after.bounding_box()
    assert left["y"] == right["y"] and left["x"] + left["width"] <= right["x"]
    marked = lambda side: side.locator("figure:visible g.marked").all_text_contents()
    assert [text.split(":")[0].strip() for text in marked(before)] == ["Speed", "Gear"]
    after.get_by_role("combobox").select_option(label="Mux = 1")
    assert [text.split(":")[0].strip() for text in marked(after)] == ["Speed", "P1"]
    color = "e => getComputedStyle(e.querySelector('path, use')).fill"
    shape = "g:has(text:text-is('P0'))"
    assert before.locator(shape).first.evaluate(color) == page.locator(f"#message-100 .side >> nth=1 >> {shape}").first.evaluate(color)
    before.locator("figure:visible g").first.focus()
    assert "Mux: byte 7" in page.locator("#signal-box").inner_text()


def test_the_same_and_without_scripts(compare):
    assert "The databases are the same." in compare(OLD, OLD).locator("#summary").inner_text()
    page = compare(OLD, NEW, java_script_enabled=False)
    assert page.locator("#message-100 figure:visible").count() == 4


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_is_accessible_to_all(compare, scheme):
    page = compare(OLD, NEW, color_scheme=scheme)
    assert accessibility_faults(page) == []
    page.set_viewport_size({"width": 400, "height": 800})
    assert page.evaluate("document.documentElement.scrollWidth") <= 400
