"""Edits: all or nothing, one at a time, and never a crash."""

import os
import threading

import pytest

import zelk


def test_writes_all_changes_at_the_end(car):
    db = zelk.load(car)
    old = db.messages["EngineStatus"]
    before = car.read_bytes()
    with db.edit() as edit:
        status = edit.messages["EngineStatus"]
        status.name, status.comment = "Engine", "new \u00b0"
        status.attributes["CycleTime"] = 20
        speed = status.signals["EngineSpeed"]
        speed.scale, speed.maximum, speed.unit = 0.5, 20000, "1/s"
        status.signals["EngineRunState"].choices = {0: "a", 5: "b"}
        fresh = edit.add_message("Fresh", 0x1ABCDEF, 8, is_extended_frame=True)
        fresh.senders = ["Gateway", edit.add_node("New").name]
        added = fresh.add_signal("Added", 7, 12)
        added.byte_order, added.is_signed, added.receivers = "big_endian", True, ["New"]
        edit.delete(edit.messages["EngineExhaust"])
        edit.comment = "of the network"
        assert edit.encode_message("Fresh", {"Added": -1}) == b"\xff\xf0" + bytes(6)
        assert car.read_bytes() == before and "Fresh" not in db.messages
    for changed in (db, zelk.load(car)):
        engine, fresh = changed.messages["Engine"], changed.message(0x1ABCDEF)
        assert (engine.comment, engine.attributes["CycleTime"]) == ("new \u00b0", 20)
        assert (engine.signals[0].scale, engine.signals[0].maximum, engine.signals[0].unit) == (0.5, 20000, "1/s")
        assert engine.signals["EngineRunState"].choices == {0: "a", 5: "b"}
        assert (fresh.senders, fresh.signals[0].receivers) == (("Gateway", "New"), ("New",))
        assert "EngineExhaust" not in changed.messages and changed.comment == "of the network"
    assert (old.name, old.signals[0].scale) == ("EngineStatus", 0.25)


def test_nothing_is_written_when_the_block_fails(car):
    db = zelk.load(car)
    before = car.read_bytes()
    with pytest.raises(ZeroDivisionError):
        with db.edit() as edit:
            edit.messages[0].name = "Lost"
            1 / 0
    # What only the writer notices: a range the wrong way round.
    with pytest.raises(zelk.WriteError, match="minimum is above"):
        with db.edit() as edit:
            edit.messages[0].signals[0].minimum = 1e6
    assert car.read_bytes() == before and db.messages[0].name != "Lost"
    with db.edit() as edit:
        edit.messages[0].name = "Kept"
    assert zelk.load(car).messages[0].name == "Kept"


def test_a_file_has_one_edit_at_a_time(car):
    db, other = zelk.load(car), zelk.load(car)
    refused = []

    def try_to_edit():
        for one in (db, other):
            with pytest.raises(zelk.LockedError) as caught:
                one.edit().__enter__()
            refused.append(caught.value.path)

    with db.edit() as edit:
        edit.comment = "first"
        try_to_edit()
        thread = threading.Thread(target=try_to_edit)
        thread.start()
        thread.join()
    assert refused == [str(car)] * 4
    with pytest.raises(zelk.EditError, match="changed since"):
        other.edit().__enter__()


def test_a_change_from_outside_is_not_overwritten(car):
    db = zelk.load(car)
    with pytest.raises(zelk.EditError, match="changed since"):
        with db.edit() as edit:
            edit.comment = "mine"
            os.utime(car, (1, 1))
    assert zelk.load(car).comment != "mine"


def test_other_formats_are_edited_into_a_new_file(car, tmp_path):
    broken = tmp_path / "broken.dbc"
    broken.write_bytes(car.read_bytes().replace(b"BU_:", b"BU_ :").replace(b"EngineStatus: ", b"EngineStatus ", 1))
    db = zelk.load(broken, repair=True)
    assert db.mends
    with pytest.raises(zelk.EditError, match="mended"):
        db.edit()
    with db.edit(path=tmp_path / "new.dbc") as edit:
        edit.version = "2"
    assert db.files == (str(tmp_path / "new.dbc"),) and zelk.load(tmp_path / "new.dbc").version == "2"


def test_deleted_objects_say_so(car):
    db = zelk.load(car)
    with db.edit() as edit:
        message = edit.messages["EngineStatus"]
        signals = list(message.signals)
        gone = [message, *signals, edit.nodes["Gateway"]]
        edit.delete(message)
        edit.delete(gone[-1])
        fresh = [edit.add_message(f"M{i}", 0x600 + i, 8) for i in range(50)]
        for one in fresh:
            for bit in range(20):
                one.add_signal(f"S{bit}", bit, 1)
        for one in gone:
            with pytest.raises(zelk.DeletedError):
                one.name
            with pytest.raises(zelk.DeletedError):
                edit.delete(one)
        assert [one.name for one in fresh] == [f"M{i}" for i in range(50)]
    for one in gone:
        with pytest.raises(ReferenceError):
            one.comment
    with pytest.raises(zelk.ReadOnlyError):
        fresh[0].name = "Late"
    assert fresh[0].name == "M0" and "Gateway" not in db.messages["WheelSpeeds"].receivers


WRONG = [
    lambda e: setattr(e.messages[0], "name", "two words"),
    lambda e: setattr(e.messages[0], "name", "SG_"),
    lambda e: setattr(e.messages[0], "name", e.messages[1].name),
    lambda e: setattr(e.messages[0], "name", None),
    lambda e: setattr(e.messages[0], "comment", 5),
    lambda e: setattr(e.messages[0], "comment", "a\0b"),
    lambda e: setattr(e.messages[0], "length", 1 << 40),
    lambda e: setattr(e.messages[0], "frame_id", 0x800),
    lambda e: setattr(e.messages[0], "senders", ["Nobody"]),
    lambda e: setattr(e.messages[0], "senders", 1),
    lambda e: setattr(e.messages[0].signals[0], "length", 0),
    lambda e: setattr(e.messages[0].signals[0], "scale", 0),
    lambda e: setattr(e.messages[0].signals[0], "offset", float("nan")),
    lambda e: setattr(e.messages[0].signals[0], "unit", "x" * 33),
    lambda e: setattr(e.messages[0].signals[0], "byte_order", "middle"),
    lambda e: setattr(e.messages[0].signals[0], "choices", {1.5: "a"}),
    lambda e: setattr(e.messages[0].signals[0], "choices", {1 << 33: "a"}),
    lambda e: setattr(e.messages[0].signals[0], "choices", [1]),
    lambda e: e.messages[0].attributes.__setitem__("Unknown", 1),
    lambda e: e.messages[0].attributes.__setitem__("SendType", "Unknown"),
    lambda e: e.messages[0].attributes.__setitem__("CycleTime", "ten"),
    lambda e: e.messages[0].attributes.__setitem__("CycleTime", -1),
    lambda e: e.add_message("New", e.messages[0].frame_id, 8),
    lambda e: e.add_node("Gateway"),
    lambda e: e.messages[0].add_signal(e.messages[0].signals[0].name, 0, 1),
    lambda e: e.delete("EngineStatus"),
    lambda e: e.delete(None),
]


@pytest.mark.parametrize("change", WRONG)
def test_wrong_changes_leave_everything(car, change):
    db = zelk.load(car)
    with db.edit() as edit:
        with pytest.raises((ValueError, KeyError, TypeError)):
            change(edit)
    assert zelk.diff(db, zelk.load(car)) == ()


def test_threads_read_while_one_edits(car):
    db = zelk.load(car)
    stop = threading.Event()
    faults = []

    def read():
        try:
            while not stop.is_set():
                message = db.message(0x0C8)
                assert message.decode(bytes(8)) and len(db.messages) == 25
                assert message.signals[0].scale and message.svg()
        except BaseException as error:
            faults.append(error)

    threads = [threading.Thread(target=read) for _ in range(3)]
    for thread in threads:
        thread.start()
    for number in range(20):
        with db.edit() as edit:
            edit.message(0x0C8).name = f"Engine{number}"
            edit.message(0x0C8).signals[0].scale = number + 1
    stop.set()
    for thread in threads:
        thread.join()
    assert not faults and db.message(0x0C8).name == "Engine19"


class Meddler:
    """A value that does something when it is converted."""

    def __init__(self, action):
        self.action = action

    def __index__(self):
        self.action()
        return 5

    __float__ = __index__

    def __iter__(self):
        yield "Gateway"
        self.action()
        yield "HybridControl"


@pytest.mark.parametrize(
    "use",
    [
        lambda m, value: m.encode({"EngineSpeed": value}, strict=False),
        lambda m, value: m.encode({Meddler: 1, "EngineSpeed": value}, strict=False),
        lambda m, value: setattr(m.signals[0], "scale", value),
        lambda m, value: setattr(m.signals[0], "choices", {value: "a"}),
        lambda m, value: setattr(m.signals[0], "receivers", value),
        lambda m, value: setattr(m, "senders", value),
        lambda m, value: setattr(m, "length", value),
        lambda m, value: m.add_signal("Fresh", value, 1),
        lambda m, value: m.attributes.__setitem__("CycleTime", value),
    ],
)
def test_values_cannot_pull_records_away(car, use):
    db = zelk.load(car)
    manager = db.edit()
    edit = manager.__enter__()
    message = edit.messages["EngineStatus"]
    for action in (
        lambda: edit.delete(message),
        lambda: edit.delete(message.signals[0]),
        lambda: edit.delete(edit.nodes["Gateway"]),
        lambda: manager.__exit__(None, None, None),
    ):
        with pytest.raises(zelk.EditError, match="in use"):
            use(message, Meddler(action))
    assert message.name == "EngineStatus" and len(message.signals) >= 8
    del manager
    with pytest.raises(zelk.ReadOnlyError):
        message.length = 1
