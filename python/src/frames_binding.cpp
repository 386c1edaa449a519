// Frames in arrays and in objects of Python, into tables.

#include <nanobind/ndarray.h>
#include <nanobind/stl/shared_ptr.h>

#include "frame_run.hpp"

namespace zelk::python {
namespace {

template <typename Value>
using Array = nb::ndarray<const Value, nb::ndim<1>, nb::c_contig, nb::device::cpu>;

/// Frames as one array for each of their properties, which all have as many values; those that may
/// be left out are empty then.
struct FrameArrays {
  Array<std::uint32_t> ids;
  Array<std::uint16_t> lengths;
  Array<std::int64_t> offsets;  ///< where the data of each frame begins
  Array<std::uint8_t> data;
  Array<std::int64_t> times;
  Array<std::uint16_t> channels;  ///< index of a name
  Array<std::uint16_t> flags;
};

template <typename Value>
Value value_or(const Array<Value>& array, std::size_t index, Value without) {
  return array.size() > 0 ? array.data()[index] : without;
}

void check_sizes(const FrameArrays& frames) {
  const std::size_t count = frames.ids.size();
  const auto fits = [count](const auto& array) {
    return array.size() == 0 || array.size() == count;
  };
  if (frames.lengths.size() == count && frames.offsets.size() == count && fits(frames.times) &&
      fits(frames.channels) && fits(frames.flags)) {
    return;
  }
  throw Failure(FailureKind::kArgument, "the arrays of frames have different lengths");
}

std::span<const unsigned char> data_of(const FrameArrays& frames, std::size_t index) {
  const std::size_t length = frames.lengths.data()[index];
  const auto offset = static_cast<std::uint64_t>(frames.offsets.data()[index]);
  const std::size_t size = frames.data.size();
  if (offset <= size && length <= size - offset) return {frames.data.data() + offset, length};
  throw Failure(FailureKind::kArgument, "frame " + std::to_string(index) + " has " +
                                            std::to_string(length) + " bytes from " +
                                            std::to_string(frames.offsets.data()[index]) +
                                            " on, and the data has " + std::to_string(size));
}

/// Adds frames up to where a block is full.
///
/// @return the frame behind them
std::size_t add_frames(FrameRun& run, const FrameArrays& frames,
                       const std::vector<std::string>& names, std::size_t from) {
  std::vector<std::uint16_t> channels;
  for (const std::string& name : names) channels.push_back(run.channel(name));
  std::size_t i = from;
  for (; i < frames.ids.size() && !run.is_full(); ++i) {
    const std::uint16_t channel = value_or<std::uint16_t>(frames.channels, i, 0);
    if (channel >= channels.size()) throw Failure(FailureKind::kArgument, "a channel has no name");
    run.add(value_or<std::int64_t>(frames.times, i, kZelkNoTime), frames.ids.data()[i],
            value_or<std::uint16_t>(frames.flags, i, 0), channels[channel], data_of(frames, i));
  }
  return i;
}

void check_signals() {
  if (PyErr_CheckSignals() != 0) nb::raise_python_error();
}

nb::tuple decode_arrays(std::shared_ptr<Decoding> decoding, bool j1939_tp, Array<std::uint32_t> ids,
                        Array<std::uint16_t> lengths, Array<std::int64_t> offsets,
                        Array<std::uint8_t> data, Array<std::int64_t> times,
                        Array<std::uint16_t> channels, Array<std::uint16_t> flags,
                        const nb::list& names) {
  const FrameArrays frames{ids, lengths, offsets, data, times, channels, flags};
  check_sizes(frames);
  std::vector<std::string> all;
  for (const nb::handle name : names) all.emplace_back(text_from_python(name));
  FrameRun run(std::move(decoding), j1939_tp);
  for (std::size_t i = 0; i < frames.ids.size(); check_signals()) {
    constexpr std::size_t kBlocks = 64;  // between two looks at signals
    const nb::gil_scoped_release unlocked;
    for (std::size_t block = 0; block < kBlocks && i < frames.ids.size(); ++block) {
      i = add_frames(run, frames, all, i);
      run.decode();
    }
  }
  return run.finish();
}

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

nb::object times_from_seconds(Array<double> seconds) {
  auto times = std::make_unique<std::int64_t[]>(seconds.size());
  for (std::size_t i = 0; i < seconds.size(); ++i) {
    const std::optional<std::int64_t> time = nanoseconds_of(seconds.data()[i]);
    if (!time) {
      throw Failure(FailureKind::kArgument, "times[" + std::to_string(i) + "] is " +
                                                shown(nb::float_(seconds.data()[i])) +
                                                " seconds, which is beyond 292 years");
    }
    times[i] = *time;
  }
  const std::size_t count = seconds.size();
  std::int64_t* const start = times.get();
  const nb::capsule owner(
      start, [](void* memory) noexcept { delete[] static_cast<std::int64_t*>(memory); });
  static_cast<void>(times.release());
  return nb::cast(nb::ndarray<nb::numpy, std::int64_t>(start, 1, &count, owner));
}

}  // namespace

void bind_frames(nb::module_& module) {
  module.def(
      "decode_arrays", decode_arrays, nb::arg("decoding"), nb::arg("j1939_tp"),
      nb::arg("ids").noconvert(), nb::arg("lengths").noconvert(), nb::arg("offsets").noconvert(),
      nb::arg("data").noconvert(), nb::arg("times").noconvert(), nb::arg("channels").noconvert(),
      nb::arg("flags").noconvert(), nb::arg("names"),
      nb::sig("def decode_arrays(decoding: Decoding, j1939_tp: bool, ids: typing.Any, lengths: "
              "typing.Any, offsets: typing.Any, data: typing.Any, times: typing.Any, channels: "
              "typing.Any, flags: typing.Any, names: list[str]) -> tuple[list[TableRows], "
              "dict[str, typing.Any]]"));
  module.def(
      "decode_messages", decode_messages, nb::arg("decoding"), nb::arg("j1939_tp"),
      nb::arg("messages"),
      nb::sig("def decode_messages(decoding: Decoding, j1939_tp: bool, messages: "
              "typing.Iterable[typing.Any]) -> tuple[list[TableRows], dict[str, typing.Any]]"));
  module.def("times_from_seconds", times_from_seconds, nb::arg("seconds").noconvert(),
             nb::sig("def times_from_seconds(seconds: typing.Any) -> "
                     "numpy.typing.NDArray[numpy.int64]"));
}

}  // namespace zelk::python
