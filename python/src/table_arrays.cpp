// Columns as arrays of NumPy.

#include <nanobind/ndarray.h>

#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "table.hpp"

namespace zelk::python {
namespace {

nb::dlpack::dtype number_type(ZelkColumnType type) {
  switch (type) {
    case ZelkColumnType::kInt8:
      return nb::dtype<std::int8_t>();
    case ZelkColumnType::kInt16:
      return nb::dtype<std::int16_t>();
    case ZelkColumnType::kInt32:
      return nb::dtype<std::int32_t>();
    case ZelkColumnType::kInt64:
      return nb::dtype<std::int64_t>();
    case ZelkColumnType::kUint8:
      return nb::dtype<std::uint8_t>();
    case ZelkColumnType::kUint16:
      return nb::dtype<std::uint16_t>();
    case ZelkColumnType::kUint32:
      return nb::dtype<std::uint32_t>();
    case ZelkColumnType::kUint64:
      return nb::dtype<std::uint64_t>();
    case ZelkColumnType::kFloat:
      return nb::dtype<float>();
    case ZelkColumnType::kDouble:
      return nb::dtype<double>();
    case ZelkColumnType::kDictionary:
      break;
  }
  return nb::dtype<std::int32_t>();
}

/// An array that keeps `owner`.
template <typename Owner>
nb::object keeping(Owner owner, const void* values, std::size_t count, nb::dlpack::dtype type,
                   bool is_shared) {
  auto kept = std::make_unique<Owner>(std::move(owner));
  const nb::capsule capsule(kept.get(),
                            [](void* pointer) noexcept { delete static_cast<Owner*>(pointer); });
  kept.release();
  void* const start = const_cast<void*>(values);
  if (is_shared)
    return nb::cast(nb::ndarray<nb::numpy, nb::ro>(start, 1, &count, capsule, nullptr, type));
  return nb::cast(nb::ndarray<nb::numpy>(start, 1, &count, capsule, nullptr, type));
}

/// New memory of `count` values, which is not initialised.
template <typename Value>
struct NewValues {
  explicit NewValues(std::size_t size) : count(size), values(new Value[size]) {}
  nb::object give(nb::dlpack::dtype type) && {
    const Value* const start = values.get();
    return keeping(std::move(values), start, count / (type.bits / 8 / sizeof(Value)), type, false);
  }

  std::size_t count;
  std::unique_ptr<Value[]> values;
};

std::size_t length_of(const ArrowArray& array) { return static_cast<std::size_t>(array.length); }

bool has_nulls(const TableRows& rows, std::size_t column) {
  for (const SharedArray& batch : rows.batches())
    if (rows.values(*batch, column).null_count != 0) return true;
  return false;
}

template <typename Number>
void fill_nulls(const ArrowArray& values, unsigned char* to) {
  constexpr Number kNaN = std::numeric_limits<Number>::quiet_NaN();
  for (std::size_t row = 0; row < length_of(values); ++row)
    if (is_null(values, row)) std::memcpy(to + row * sizeof kNaN, &kNaN, sizeof kNaN);
}

nb::object copied_values(const TableRows& rows, std::size_t column, bool fills) {
  const ZelkColumnType type = rows.column(column).type;
  const std::size_t width = number_type(type).bits / 8;
  NewValues<unsigned char> copy(rows.row_count() * width);
  {
    const nb::gil_scoped_release unlocked;
    unsigned char* to = copy.values.get();
    for (const SharedArray& batch : rows.batches()) {
      const ArrowArray& values = rows.values(*batch, column);
      const std::size_t size = length_of(values) * width;
      if (size > 0) std::memcpy(to, values.buffers[1], size);
      if (fills && values.null_count != 0 && type == ZelkColumnType::kDouble)
        fill_nulls<double>(values, to);
      if (fills && values.null_count != 0 && type == ZelkColumnType::kFloat)
        fill_nulls<float>(values, to);
      to += size;
    }
  }
  return std::move(copy).give(number_type(type));
}

/// Text `index` of a dictionary.
std::string_view text_at(const ArrowArray& dictionary, std::size_t index) {
  const auto* const offsets = static_cast<const std::int32_t*>(dictionary.buffers[1]);
  const auto begin = static_cast<std::size_t>(offsets[index]);
  const auto end = static_cast<std::size_t>(offsets[index + 1]);
  return std::string_view(static_cast<const char*>(dictionary.buffers[2]) + begin, end - begin);
}

/// The texts of several dictionaries, each once.
class AllTexts {
 public:
  /// The new index of each text of a dictionary. Batches mostly share theirs.
  const std::vector<std::int32_t>& enter(const ArrowArray& dictionary) {
    if (dictionary.buffers[1] == last_) return indices_;
    last_ = dictionary.buffers[1];
    indices_.clear();
    for (std::size_t i = 0; i < length_of(dictionary); ++i) {
      const auto next = static_cast<std::int32_t>(known_.size());
      const auto [found, is_new] = known_.try_emplace(text_at(dictionary, i), next);
      if (is_new) texts.append(text_to_python(found->first));
      indices_.push_back(found->second);
    }
    return indices_;
  }

  nb::list texts;

 private:
  std::unordered_map<std::string_view, std::int32_t> known_;  ///< in memory of the batches
  std::vector<std::int32_t> indices_;
  const void* last_ = nullptr;
};

}  // namespace

nb::object column_values(const TableRows& rows, std::size_t column, bool fills) {
  const ZelkColumnType type = rows.column(column).type;
  const bool is_real = type == ZelkColumnType::kDouble || type == ZelkColumnType::kFloat;
  if (rows.batches().size() != 1 || (fills && is_real && has_nulls(rows, column)))
    return copied_values(rows, column, fills);
  const SharedArray& batch = rows.batches().front();
  const ArrowArray& values = rows.values(*batch, column);
  return keeping(batch, values.buffers[1], length_of(values), number_type(type), true);
}

nb::object column_nulls(const TableRows& rows, std::size_t column) {
  if (!has_nulls(rows, column)) return nb::none();
  NewValues<bool> nulls(rows.row_count());
  bool* to = nulls.values.get();
  for (const SharedArray& batch : rows.batches()) {
    const ArrowArray& values = rows.values(*batch, column);
    for (std::size_t row = 0; row < length_of(values); ++row) *to++ = is_null(values, row);
  }
  return std::move(nulls).give(nb::dtype<bool>());
}

nb::object column_codes(const TableRows& rows, std::size_t column) {
  NewValues<std::int32_t> codes(rows.row_count());
  AllTexts texts;
  std::int32_t* to = codes.values.get();
  for (const SharedArray& batch : rows.batches()) {
    const ArrowArray& values = rows.values(*batch, column);
    const std::vector<std::int32_t>& indices = texts.enter(*values.dictionary);
    const auto* const from = static_cast<const std::int32_t*>(values.buffers[1]);
    for (std::size_t row = 0; row < length_of(values); ++row)
      *to++ = is_null(values, row) ? -1 : indices[static_cast<std::size_t>(from[row])];
  }
  return nb::make_tuple(std::move(codes).give(nb::dtype<std::int32_t>()), texts.texts);
}

}  // namespace zelk::python
