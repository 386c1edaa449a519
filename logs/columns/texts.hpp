/// \file
/// Dictionaries: texts that columns refer to by their index.

#ifndef ZELK_LOGS_COLUMNS_TEXTS_HPP
#define ZELK_LOGS_COLUMNS_TEXTS_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/encoding.hpp"
#include "base/hash_table.hpp"
#include "base/seeded_hash.hpp"
#include "logs/columns/buffer.hpp"
#include "zelk/records.h"

namespace zelk::logs {

/// Stands for no text.
inline constexpr std::int32_t kNoText = -1;

/// Texts in UTF-8 as the columnar format has them: where each begins and ends, and their bytes.
struct TextArray {
  /// @throws std::length_error for 2 GiB of texts, std::bad_alloc
  explicit TextArray(std::span<const std::string> texts);

  std::size_t count;
  Buffer offsets;
  Buffer bytes;
};

/// Distinct texts, each with the index of its first entry.
class TextTable {
 public:
  std::int32_t enter(const std::string& text);
  std::span<const std::string> texts() const { return texts_; }
  /// The texts entered so far. Arrays share it, and keep it alive.
  std::shared_ptr<const TextArray> array();

 private:
  std::vector<std::string> texts_;
  std::unordered_map<std::string, std::int32_t, SeededHash> indices_;
  std::shared_ptr<const TextArray> array_;  ///< null when it has to be made
};

/// The value descriptions of a signal.
class DescriptionTexts {
 public:
  DescriptionTexts(const sigblk& signal, Encoding encoding);

  /// Index of the text for a raw value, or `kNoText`. Of several texts for a value the first
  /// counts. Descriptions have 32 bits, signed or not.
  std::int32_t find(std::int64_t raw) const {
    if (raw < INT32_MIN || raw > std::int64_t{UINT32_MAX}) return kNoText;
    const auto value = static_cast<std::uint32_t>(raw);
    return value < near_.size() ? near_[value] : far_.find(value);
  }
  const std::shared_ptr<const TextArray>& array() const { return array_; }

 private:
  std::vector<std::int32_t> near_;  ///< of small values: most descriptions are of these
  HashTable<std::uint32_t, std::int32_t, kNoText> far_;  ///< of all values
  std::shared_ptr<const TextArray> array_;
};

}  // namespace zelk::logs

#endif
