/// \file
/// What the forms of logs have in common. A further form is a source of its own and a row of the
/// table in forms.cpp.

#ifndef ZELK_LOGS_FORMS_FORM_HPP
#define ZELK_LOGS_FORMS_FORM_HPP

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "logs/input/byte_stream.hpp"
#include "zelk/logs/reader.hpp"

namespace zelk::logs {

/// A stretch of a log.
struct Chunk {
  std::string bytes{};           ///< whole lines or packets, as the form lays them out
  std::uint64_t number = 0;      ///< of the chunk, from 0; the reader sets it
  std::uint64_t first_line = 0;  ///< number of its first line or packet in the log, from 1
  std::int64_t base_time = 0;    ///< in front of its first frame, where times add up
  std::shared_ptr<const void>
      context{};  ///< what the form has to know about it, in a type of its own
};

/// A log of one form.
class Form {
 public:
  Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form() = default;

  /// Reads the next stretch; one thread at a time.
  ///
  /// @param chunk  its bytes are replaced
  /// @return false at the end
  /// @throws ZelkLogError
  virtual bool next(Chunk& chunk) = 0;
  /// Makes frames of a stretch; any number of threads at a time.
  ///
  /// @param chunk  its bytes may be taken
  /// @param block  is empty, but for memory
  virtual void parse(Chunk& chunk, ZelkLogBlock& block) const = 0;
  /// Whether each line means what it means without those in front of it.
  virtual bool has_independent_lines() const { return false; }
};

/// What a form is made of.
struct LogInput {
  std::unique_ptr<PeekedStream> stream;  ///< from its first byte on
  std::string name;                      ///< for errors
  ZelkLogOptions options;
  /// Of a text, read and parsed at a time; more than `kLongestLine`. Processors keep so much in
  /// their caches, with the frames that it becomes.
  std::size_t block_bytes = 1 << 18;
};

struct FormRow {
  ZelkLogForm form;
  /// Peeks at a few bytes alone, or at what has come of lines, so that a log that is just being
  /// recorded can be opened.
  bool (*is_form_of)(PeekedStream& stream);
  /// @throws ZelkLogError when the log cannot be read
  std::unique_ptr<Form> (*open)(LogInput input);
};

/// All forms, in the order in which they are tried; the last one takes any log.
std::span<const FormRow> forms();

/// Notes a line that is no frame, and keeps its beginning if it is one of the first ones.
void note_malformed(ZelkLogBlock& block, std::uint64_t number, std::string_view line);

// --- The forms ---

std::unique_ptr<Form> open_capture(LogInput input);
std::unique_ptr<Form> open_trc(LogInput input);

std::unique_ptr<Form> open_candump(LogInput input);

}  // namespace zelk::logs

#endif
