// Frames in arrays, into tables; and times for them.

#include <nanobind/ndarray.h>
#include <nanobind/stl/shared_ptr.h>

#include "array_run.hpp"
#include "frame_run.hpp"

namespace zelk::python {
namespace {

template <typename Value>
using Array = nb::ndarray<const Value, nb::ndim<1>, nb::c_contig, nb::device::cpu>;

template <typename Value>
std::span<const Value> view(const Array<Value>& array) {
  return {array.data(), array.size()};
}

nb::tuple decode_arrays(std::shared_ptr<Decoding> decoding, Array<std::uint32_t> ids,
                        Array<std::uint16_t> lengths, Array<std::int64_t> offsets,
                        std::size_t stride, Array<std::uint8_t> data, Array<std::int64_t> times,
                        Array<std::uint16_t> channels, const nb::list& names, bool j1939_tp,
                        unsigned threads, bool is_whole) {
  FrameArrays frames{view(ids),  view(lengths), view(offsets),  stride,
                     view(data), view(times),   view(channels), {}};
  for (const nb::handle name : names) frames.names.emplace_back(text_from_python(name));
  {
    const nb::gil_scoped_release unlocked;
    frames.check();
  }
  ArrayRun run(std::move(decoding), frames, {j1939_tp, threads, is_whole});
  while (!run.has_ended()) {
    {
      const nb::gil_scoped_release unlocked;
      run.decode_part();
    }
    check_signals();
  }
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

void bind_arrays(nb::module_& module) {
  module.def(
      "decode_arrays", decode_arrays, nb::arg("decoding"), nb::arg("ids").noconvert(),
      nb::arg("lengths").noconvert(), nb::arg("offsets").noconvert(), nb::arg("stride"),
      nb::arg("data").noconvert(), nb::arg("times").noconvert(), nb::arg("channels").noconvert(),
      nb::arg("names"), nb::arg("j1939_tp"), nb::arg("threads"), nb::arg("is_whole"),
      nb::sig("def decode_arrays(decoding: Decoding, ids: typing.Any, lengths: typing.Any, "
              "offsets: typing.Any, stride: int, data: typing.Any, times: typing.Any, channels: "
              "typing.Any, names: list[str], j1939_tp: bool, threads: int, is_whole: bool) -> "
              "tuple[list[TableRows], dict[str, typing.Any]]"));
  module.def("times_from_seconds", times_from_seconds, nb::arg("seconds").noconvert(),
             nb::sig("def times_from_seconds(seconds: typing.Any) -> "
                     "numpy.typing.NDArray[numpy.int64]"));
}

}  // namespace zelk::python
