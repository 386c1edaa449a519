#include "codec.hpp"

#include <bit>
#include <cmath>
#include <utility>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"

namespace zelk::python {
namespace {

constexpr std::size_t kNoSignal = ~std::size_t{0};
constexpr double kLargestExact = 9007199254740992.0;  // 2^53

bool is_whole(double number) {
  return std::abs(number) <= kLargestExact && number == std::floor(number);
}

NumberKind kind_of(const sigblk& signal) {
  if (signal.length == 0 || signal.length > 64) return NumberKind::kNone;
  if (is_ieee(signal)) return NumberKind::kIeee;
  if (signal.factor == 0 || !is_whole(signal.factor) || !is_whole(signal.offset))
    return NumberKind::kFloat;
  const double largest = std::ldexp(1, signal.length) * std::abs(signal.factor);
  return largest + std::abs(signal.offset) <= kLargestExact ? NumberKind::kInt
                                                            : NumberKind::kBigInt;
}

/// The signals in an order in which each stands behind its multiplexor; those in or below a circle,
/// which are never present, are left out.
std::vector<std::size_t> presence_order(const std::vector<std::size_t>& multiplexors) {
  std::vector<std::vector<std::size_t>> below(multiplexors.size());
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < multiplexors.size(); ++i)
    multiplexors[i] == kNoSignal ? order.push_back(i) : below[multiplexors[i]].push_back(i);
  for (std::size_t i = 0; i < order.size(); ++i) {
    const std::vector<std::size_t>& next = below[order[i]];
    order.insert(order.end(), next.begin(), next.end());
  }
  return order;
}

}  // namespace

SignalCodec::SignalCodec(const sigblk& signal, Encoding encoding)
    : record(signal),
      kind(kind_of(signal)),
      is_signed(zelk::is_signed(signal)),
      is_double(signal.value_type == ZELK_VALUE_IEEE_DOUBLE) {
  PyObject* text = text_to_python(view(signal.name), encoding).release().ptr();
  PyUnicode_InternInPlace(&text);
  name = nb::steal(text);
  if (kind == NumberKind::kIeee || kind == NumberKind::kNone) return;
  for (const val& value : each(signal.values)) {
    choices.try_emplace(static_cast<std::uint32_t>(value.value),
                        Choice{to_utf8(view(value.text), encoding), {}});
  }
}

nb::handle SignalCodec::choice(std::int64_t raw) {
  if (raw < INT32_MIN || raw > UINT32_MAX) return {};
  const auto found = choices.find(static_cast<std::uint32_t>(raw));
  if (found == choices.end()) return {};
  Choice& choice = found->second;
  if (!choice.object) {
    const nb::object type = nb::module_::import_("zelk._choice").attr("Choice");
    choice.object = type(text_to_python(choice.text), raw_number(raw));
  }
  return choice.object;
}

double SignalCodec::ieee_number(std::int64_t raw) const {
  if (is_double) return std::bit_cast<double>(raw);
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(raw)));
}

nb::object SignalCodec::raw_number(std::int64_t raw) const {
  if (kind == NumberKind::kIeee) return checked(PyFloat_FromDouble(ieee_number(raw)));
  if (is_signed) return checked(PyLong_FromLongLong(raw));
  return checked(PyLong_FromUnsignedLongLong(static_cast<std::uint64_t>(raw)));
}

nb::object SignalCodec::number(double physical, std::int64_t raw) const {
  if (kind == NumberKind::kInt)
    return checked(PyLong_FromLongLong(static_cast<long long>(physical)));
  if (kind != NumberKind::kBigInt) return checked(PyFloat_FromDouble(physical));
  const nb::object product = raw_number(raw) * checked(PyLong_FromDouble(record.factor));
  return product + checked(PyLong_FromDouble(record.offset));
}

Codec::Codec(const msgblk& message, Encoding encoding) : decoder_(message), encoding_(encoding) {
  std::unordered_map<const sigblk*, std::size_t> indices;
  for (std::size_t i = 0; i < decoder_.SignalCount(); ++i) indices[&decoder_.Signal(i)] = i;
  for (std::size_t i = 0; i < decoder_.SignalCount(); ++i) {
    const sigblk& signal = decoder_.Signal(i);
    const SignalCodec& prepared = signals_.emplace_back(signal, encoding);
    if (!names_.contains(prepared.name)) names_[prepared.name] = i;
    has_choices_ = has_choices_ || !prepared.choices.empty();
    has_big_numbers_ = has_big_numbers_ || prepared.kind == NumberKind::kBigInt;
    // A signal that nothing in the message can select stands below itself.
    const auto above = indices.find(signal.mux_signal);
    const std::size_t multiplexor = above == indices.end() ? i : above->second;
    multiplexors_.push_back(is_multiplexed(signal) ? multiplexor : kNoSignal);
  }
  order_ = presence_order(multiplexors_);
}

std::optional<std::size_t> Codec::find(nb::handle name) const {
  PyObject* const found = PyDict_GetItemWithError(names_.ptr(), name.ptr());
  if (found) return PyLong_AsSize_t(found);
  if (PyErr_Occurred()) nb::raise_python_error();
  return std::nullopt;
}

std::string Codec::name() const { return to_utf8(view(message().name), encoding_); }

// --- Decoding ---

nb::object Codec::decode(nb::handle data, const DecodeOptions& options) {
  if (PyBytes_CheckExact(data.ptr())) {
    return decode_bytes(reinterpret_cast<const unsigned char*>(PyBytes_AS_STRING(data.ptr())),
                        static_cast<std::size_t>(PyBytes_GET_SIZE(data.ptr())), options);
  }
  const ByteView bytes(data, name());
  return decode_bytes(bytes.data(), bytes.size(), options);
}

nb::object Codec::decode_bytes(const unsigned char* data, std::size_t size,
                               const DecodeOptions& options) {
  if (size < message().dlc && !options.allow_truncated) {
    throw Failure(FailureKind::kDecode,
                  name() + ": " + std::to_string(size) + " bytes of data, but the message has " +
                      std::to_string(message().dlc) + "; allow_truncated=True takes what is there");
  }
  std::unique_ptr<Decoded> decoded = take_memory();
  if (options.scaling) decoder_.Decode(data, size, decoded->values.data(), decoded->present.data());
  if ((options.choices && has_choices_) || has_big_numbers_ || !options.scaling)
    decoder_.DecodeRaw(data, size, decoded->raw.data(), decoded->present.data());
  nb::object result = decoded_to_python(*decoded, options);
  memory_ = std::move(decoded);
  return result;
}

/// The memory that a decoding has until it ends; another one that begins meanwhile has its own.
std::unique_ptr<Codec::Decoded> Codec::take_memory() {
  if (memory_) return std::move(memory_);
  const std::size_t count = signals_.size();
  return std::make_unique<Decoded>(Decoded{std::vector<double>(count),
                                           std::vector<std::int64_t>(count),
                                           std::vector<std::uint64_t>(decoder_.PresenceWords())});
}

nb::object Codec::decoded_to_python(const Decoded& decoded, const DecodeOptions& options) {
  nb::object result = checked(PyDict_New());
  for (std::size_t i = 0; i < signals_.size(); ++i) {
    if ((decoded.present[i / 64] >> (i % 64) & 1) == 0) continue;
    SignalCodec& signal = signals_[i];
    nb::object value;
    if (options.choices && !signal.choices.empty())
      value = nb::borrow(signal.choice(decoded.raw[i]));
    if (!value && options.scaling) value = signal.number(decoded.values[i], decoded.raw[i]);
    if (!value) value = signal.raw_number(decoded.raw[i]);
    if (PyDict_SetItem(result.ptr(), signal.name.ptr(), value.ptr()) != 0) nb::raise_python_error();
  }
  return result;
}

}  // namespace zelk::python
