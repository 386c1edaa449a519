/// \file
/// Frames of one message as dictionaries of Python, and back.

#ifndef ZELK_PYTHON_CODEC_HPP
#define ZELK_PYTHON_CODEC_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/seeded_hash.hpp"
#include "python.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/manager.hpp"

namespace zelk::python {

/// How values of a signal become numbers of Python.
enum class NumberKind : std::uint8_t {
  kFloat,
  kInt,     ///< factor and offset are whole, and every value is exact as a double
  kBigInt,  ///< factor and offset are whole, and some values are larger than a double holds
  kIeee,    ///< the bits are an IEEE number
  kNone,    ///< of no bits, or more than 64: it has no value
};

/// One signal, prepared.
struct SignalCodec {
  struct Choice {
    std::string text;   ///< in UTF-8
    nb::object object;  ///< made when it is first wanted
  };

  SignalCodec(const sigblk& signal, Encoding encoding);

  /// The text for a raw value; null for none. Descriptions have 32 bits, signed or not.
  nb::handle choice(std::int64_t raw);
  nb::object raw_number(std::int64_t raw) const;
  nb::object number(double physical, std::int64_t raw) const;
  /// The number in an IEEE signal.
  double ieee_number(std::int64_t raw) const;

  const sigblk& record;
  nb::object name;  ///< interned
  NumberKind kind = NumberKind::kFloat;
  bool is_signed;
  bool is_double;
  std::unordered_map<std::uint32_t, Choice, SeededHash>
      choices{};  ///< of several for a value the first
};

/// What a host wants of a decoding.
struct DecodeOptions {
  bool choices = true;
  bool scaling = true;
  bool allow_truncated = false;
};

struct EncodeOptions {
  bool scaling = true;
  bool padding = false;
  bool strict = true;
};

/// Needs the lock of the interpreter for every call. A call may run code of Python, and so give way
/// to calls of other threads: what belongs to one frame belongs to one call.
class Codec {
 public:
  Codec(const msgblk& message, Encoding encoding);

  /// @param data  anything with contiguous bytes
  /// @return a dictionary of the signals that the frame has, in the order of the message
  /// @throws Failure, nb::python_error
  nb::object decode(nb::handle data, const DecodeOptions& options);
  /// @param values  a mapping from the names of signals to numbers or texts of value descriptions
  /// @return `bytes`
  /// @throws Failure, nb::python_error
  nb::object encode(nb::handle values, const EncodeOptions& options);

  const msgblk& message() const { return decoder_.Message(); }
  std::vector<SignalCodec>& signals() { return signals_; }
  /// Index of the signal with this name; none when there is none.
  std::optional<std::size_t> find(nb::handle name) const;

 private:
  /// The signals of one frame.
  struct Decoded {
    std::vector<double> values;
    std::vector<std::int64_t> raw;
    std::vector<std::uint64_t> present;
  };
  /// What a host gave for a frame.
  struct Given {
    std::vector<std::int64_t> raw;  ///< 0 for what was not given
    std::vector<bool> is_given;
  };

  nb::object decode_bytes(const unsigned char* data, std::size_t size,
                          const DecodeOptions& options);
  nb::object decoded_to_python(const Decoded& decoded, const DecodeOptions& options);
  std::unique_ptr<Decoded> take_memory();
  Given take_values(nb::handle values, const EncodeOptions& options);
  std::vector<std::size_t> signals_of_frame(const Given& given, const EncodeOptions& options) const;
  bool is_selected(std::size_t index, const Given& given, const std::vector<bool>& chosen) const;
  void check_fits(std::size_t index) const;
  void check_written(const Given& given, const std::vector<std::size_t>& chosen,
                     const unsigned char* frame) const;
  [[noreturn]] void refuse(const std::string& reason) const;
  std::string name() const;

  ZelkFrameDecoder decoder_;
  std::vector<SignalCodec> signals_;
  nb::dict names_;  ///< to indices
  bool has_choices_ = false;
  bool has_big_numbers_ = false;
  std::vector<std::size_t> order_;         ///< signals, each behind its multiplexor
  std::vector<std::size_t> multiplexors_;  ///< index of a signal's, or `kNone`
  std::unique_ptr<Decoded> memory_;        ///< of the last decoding, for the next one
  Encoding encoding_;
};

/// The raw value of a signal that a value of Python means: the bits of IEEE signals, else a whole
/// number, as `ZelkFrameDecoder::DecodeRaw` reads it.
///
/// @param encoding  of the texts in the signal's record
/// @throws Failure, nb::python_error
std::int64_t raw_value(SignalCodec& signal, Encoding encoding, nb::handle value,
                       const EncodeOptions& options);

}  // namespace zelk::python

#endif
