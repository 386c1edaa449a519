// Columns as arrays of NumPy.

#include <nanobind/ndarray.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/seeded_hash.hpp"
#include "table.hpp"

namespace zelk::python {
namespace {

struct NumberType {
  nb::dlpack::dtype type;
  const char* name;  ///< of NumPy
};

NumberType number_type(ZelkColumnType type) {
  switch (type) {
    case ZelkColumnType::kInt8:
      return {nb::dtype<std::int8_t>(), "int8"};
    case ZelkColumnType::kInt16:
      return {nb::dtype<std::int16_t>(), "int16"};
    case ZelkColumnType::kInt32:
      return {nb::dtype<std::int32_t>(), "int32"};
    case ZelkColumnType::kInt64:
      return {nb::dtype<std::int64_t>(), "int64"};
    case ZelkColumnType::kUint8:
      return {nb::dtype<std::uint8_t>(), "uint8"};
    case ZelkColumnType::kUint16:
      return {nb::dtype<std::uint16_t>(), "uint16"};
    case ZelkColumnType::kUint32:
      return {nb::dtype<std::uint32_t>(), "uint32"};
    case ZelkColumnType::kUint64:
      return {nb::dtype<std::uint64_t>(), "uint64"};
    case ZelkColumnType::kFloat:
      return {nb::dtype<float>(), "float32"};
    case ZelkColumnType::kDouble:
      return {nb::dtype<double>(), "float64"};
    case ZelkColumnType::kDictionary:
      break;
  }
  return {nb::dtype<std::int32_t>(), "int32"};
}

/// A view of memory that `owner` keeps, not to be written to.
template <typename Owner>
nb::object keeping(Owner owner, const void* values, std::size_t count, nb::dlpack::dtype type) {
  auto kept = std::make_unique<Owner>(std::move(owner));
  const nb::capsule capsule(kept.get(),
                            [](void* pointer) noexcept { delete static_cast<Owner*>(pointer); });
  static_cast<void>(kept.release());
  void* const start = const_cast<void*>(values);
  return nb::cast(nb::ndarray<nb::numpy, nb::ro>(start, 1, &count, capsule, nullptr, type));
}

/// A new array, whose values are not initialised. NumPy's own memory has large pages where it can,
/// which large copies are much quicker into.
template <typename Value = unsigned char>
struct NewArray {
  NewArray(std::size_t count, const char* type)
      : array(nb::module_::import_("numpy").attr("empty")(count, type)),
        values(static_cast<Value*>(nb::cast<nb::ndarray<nb::numpy>>(array).data())) {}

  nb::object array;
  Value* values;
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
  const std::size_t width = width_of(type);
  const NewArray copy(rows.row_count(), number_type(type).name);
  {
    const nb::gil_scoped_release unlocked;
    unsigned char* to = copy.values;
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
  return copy.array;
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
  std::unordered_map<std::string_view, std::int32_t, SeededHash>
      known_;  ///< in memory of the batches
  std::vector<std::int32_t> indices_;
  const void* last_ = nullptr;
};

}  // namespace

std::size_t width_of(ZelkColumnType type) { return number_type(type).type.bits / 8; }

nb::object column_values(const TableRows& rows, std::size_t column, bool fills) {
  const ZelkColumnType type = rows.column(column).type;
  const bool is_real = type == ZelkColumnType::kDouble || type == ZelkColumnType::kFloat;
  if (rows.batches().size() != 1 || (fills && is_real && has_nulls(rows, column)))
    return copied_values(rows, column, fills);
  const SharedArray& batch = rows.batches().front();
  const ArrowArray& values = rows.values(*batch, column);
  return keeping(batch, values.buffers[1], length_of(values), number_type(type).type);
}

nb::object column_nulls(const TableRows& rows, std::size_t column) {
  if (!has_nulls(rows, column)) return nb::none();
  const NewArray<bool> nulls(rows.row_count(), "bool");
  bool* to = nulls.values;
  for (const SharedArray& batch : rows.batches()) {
    const ArrowArray& values = rows.values(*batch, column);
    const bool is_uniform = values.null_count == 0 || values.null_count == values.length;
    if (is_uniform) std::fill_n(to, length_of(values), values.null_count != 0);
    for (std::size_t row = 0; !is_uniform && row < length_of(values); ++row)
      to[row] = is_null(values, row);
    to += length_of(values);
  }
  return nulls.array;
}

nb::object column_codes(const TableRows& rows, std::size_t column) {
  const NewArray<std::int32_t> codes(rows.row_count(), "int32");
  AllTexts texts;
  std::int32_t* to = codes.values;
  for (const SharedArray& batch : rows.batches()) {
    const ArrowArray& values = rows.values(*batch, column);
    const std::size_t count = length_of(values);
    const std::vector<std::int32_t>& indices = texts.enter(*values.dictionary);
    const auto* const from = static_cast<const std::int32_t*>(values.buffers[1]);
    const bool is_all_null = values.null_count == values.length;
    if (is_all_null) std::fill_n(to, count, -1);
    for (std::size_t row = 0; !is_all_null && row < count; ++row)
      to[row] = is_null(values, row) ? -1 : indices[static_cast<std::size_t>(from[row])];
    to += count;
  }
  return nb::make_tuple(codes.array, texts.texts);
}

}  // namespace zelk::python
