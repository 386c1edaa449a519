"""Lint, repair and comparison."""

import pytest

import zelk

BROKEN = 'VERSION ""\n\nNS_ :\n\nBS_:\n\nBU_: A\n\nBO_ 1 Speed 8 A\n SG_ A : 0|8@1+ (1,0) [0|0] "" A\n SG_ B : 4|8@1+ (1,0) [0|0] "" A\n'


def test_lint(tmp_path):
    file = tmp_path / "lint.dbc"
    file.write_text(BROKEN.replace("Speed 8", "Speed: 8"))
    rules = {finding.rule: finding for finding in zelk.lint(file)}
    overlap = rules["overlapping-signals"]
    assert (overlap.path, overlap.line, overlap.severity) == (str(file), 11, "warning")
    assert f"{file}:11:" in str(overlap)
    assert "overlapping-signals" not in {f.rule for f in zelk.lint(file, disable=["overlapping-signals"])}
    assert len(zelk.lint(file, limit=1)) == 1
    with pytest.raises(KeyError, match="no rule"):
        zelk.lint(file, disable=["overlap"])
    with pytest.raises(ValueError, match="not a text"):
        zelk.lint(file, disable="overlapping-signals")
    file.write_text(BROKEN)
    assert [(f.severity, f.line) for f in zelk.lint(file)] == [("error", 9)]


def test_repair(tmp_path):
    source, target = tmp_path / "broken.dbc", tmp_path / "mended.dbc"
    source.write_text(BROKEN)
    mends = zelk.repair(source, target)
    assert [m.line for m in mends] == [9]
    assert [s.name for s in zelk.load(target).messages["Speed"].signals] == ["A", "B"]
    assert source.read_text() == BROKEN
    with pytest.raises(zelk.WriteError, match="the file to read"):
        zelk.repair(source, source)
    with pytest.raises(OSError):
        zelk.repair(source, tmp_path / "no folder" / "x.dbc")
    source.write_text("no database")
    with pytest.raises(zelk.ReadError, match="cannot be mended"):
        zelk.repair(source, target)
    assert zelk.load(target)


def test_diff(car, tmp_path):
    db = zelk.load(car)
    new = tmp_path / "new.dbc"
    with zelk.load(car).edit(path=new) as edit:
        edit.messages["EngineStatus"].signals["EngineSpeed"].scale = 2
        edit.delete(edit.nodes["Gateway"])
        edit.add_message("Fresh", 1, 8)
    found = {(d.presence, d.kind, d.name): d for d in zelk.diff(db, new)}
    changed = found["changed", "signal", "EngineSpeed"]
    assert (changed.message, changed.changes[0]) == ("EngineStatus", ("factor", 0.25, 2))
    assert ("removed", "node", "Gateway") in found and ("added", "message", "Fresh") in found
    assert str(changed).startswith("changed signal EngineStatus.EngineSpeed: factor: 0.25 -> 2")
    assert zelk.diff(car, car) == ()
