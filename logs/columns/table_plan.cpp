#include "logs/columns/table_plan.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/list.hpp"
#include "base/signal_bits.hpp"
#include "logs/lookup/unique_names.hpp"

namespace zelk::logs {

TablePlan::TablePlan(const msgblk& message, const std::vector<bool>& wanted,
                     const ZelkColumnOptions& options, Encoding encoding)
    : columns_{{"time", ZelkColumnType::kInt64, {}, nullptr},
               {"channel", ZelkColumnType::kDictionary, {}, nullptr}},
      texts_(kFirstSignalColumn),
      presence_(plan_presence(message, wanted)) {
  std::size_t index = 0;
  for (const sigblk& signal : each<const sigblk>(message.signals)) {
    if (wanted[index]) add_signal(signal, index, options, encoding);
    ++index;
  }
  UniqueNames names;
  for (ZelkColumn& column : columns_) column.name = names.unique(column.name);
  const auto window = [](const WindowColumn& column) {
    return std::tuple(column.window.first_byte, column.window.is_motorola);
  };
  std::ranges::stable_sort(window_columns_, {}, window);
  if (!frame_columns_.empty()) decoder_ = std::make_unique<const ZelkFrameDecoder>(message);
}

void TablePlan::add_signal(const sigblk& signal, std::size_t index,
                           const ZelkColumnOptions& options, Encoding encoding) {
  const std::string name = to_utf8(view(signal.name), encoding);
  const bool has_texts =
      options.values == ZelkColumnValues::kTexts && signal.values && !is_ieee(signal);
  const bool has_raw =
      options.values == ZelkColumnValues::kRaw || (has_texts && options.raw_beside);
  if (has_texts) {
    add_column(signal, index, {name, ZelkColumnType::kDictionary, {}, &signal},
               std::make_shared<const DescriptionTexts>(signal, encoding), false);
  }
  if (has_raw) {
    add_column(signal, index, {has_texts ? name + ".raw" : name, raw_type(signal), {}, &signal},
               nullptr, false);
  }
  if (has_texts || has_raw) return;
  const std::string unit = to_utf8(view(signal.unit), encoding);
  add_column(signal, index, {name, ZelkColumnType::kDouble, unit, &signal}, nullptr, true);
}

void TablePlan::add_column(const sigblk& signal, std::size_t index, ZelkColumn column,
                           std::shared_ptr<const DescriptionTexts> texts, bool is_physical) {
  const auto presence = presence_.of_signals[index];
  Conversion conversion{{}, signal.factor, signal.offset, texts.get()};
  Window window;
  if (presence) {
    const Placement placement = placement_of(signal).value_or(Placement{});
    window = placement.window;
    conversion.field = placement.field;
  }
  const Kernel kernel =
      is_physical ? physical_kernel(signal, conversion.field) : raw_kernel(column.type);
  if (presence) {
    window_columns_.push_back({columns_.size(), window, *presence, kernel, conversion});
  } else {
    frame_columns_.push_back({columns_.size(), index, kernel, conversion});
  }
  columns_.push_back(std::move(column));
  texts_.push_back(std::move(texts));
}

}  // namespace zelk::logs
