"""Anything may be given to anything: there are exceptions, and never a crash."""

import pytest
from hypothesis import given, settings
from hypothesis import strategies as st

import zelk

from conftest import EXAMPLES

DB = zelk.load(EXAMPLES / "powertrain.dbc")
NAMES = [m.name for m in DB.messages] + [s.name for m in DB.messages for s in m.signals]
SIMPLE = st.one_of(
    st.none(), st.booleans(), st.integers(), st.floats(), st.text(), st.binary(), st.complex_numbers(), st.decimals()
)
ANYTHING = st.one_of(
    SIMPLE,
    st.sampled_from(NAMES),
    st.sampled_from([m.frame_id for m in DB.messages]),
    st.sampled_from([*DB.messages, *DB.nodes, DB, object, zelk.Choice("a", 1), memoryview(bytes(8))]),
    st.lists(SIMPLE, max_size=3),
    st.dictionaries(st.one_of(st.sampled_from(NAMES), st.integers(), st.text()), SIMPLE, max_size=4),
)
EXPECTED = (zelk.Error, ValueError, LookupError, TypeError, OSError, OverflowError, AttributeError)
CALLS = [
    lambda a, b, c: DB.decode_message(a, b, allow_truncated=True),
    lambda a, b, c: DB.decode_message(DB.messages[0], a, b, c),
    lambda a, b, c: DB.encode_message(a, b, strict=False),
    lambda a, b, c: [m.encode(dict.fromkeys([s.name for s in m.signals], a), strict=False) for m in DB.messages],
    lambda a, b, c: DB.messages[0].encode(a, b, c),
    lambda a, b, c: DB.message(a),
    lambda a, b, c: DB.get_message_by_pgn(a),
    lambda a, b, c: (DB.messages[a], DB.nodes[b], DB.messages[0].signals[c]),
    lambda a, b, c: (a in DB.messages, b in DB.messages[0].signals, DB.messages[0] == c),
    lambda a, b, c: DB.messages[slice(a, b, c)],
    lambda a, b, c: zelk.diff(a, b),
    lambda a, b, c: zelk.lint(EXAMPLES / "powertrain.dbc", disable=a, limit=5),
    lambda a, b, c: zelk.repair(EXAMPLES / "powertrain.dbc", EXAMPLES, keep=a, no_node=b),
    lambda a, b, c: setattr(DB.messages[0], "name", a),
    lambda a, b, c: DB.edit(a),
]


@pytest.mark.parametrize("call", CALLS)
@settings(max_examples=60, deadline=None, derandomize=True)
@given(ANYTHING, ANYTHING, ANYTHING)
def test_arguments(call, a, b, c):
    try:
        call(a, b, c)
    except EXPECTED:
        pass


CHANGES = st.lists(st.tuples(st.sampled_from(["message", "signal", "node", "set", "delete"]), ANYTHING, ANYTHING, st.integers(0, 60)), max_size=12)
FIELDS = ["name", "comment", "frame_id", "length", "senders", "scale", "offset", "minimum", "unit", "choices", "start", "byte_order", "receivers"]


@settings(max_examples=150, deadline=None, derandomize=True)
@given(CHANGES)
def test_edits(changes):
    """Every object that an edit has had still answers, or says that it is gone."""
    seen = []
    try:
        with DB.edit(path="/dev/null") as edit:
            for what, a, b, at in changes:
                message = edit.messages[at % len(edit.messages)]
                seen += [message, *message.signals, *edit.nodes]
                try:
                    if what == "message":
                        seen.append(edit.add_message(a, b, at))
                    elif what == "signal":
                        seen.append(message.add_signal(a, b, at))
                    elif what == "node":
                        seen.append(edit.add_node(a))
                    elif what == "delete":
                        edit.delete(seen[at % len(seen)])
                    else:
                        setattr(seen[at % len(seen)], FIELDS[at % len(FIELDS)], a)
                except EXPECTED:
                    pass
            raise InterruptedError
    except InterruptedError:
        pass
    for one in seen:
        try:
            repr(one), hash(one), one.name, one.comment, dict(one.attributes)
        except zelk.DeletedError:
            pass


TOKENS = st.sampled_from(["BO_ ", "SG_ ", "VAL_ ", "CM_ ", "BA_ ", ": ", "1", "8 ", "A", "|@+(", '"', ";", "\n", "\0", "\xff", "<", "{", "}", "[", ","])


@settings(max_examples=100, deadline=None, derandomize=True)
@given(text=st.lists(TOKENS, max_size=40), extension=st.sampled_from(["dbc", "kcd", "json"]), repair=st.booleans())
def test_files(tmp_path_factory, text, extension, repair):
    file = tmp_path_factory.getbasetemp() / f"fuzz.{extension}"
    file.write_bytes("".join(text).encode("latin-1"))
    try:
        db = zelk.load(file, repair=repair)
        repr(db), list(db.messages), dict(db.attributes), db.value_tables, [m.svg() for m in db.messages]
    except zelk.ReadError as error:
        assert error.path == str(file)
