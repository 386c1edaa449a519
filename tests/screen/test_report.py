"""Pages of databases, as people use them."""

import pytest
from conftest import ROOT, accessibility_faults

EXAMPLE = ROOT / "examples/powertrain.dbc"
EVERY_STATEMENT = ROOT / "tests/data/ok_every_statement.dbc"
HOSTILE = """VERSION "<script>alert(1)</script>"
BS_:
BU_: A B
BO_ 100 M: 8 A
 SG_ Mux M : 0|8@1+ (1,0) [0|255] "<b>'" B
 SG_ S m1 : 8|8@1+ (1,0) [0|255] "' onx=1" B,A
CM_ "</title></script><script>alert(2)</script> \x01\x1b \u202eRTL <img src=x onerror=alert(3)>";
CM_ BO_ 100 "<!-- </article></main> {{name}} {{{main}}} {{>comment}}";
CM_ SG_ 100 S "&lt; ]]> ` ${alert(5)}";
VAL_ 100 S 0 "<svg onload=alert(4)>" 1 "\u2028";
"""


@pytest.fixture
def report(zelk, show, tmp_path):
    """Opens the page of a database, once its tables are ready."""

    def open_report(path=EXAMPLE, **options):
        page_path = tmp_path / "page.html"
        zelk("report", path, "-o", page_path)
        page = show(page_path, **options)
        if options.get("java_script_enabled", True):
            page.wait_for_function("'ready' in document.documentElement.dataset")
        return page

    return open_report


def first_column(page, table):
    return page.eval_on_selector_all(f"{table} tbody th", "cells => cells.map(cell => cell.textContent)")


def test_search_sort_and_filter(report):
    page = report()
    messages, signals = page.get_by_role("search", name="messages"), page.get_by_role("search", name="signals")

    messages.get_by_label("Search").fill("GEAR 0x0e")
    assert first_column(page, "#message-table") == ["GearSelectorStatus"]
    assert messages.get_by_role("status").text_content() == "1 of 25 messages"
    messages.get_by_label("Search").fill("learned values")  # of a comment
    assert first_column(page, "#message-table") == ["EngineAdaptation"]
    messages.get_by_label("Search").fill("")
    messages.get_by_label("Senders").select_option("GearSelector")
    assert first_column(page, "#message-table") == ["GearSelectorStatus"]
    messages.get_by_label("Senders").select_option("all")

    signals.get_by_label("Search").fill("vehiclemotion")
    assert len(first_column(page, "#signal-table")) == 5
    signals.get_by_label("Search").fill("not available")  # of a value description
    assert "GearEngaged" in first_column(page, "#signal-table")
    signals.get_by_label("Search").fill("no such thing")
    assert signals.get_by_role("status").text_content() == "0 of 148 signals"
    signals.get_by_label("Search").fill("")
    signals.get_by_label("Unit").select_option("km/h")
    signals.get_by_label("Receivers").select_option("EngineControl")
    assert first_column(page, "#signal-table") == ["VehicleSpeed"]
    signals.get_by_label("Unit").select_option("all")

    heading = page.locator("#message-table th", has_text="Identifier")
    heading.get_by_role("button").focus()
    page.keyboard.press("Enter")
    assert heading.get_attribute("aria-sort") == "ascending"
    assert first_column(page, "#message-table")[0] == "EngineStatus"
    page.keyboard.press("Enter")
    assert heading.get_attribute("aria-sort") == "descending"
    assert first_column(page, "#message-table")[-1] == "EngineStatus"
    page.locator("#signal-table th", has_text="Range").get_by_role("button").click()
    assert page.locator("#signal-table tbody tr").first.locator("td").nth(6).text_content().startswith("-16384 ")
    assert page.locator("#message-table [aria-sort]").count() == 1


def test_what_the_file_says_once_stands_everywhere(report, tmp_path):
    path = tmp_path / "once.dbc"
    signal = ' SG_ {} : {}|2@1{} (1,0) [0|3] "" {}\n'
    values = 'VAL_ 1 {} 0 "not available at all" 1 "available now" 2 "faulty in some way" ;\n'
    layout = [("S", 0, "+", "B"), ("T", 2, "-", "C,B"), ("U", 4, "+", "Dash")]
    path.write_text(
        "BS_:\nBU_: A B C Dash\nBO_ 1 M: 1 A\n"
        + "".join(signal.format(*each) for each in layout)
        + values.format("S") + values.format("T"),
        encoding="utf-8",
    )
    page = report(path)
    assert page.locator("#message-1 .receivers").inner_text() == "B (2 of 3) C (1 of 3) Dash (1 of 3)"
    assert page.locator("#message-1 .receivers a").first.evaluate("a => getComputedStyle(a, '::before').content") == "none"
    rows = [page.locator(f"[id='1.{name}'] td") for name in "STU"]
    assert [row.last.inner_text() for row in rows] == ["B", "C, B", "Dash"]
    assert [row.nth(2).inner_text() for row in rows] == ["Intel, unsigned", "Intel, signed", "Intel, unsigned"]
    assert page.locator("#message-1 thead").inner_text().split() == [
        "Signal", "Start", "Bits", "Coding", "Factor", "Offset", "Range", "Unit", "Meaning", "Receivers"
    ]
    lists = [row.locator("ul.values").inner_text() for row in rows[:2]]
    assert lists[0] == lists[1]
    page.get_by_role("search", name="signals").get_by_label("Search").fill("faulty in")
    assert first_column(page, "#signal-table") == ["S", "T"]
    page = report(path, java_script_enabled=False)
    assert page.locator("#message-1 .receivers a").nth(1).evaluate("a => getComputedStyle(a, '::before').content") != "none"
    page.locator("#message-1 td a").click()
    assert page.locator(":target li").count() == 3


def test_links_and_keys(report):
    page = report()
    page.keyboard.press("Tab")
    assert page.evaluate("document.activeElement.textContent") == "Skip to the content"
    page.keyboard.press("/")
    page.keyboard.type("vehiclemotion")
    page.keyboard.press("Enter")
    assert page.evaluate("location.hash") == "#message-321"
    assert page.locator("#message-321").is_visible()
    page.goto(page.url.replace("#message-321", "#321.RoadGradient"))
    page.reload()
    page.wait_for_function("'ready' in document.documentElement.dataset")
    page.wait_for_function("document.querySelector(':target')?.cells[0].textContent === 'RoadGradient'")
    assert page.evaluate("document.querySelector(':target').getBoundingClientRect().top") < page.viewport_size["height"]
    dangling = page.eval_on_selector_all(
        "a[href^='#']", "links => links.map(link => link.hash.slice(1)).filter(id => !document.getElementById(id))"
    )
    assert dangling == []
    doubled = "ids => ids.length - new Set(ids.map(element => element.id)).size"
    assert page.eval_on_selector_all("[id]", doubled) == 0


@pytest.mark.parametrize("scheme", ["light", "dark"])
def test_accessible(report, scheme):
    page = report(EVERY_STATEMENT, color_scheme=scheme)
    assert accessibility_faults(page) == []
    background = page.evaluate("getComputedStyle(document.body).backgroundColor")
    page.get_by_label("Colours").select_option("dark" if scheme == "light" else "light")
    assert page.evaluate("getComputedStyle(document.body).backgroundColor") != background
    page.reload()  # the choice is kept
    assert page.evaluate("getComputedStyle(document.body).backgroundColor") != background


def test_without_scripts(report):
    page = report(java_script_enabled=False)
    assert page.get_by_label("Search").count() == 0
    assert page.get_by_label("Colours").is_hidden()
    assert page.locator("#message-table tbody tr").count() == 25
    assert page.locator(".message .signals > tbody > tr").count() == 148
    speed = page.locator("#message-321 .signals tr", has_text="VehicleSpeed").first
    assert "Speed over ground from the wheel speeds." in speed.text_content()
    assert speed.is_visible()
    assert page.locator("#signals").get_by_text("needs scripts").is_visible()


def test_hostile_texts(report, tmp_path):
    path = tmp_path / "<img src=x onerror=alert(9)>.dbc"
    path.write_text(HOSTILE, encoding="utf-8")
    page = report(path)
    assert page.title() == path.name
    assert page.locator("img, main script, main svg[onload]").count() == 0
    assert "<!-- </article></main> {{name}} {{{main}}} {{>comment}}" in page.locator("#message-100").text_content()
    assert "0 = <svg onload=alert(4)>" in page.locator("[id='100.S']").text_content()
    assert "\u2401\u241b \u202eRTL <img" in page.locator("#overview").text_content()
    page.get_by_role("search", name="signals").get_by_label("Unit").select_option("<b>'")
    assert first_column(page, "#signal-table") == ["Mux"]
    assert accessibility_faults(page) == []


def test_many_messages(report, tmp_path):
    path = tmp_path / "many.dbc"
    signals = "".join(f' SG_ S{bit} : {bit}|1@1+ (1,0) [0|1] "" A\n' for bit in range(4))
    messages = "".join(f"BO_ {number} M{number}: 1 A\n{signals}\n" for number in range(600))
    path.write_text(f"BS_:\nBU_: A\n{messages}", encoding="utf-8")
    page = report(path)
    search = page.get_by_role("search", name="signals")
    assert search.get_by_role("status").text_content() == "2400 signals"
    assert len(first_column(page, "#signal-table")) == 500
    search.get_by_label("Search").fill("m599 s3")
    assert first_column(page, "#signal-table") == ["S3"]
    search.get_by_label("Search").fill("m599")
    page.locator("#signal-table tbody a").first.click()
    assert page.locator("[id='599.S0']").is_visible()
    page.get_by_role("button", name="Show all 600").click()
    assert len(first_column(page, "#message-table")) == 600
