// Values of Python as the raw values of signals.

#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "base/edit_distance.hpp"
#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "base/text_view.hpp"
#include "check/objects/record_words.hpp"
#include "codec.hpp"

namespace zelk::python {
namespace {

/// Finds the raw value of one signal.
class RawValue {
 public:
  RawValue(SignalCodec& signal, Encoding encoding, nb::handle value, const EncodeOptions& options)
      : signal_(signal), encoding_(encoding), value_(value), options_(options) {}

  std::int64_t find();

 private:
  std::int64_t of_text() const;
  std::int64_t of_whole(nb::handle number) const;
  std::int64_t of_real(double number) const;
  std::int64_t of_ieee(double number) const;
  std::int64_t rounded(double quotient) const;
  nb::object unscaled(nb::handle number) const;
  std::int64_t fitted(nb::handle raw) const;
  std::int64_t cut(bool is_low) const;
  void check_range(double physical) const;
  std::int64_t low() const {
    return signal_.is_signed ? -static_cast<std::int64_t>(all() / 2) - 1 : 0;
  }
  std::uint64_t high() const { return signal_.is_signed ? all() / 2 : all(); }
  std::uint64_t all() const { return low_bits(signal_.record.length); }
  [[noreturn]] void refuse(const std::string& reason,
                           FailureKind kind = FailureKind::kEncode) const;

  SignalCodec& signal_;
  Encoding encoding_;
  nb::handle value_;
  const EncodeOptions& options_;
};

void RawValue::refuse(const std::string& reason, FailureKind kind) const {
  const std::string_view name = text_from_python(signal_.name);
  throw Failure(kind, std::string(name) + " = " + shown(value_) + ": " + reason);
}

std::int64_t RawValue::find() {
  if (signal_.kind == NumberKind::kNone) refuse("signals of 1 to 64 bits can be set alone");
  PyObject* const value = value_.ptr();
  if (PyFloat_CheckExact(value)) return of_real(PyFloat_AS_DOUBLE(value));
  if (PyLong_Check(value)) return of_whole(value_);
  if (PyUnicode_Check(value)) return of_text();
  if (PyIndex_Check(value)) return of_whole(checked(PyNumber_Index(value)));
  const double number = PyFloat_AsDouble(value);
  if (number == -1 && has_no_number())
    refuse("neither a number nor a text", FailureKind::kArgument);
  return of_real(number);
}

std::int64_t RawValue::of_text() const {
  const std::string text(text_from_python(value_));
  const std::size_t limit = suggestion_distance(text);
  const SignalCodec::Choice* near = nullptr;
  for (const val& choice : each(signal_.record.values)) {
    if (to_utf8(view(choice.text), encoding_) != text) continue;
    const std::int64_t raw = signal_.is_signed
                                 ? std::int64_t{choice.value}
                                 : std::int64_t{static_cast<std::uint32_t>(choice.value)};
    const bool is_low = raw < low();
    if (is_low || (raw > 0 && static_cast<std::uint64_t>(raw) > high())) return cut(is_low);
    return raw;
  }
  for (const auto& [value, choice] : signal_.choices)
    if (edit_distance(choice.text, text, limit) <= limit) near = &choice;
  refuse("no value description" + (near ? "; did you mean " + shown(near->text) + "?" : ""));
}

/// A whole number keeps all its digits, where a double would have 53 bits.
std::int64_t RawValue::of_whole(nb::handle number) const {
  if (signal_.kind == NumberKind::kIeee ||
      (options_.scaling && signal_.kind == NumberKind::kFloat)) {
    const double real = PyLong_AsDouble(number.ptr());
    if (real == -1 && PyErr_Occurred()) {
      PyErr_Clear();
      refuse("too large");
    }
    return of_real(real);
  }
  if (!options_.scaling) return fitted(number);
  const double physical = PyLong_AsDouble(number.ptr());
  if (physical == -1 && PyErr_Occurred()) {
    PyErr_Clear();
    refuse("too large");
  }
  check_range(physical);
  if (signal_.record.factor == 1 && signal_.record.offset == 0) return fitted(number);
  return fitted(unscaled(number));
}

/// (number - offset) / factor, rounded half away from zero.
nb::object RawValue::unscaled(nb::handle number) const {
  const nb::object factor = checked(PyLong_FromDouble(signal_.record.factor));
  const nb::object difference =
      nb::borrow(number) - checked(PyLong_FromDouble(signal_.record.offset));
  const bool is_negative = (difference < nb::int_(0)) != (factor < nb::int_(0));
  const nb::object size = checked(PyNumber_Absolute(factor.ptr()));
  const nb::object twice = checked(PyNumber_Absolute(difference.ptr())) * nb::int_(2) + size;
  const nb::object quotient = twice.floor_div(size * nb::int_(2));
  return is_negative ? -quotient : quotient;
}

/// A raw value that the bits can hold.
std::int64_t RawValue::fitted(nb::handle raw) const {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(raw.ptr(), &overflow);
  if (number == -1 && PyErr_Occurred()) nb::raise_python_error();
  if (overflow < 0 || (overflow == 0 && number < low())) return cut(true);
  if (overflow == 0) {
    if (number > 0 && static_cast<std::uint64_t>(number) > high()) return cut(false);
    return number;
  }
  const unsigned long long large = PyLong_AsUnsignedLongLong(raw.ptr());
  if (PyErr_Occurred()) {
    PyErr_Clear();
    return cut(false);
  }
  return large > high() ? cut(false) : static_cast<std::int64_t>(large);
}

/// What the bits cannot hold becomes, unless that is refused, the nearest value that they can.
std::int64_t RawValue::cut(bool is_low) const {
  if (options_.strict) {
    refuse("does not fit into " + std::to_string(signal_.record.length) + " bits (raw " +
           std::to_string(low()) + " to " + std::to_string(high()) + ")");
  }
  return is_low ? low() : static_cast<std::int64_t>(high());
}

void RawValue::check_range(double physical) const {
  const sigblk& signal = signal_.record;
  if (!options_.strict || (signal.minimum == 0 && signal.maximum == 0)) return;
  if (physical >= signal.minimum && physical <= signal.maximum) return;
  const std::string unit = to_utf8(view(signal.unit), encoding_);
  refuse("out of range, " + check::number_text(signal.minimum) + " to " +
         check::number_text(signal.maximum) + (unit.empty() ? "" : " " + unit));
}

std::int64_t RawValue::of_real(double number) const {
  if (signal_.kind == NumberKind::kIeee) return of_ieee(number);
  if (std::isnan(number)) refuse("not a number, which no integer signal holds");
  if (!options_.scaling) {
    if (std::isfinite(number) && number != std::floor(number))
      refuse("a raw value is a whole number");
    return rounded(number);
  }
  check_range(number);
  return rounded((number - signal_.record.offset) / signal_.record.factor);
}

/// @param quotient  a raw value that need not be whole
std::int64_t RawValue::rounded(double quotient) const {
  const auto lowest = static_cast<double>(low());
  const auto highest = static_cast<double>(high());
  // Rounding takes what lies less than a half outside back in.
  if (quotient < lowest && quotient <= lowest - 0.5) return cut(true);
  if (quotient >= highest + 0.5) return cut(false);
  if (quotient >= highest) return static_cast<std::int64_t>(high());
  if (std::isnan(quotient)) return 0;  // of a factor of 0
  const double whole = quotient < 0 ? std::ceil(quotient - 0.5) : std::floor(quotient + 0.5);
  if (whole < 0) return static_cast<std::int64_t>(whole);
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(whole));
}

std::int64_t RawValue::of_ieee(double number) const {
  const sigblk& signal = signal_.record;
  if (signal.length != (signal_.is_double ? 64 : 32))
    refuse("an IEEE number in " + std::to_string(signal.length) + " bits cannot be set");
  if (!std::isnan(number))
    check_range(options_.scaling ? number : number * signal.factor + signal.offset);
  const double value = options_.scaling ? (number - signal.offset) / signal.factor : number;
  if (signal_.is_double) return std::bit_cast<std::int64_t>(value);
  const auto single = static_cast<float>(value);
  if (std::isinf(single) && !std::isinf(value) && options_.strict)
    refuse("beyond what 32 bits can hold");
  return std::int64_t{std::bit_cast<std::uint32_t>(single)};
}

}  // namespace

std::int64_t raw_value(SignalCodec& signal, Encoding encoding, nb::handle value,
                       const EncodeOptions& options) {
  return RawValue(signal, encoding, value, options).find();
}

}  // namespace zelk::python
