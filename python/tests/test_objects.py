"""What objects show of their records."""

import base64
import pickle
import re
import xml.etree.ElementTree as xml

import pytest

import zelk

DBC = """VERSION "1.2"

NS_ :

BS_:

BU_: A B

BO_ 2566834814 Group: 8 A
 SG_ Which M : 0|8@1+ (1,0) [0|0] "" B
 SG_ Value m1 : 15|16@0- (0.1,-5) [-10|10.5] "<V>" B,A

BO_ 100 Plain: 12 Ostrel__XXX

BO_TX_BU_ 2566834814 : A,B;
CM_ "of \\"all\\" <b>";
CM_ SG_ 2566834814 Value "a ]]> & b";
BA_DEF_ BO_ "GenMsgCycleTime" INT 0 1000;
BA_DEF_ BO_ "Kind" ENUM "x","y";
BA_DEF_DEF_ "GenMsgCycleTime" 0;
BA_DEF_DEF_ "Kind" "y";
BA_ "GenMsgCycleTime" BO_ 100 20;
VAL_ 2566834814 Value -1 "low" 3 "high" ;
SG_MUL_VAL_ 2566834814 Value Which 1-3, 7-7;
"""


@pytest.fixture
def db(tmp_path):
    file = tmp_path / "small.dbc"
    file.write_text(DBC)
    return zelk.load(file)


def test_messages(db):
    group, plain = db.messages
    assert (group.frame_id, group.is_extended_frame, group.pgn) == (0x18FECA7E, True, 0xFECA)
    assert (group.senders, group.receivers, group.cycle_time) == (("A", "B"), ("B", "A"), None)
    assert (plain.frame_id, plain.is_fd, plain.pgn, plain.senders) == (100, True, None, ())
    assert plain.cycle_time == plain.attributes["GenMsgCycleTime"] == 20
    assert dict(group.attributes) == {"GenMsgCycleTime": 0, "Kind": "y"}
    assert (db.comment, db.version, [n.name for n in db.nodes]) == ('of "all" <b>', "1.2", ["A", "B"])


def test_signals(db):
    which, value = db.messages["Group"].signals
    assert (which.is_multiplexer, which.multiplexer_ids, which.minimum, which.unit) == (True, None, None, None)
    assert (value.start, value.length, value.byte_order, value.is_signed) == (15, 16, "big_endian", True)
    assert (value.scale, value.offset, value.minimum, value.maximum) == (0.1, -5, -10, 10.5)
    assert (value.multiplexer_signal, value.multiplexer_ids) == ("Which", [1, 2, 3, 7])
    assert (value.choices, value.comment, value.receivers) == ({-1: "low", 3: "high"}, "a ]]> & b", ("B", "A"))
    assert value.message == db.messages[0] and {value: 1}[db.messages[0].signals[-1]] == 1


def test_huge_ranges_of_multiplexors_are_not_listed(tmp_path):
    file = tmp_path / "huge.dbc"
    file.write_text(DBC.replace("1-3, 7-7", "0-4294967295"))
    value = zelk.load(file).messages[0].signals["Value"]
    assert value.multiplexer_ranges == [(0, 0xFFFFFFFF)]
    with pytest.raises(ValueError, match="multiplexer_ranges"):
        value.multiplexer_ids


def test_lookups(db):
    group = db.messages[0]
    for found in (
        db.message(0x18FECA7E),
        db.message(0x98FECA7E),
        db.message(group),
        db.get_message_by_name("Group"),
        db.get_message_by_frame_id(0x18FECA7E),
        db.get_message_by_pgn(0xFECA),
        db.messages[-2],
        db.messages[:1]["Group"],
    ):
        assert found == group
    for wrong in (lambda: db.messages[2], lambda: db.messages["G"], lambda: db.get_message_by_pgn(1)):
        with pytest.raises((LookupError, zelk.UnknownNameError)):
            wrong()
    for wrong in (None, 1.5, b"Group", [1]):
        with pytest.raises(ValueError):
            db.message(wrong)


def test_several_files(db, car):
    both = zelk.load(db.files[0], car, car)
    assert list(both.databases) == ["small", "car", "car_2"]
    assert both.message("car_2::EngineStatus") == both.databases["car_2"].messages["EngineStatus"]
    assert len(both.messages) == 2 + 2 * len(both.databases["car"].messages)
    assert both.decode_message("Plain", bytes(12)) == {}


def test_pictures_are_well_formed_and_apart_from_the_page(db):
    message = db.messages["Group"]
    html = message._repr_html_()
    assert "<V>" not in html
    picture = base64.b64decode(re.search(r"base64,([^\"]+)", html)[1]).decode()
    assert picture == message.svg() and xml.fromstring(picture).tag.endswith("svg")


def test_objects_outlive_their_database(tmp_path):
    def signal():
        file = tmp_path / "short.dbc"
        file.write_text(DBC)
        return zelk.load(file).messages[0].signals[1]

    assert [signal().name for _ in range(100)] == ["Value"] * 100


def test_databases_and_errors_travel_between_processes(db):
    assert pickle.loads(pickle.dumps(db)).messages["Plain"].length == 12
    value = db.decode_message("Group", bytes([1, 255, 255]), allow_truncated=True)["Value"]
    copy = pickle.loads(pickle.dumps(value))
    assert (copy, copy.value) == ("low", -1)
    with pytest.raises(zelk.UnknownNameError) as caught:
        db.message("Plan")
    assert str(pickle.loads(pickle.dumps(caught.value))) == str(caught.value)
