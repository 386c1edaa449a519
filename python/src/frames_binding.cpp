// Frames in objects of Python, into tables.

#include <nanobind/stl/shared_ptr.h>

#include "frame_run.hpp"

namespace zelk::python {
namespace {

nb::object interned(const char* text) { return checked(PyUnicode_InternFromString(text)); }

/// Takes the properties of frames from objects.
class MessageReader {
 public:
  explicit MessageReader(FrameRun& run) : run_(run) {}

  void add(nb::handle message);
  std::size_t count() const { return count_; }

 private:
  nb::object optional(nb::handle message, const nb::object& name) const;
  nb::object needed(nb::handle message, const nb::object& name) const;
  bool is_set(nb::handle message, const nb::object& name) const;
  std::uint32_t id(nb::handle message) const;
  std::uint16_t flags(nb::handle message) const;
  std::int64_t time(nb::handle message) const;
  std::uint16_t channel(nb::handle message);
  nb::object bytes(nb::handle message) const;
  [[noreturn]] void fail(const std::string& why) const;

  FrameRun& run_;
  std::size_t count_ = 0;
  nb::object last_channel_;
  std::string last_channel_text_;
  const nb::object timestamp_ = interned("timestamp");
  const nb::object arbitration_id_ = interned("arbitration_id");
  const nb::object is_extended_id_ = interned("is_extended_id");
  const nb::object data_ = interned("data");
  const nb::object channel_ = interned("channel");
  const nb::object is_fd_ = interned("is_fd");
  const nb::object is_remote_frame_ = interned("is_remote_frame");
  const nb::object is_error_frame_ = interned("is_error_frame");
};

void MessageReader::fail(const std::string& why) const {
  throw Failure(FailureKind::kArgument, "message " + std::to_string(count_) + ": " + why);
}

/// A null object when there is no such attribute.
nb::object MessageReader::optional(nb::handle message, const nb::object& name) const {
  PyObject* const value = PyObject_GetAttr(message.ptr(), name.ptr());
  if (!value && !PyErr_ExceptionMatches(PyExc_AttributeError)) nb::raise_python_error();
  if (!value) PyErr_Clear();
  return nb::steal(value);
}

nb::object MessageReader::needed(nb::handle message, const nb::object& name) const {
  nb::object value = optional(message, name);
  if (!value) fail(shown(message) + " has no attribute " + shown(name));
  return value;
}

bool MessageReader::is_set(nb::handle message, const nb::object& name) const {
  const nb::object value = optional(message, name);
  if (!value) return false;
  const int truth = PyObject_IsTrue(value.ptr());
  if (truth < 0) nb::raise_python_error();
  return truth != 0;
}

std::uint32_t MessageReader::id(nb::handle message) const {
  constexpr long kMostStandard = 0x7FF;
  constexpr long kMostExtended = 0x1FFFFFFF;
  const nb::object value = needed(message, arbitration_id_);
  const nb::object extended = optional(message, is_extended_id_);
  int overflow = 0;
  const long id =
      PyIndex_Check(value.ptr())
          ? PyLong_AsLongAndOverflow(checked(PyNumber_Index(value.ptr())).ptr(), &overflow)
          : -1;
  const bool is_extended =
      extended && !extended.is_none() ? is_set(message, is_extended_id_) : id > kMostStandard;
  if (overflow != 0 || id < 0 || id > (is_extended ? kMostExtended : kMostStandard)) {
    fail("the identifier of a frame with " + std::string(is_extended ? "29" : "11") +
         " bits cannot be " + shown(value));
  }
  return static_cast<std::uint32_t>(id) | (is_extended ? ZELK_ID_EXTENDED : 0U);
}

std::uint16_t MessageReader::flags(nb::handle message) const {
  unsigned flags = 0;
  if (is_set(message, is_fd_)) flags |= kZelkFrameFd;
  if (is_set(message, is_remote_frame_)) flags |= kZelkFrameRemote;
  if (is_set(message, is_error_frame_)) flags |= kZelkFrameError;
  return static_cast<std::uint16_t>(flags);
}

std::int64_t MessageReader::time(nb::handle message) const {
  const nb::object value = optional(message, timestamp_);
  if (!value || value.is_none()) return kZelkNoTime;
  const double seconds = PyFloat_AsDouble(value.ptr());
  if (seconds == -1 && PyErr_Occurred()) {
    PyErr_Clear();
    fail("the timestamp must be a number of seconds, not " + shown(value));
  }
  const std::optional<std::int64_t> time = nanoseconds_of(seconds);
  if (!time) fail("the timestamp " + shown(value) + " is beyond 292 years");
  return *time;
}

std::uint16_t MessageReader::channel(nb::handle message) {
  nb::object value = optional(message, channel_);
  if (!value || value.is_none()) return run_.channel({});
  if (!value.is(last_channel_)) {
    last_channel_text_ = text_from_python(nb::object(nb::str(value)));
    last_channel_ = std::move(value);
  }
  return run_.channel(last_channel_text_);
}

/// An object with contiguous bytes.
nb::object MessageReader::bytes(nb::handle message) const {
  nb::object value = optional(message, data_);
  if (!value || value.is_none()) return nb::bytes("", 0);
  if (PyObject_CheckBuffer(value.ptr())) return value;
  PyObject* const made = PyBytes_FromObject(value.ptr());  // of a list of numbers
  if (made) return nb::steal(made);
  PyErr_Clear();
  fail("the data must be bytes, and is " + shown(value));
}

void MessageReader::add(nb::handle message) {
  const nb::object source = bytes(message);
  const std::uint32_t frame_id = id(message);
  const std::uint16_t frame_flags = flags(message);
  const std::int64_t frame_time = time(message);
  const std::uint16_t frame_channel = channel(message);
  const ByteView view(source, "message " + std::to_string(count_));
  if (view.size() > ZelkFrameBlock::kMostData)
    fail("a frame cannot have " + std::to_string(view.size()) + " bytes");
  run_.add(frame_time, frame_id, frame_flags, frame_channel, {view.data(), view.size()});
  ++count_;
}

nb::tuple decode_messages(std::shared_ptr<Decoding> decoding, bool j1939_tp, nb::handle messages) {
  FrameRun run(std::move(decoding), j1939_tp);
  MessageReader reader(run);
  const nb::object all = checked(PyObject_GetIter(messages.ptr()));
  while (PyObject* const next = PyIter_Next(all.ptr())) {
    reader.add(nb::steal(next));
    if (!run.is_full()) continue;
    check_signals();
    const nb::gil_scoped_release unlocked;
    run.decode();
  }
  if (PyErr_Occurred()) nb::raise_python_error();
  return run.finish();
}

}  // namespace

void check_signals() {
  if (PyErr_CheckSignals() != 0) nb::raise_python_error();
}

void bind_frames(nb::module_& module) {
  module.def(
      "decode_messages", decode_messages, nb::arg("decoding"), nb::arg("j1939_tp"),
      nb::arg("messages"),
      nb::sig("def decode_messages(decoding: Decoding, j1939_tp: bool, messages: "
              "typing.Iterable[typing.Any]) -> tuple[list[TableRows], dict[str, typing.Any]]"));
}

}  // namespace zelk::python
