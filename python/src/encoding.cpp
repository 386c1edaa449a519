// Dictionaries of Python as frames.

#include <algorithm>
#include <bit>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "check/objects/record_words.hpp"
#include "codec.hpp"

namespace zelk::python {
namespace {

constexpr std::size_t kNoSignal = ~std::size_t{0};

/// Puts the lowest bits of `raw` in the place of the signal's, which the frame has:
///
///     Intel     from the start bit upwards, the least significant bit first
///     Motorola  from the start bit on in the order of transmission, the most significant bit first
void put_bits(unsigned char* frame, const sigblk& signal, std::uint64_t raw) {
  const bool is_motorola = zelk::is_motorola(signal);
  std::uint32_t bit = is_motorola ? mirrored_bit(signal.start_bit) : signal.start_bit;
  for (std::uint32_t left = signal.length; left > 0;) {
    const std::uint32_t inside = bit % 8;
    const std::uint32_t count = std::min(left, 8 - inside);
    const std::uint32_t done = signal.length - left;
    const std::uint64_t part = is_motorola ? raw >> (left - count) : raw >> done;
    const std::uint32_t shift = is_motorola ? 8 - inside - count : inside;
    const auto mask = static_cast<unsigned char>(low_bits(count) << shift);
    unsigned char& byte = frame[bit / 8];
    byte = static_cast<unsigned char>((byte & ~mask) | (part << shift & mask));
    bit += count;
    left -= count;
  }
}

}  // namespace

void Codec::refuse(const std::string& reason) const {
  throw Failure(FailureKind::kEncode, name() + ": " + reason);
}

nb::object Codec::encode(nb::handle values, const EncodeOptions& options) {
  const Given given = take_values(values, options);
  const std::vector<std::size_t> chosen = signals_of_frame(given, options);
  nb::object frame = checked(PyBytes_FromStringAndSize(nullptr, message().dlc));
  auto* const data = reinterpret_cast<unsigned char*>(PyBytes_AS_STRING(frame.ptr()));
  std::fill_n(data, message().dlc, options.padding ? 0xFF : 0);
  for (const std::size_t i : chosen)
    put_bits(data, signals_[i].record, static_cast<std::uint64_t>(given.raw[i]));
  if (options.strict) check_written(given, chosen, data);
  return frame;
}

Codec::Given Codec::take_values(nb::handle values, const EncodeOptions& options) {
  nb::object pairs = nb::borrow(values);
  if (!PyDict_Check(values.ptr())) {
    if (!PyMapping_Check(values.ptr()) || PySequence_Check(values.ptr()) != 0) {
      throw Failure(
          FailureKind::kArgument,
          name() + ": the values must be a dictionary by names of signals, not " + shown(values));
    }
    pairs = nb::module_::import_("builtins").attr("dict")(values);
  }
  // A conversion can run code of Python, which must not change what is walked.
  pairs = checked(PyDict_Copy(pairs.ptr()));
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  Py_ssize_t position = 0;
  Given given{std::vector<std::int64_t>(signals_.size()), std::vector<bool>(signals_.size())};
  while (PyDict_Next(pairs.ptr(), &position, &key, &value) != 0) {
    const std::optional<std::size_t> index = find(key);
    if (!index && !options.strict) continue;
    if (!index)
      throw Failure(FailureKind::kUnknownName, name() + " has no signal " + shown(nb::handle(key)));
    given.raw[*index] = raw_value(signals_[*index], encoding_, value, options);
    given.is_given[*index] = true;
  }
  return given;
}

bool Codec::is_selected(std::size_t index, const Given& given,
                        const std::vector<bool>& chosen) const {
  const std::size_t multiplexor = multiplexors_[index];
  if (multiplexor == kNoSignal) return true;
  return chosen[multiplexor] &&
         is_selected_by(signals_[index].record, static_cast<std::uint32_t>(given.raw[multiplexor]));
}

/// The signals that a frame with these values has. With `strict` all of them must be given, and no
/// other one.
std::vector<std::size_t> Codec::signals_of_frame(const Given& given,
                                                 const EncodeOptions& options) const {
  std::vector<std::size_t> chosen;
  std::vector<bool> is_chosen(signals_.size());
  std::string missing;
  for (const std::size_t i : order_) {
    if (!is_selected(i, given, is_chosen) || signals_[i].kind == NumberKind::kNone) continue;
    if (!given.is_given[i]) missing += (missing.empty() ? "" : ", ") + shown(signals_[i].name);
    is_chosen[i] = true;
    if (!given.is_given[i] && end_byte(signals_[i].record) > message().dlc) continue;
    check_fits(i);
    chosen.push_back(i);
  }
  if (!options.strict) return chosen;
  if (!missing.empty()) refuse("no value for " + missing + "; strict=False takes zeros");
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if (!given.is_given[i] || is_chosen[i]) continue;
    refuse(shown(signals_[i].name) + " would not be in the frame: it is there for " +
           check::presence_values(signals_[i].record) + " of its multiplexor");
  }
  return chosen;
}

void Codec::check_fits(std::size_t index) const {
  if (end_byte(signals_[index].record) <= message().dlc) return;
  refuse(shown(signals_[index].name) + " does not fit into the " + std::to_string(message().dlc) +
         " bytes of the message");
}

/// Signals may share bits.
void Codec::check_written(const Given& given, const std::vector<std::size_t>& chosen,
                          const unsigned char* frame) const {
  std::vector<std::int64_t> read(signals_.size());
  std::vector<std::uint64_t> present(decoder_.PresenceWords());
  decoder_.DecodeRaw(frame, message().dlc, read.data(), present.data());
  for (const std::size_t i : chosen) {
    if (read[i] != given.raw[i])
      refuse(shown(signals_[i].name) + " shares bits with another signal, which has another value");
  }
}

}  // namespace zelk::python
