// Value descriptions, categories, the filter, and the sections that say more about signals.

#include "base/multiplexing.hpp"
#include "text/words.hpp"
#include "writer/writer.hpp"

namespace zelk {

// --- Value descriptions ---

void Writer::value_tables() {
  for (const valtable& table : each(model_.val_tables)) {
    out_.put("VAL_TABLE_ ", table.name, ' ');
    descriptions(table.values);
  }
  out_.put('\n');
}

void Writer::value_descriptions() {
  for_each_signal([this](const msgblk& message, const sigblk& signal) {
    if (!signal.values) return;
    out_.put("VAL_ ", message.id, ' ', name(signal), ' ');
    descriptions(signal.values);
  });
  for (const env_var_blk& variable : each(model_.env_vars)) {
    if (!variable.values) continue;
    out_.put("VAL_ ", name(variable), ' ');
    descriptions(variable.values);
  }
}

void Writer::descriptions(const val* list) {
  for (const val& description : each(list)) {
    out_.put(description.value, ' ');
    out_.put_quoted(description.text);
    out_.put(' ');
  }
  out_.put(";\n");
}

// --- Categories and filter ---

void Writer::categories() {
  for (const cat& category : each(model_.categories)) {
    out_.put("CAT_DEF_ ", std::int32_t{category.number}, ' ', category.name, ' ', category.level,
             ";\n");
  }
  for (const symblk& node : each(model_.nodes)) {
    category_of(node, "BU_ ", name(node));
  }
  for (const env_var_blk& variable : each(model_.env_vars)) {
    category_of(variable, "EV_ ", name(variable));
  }
  for (const msgblk& message : each(model_.messages)) {
    category_of(message, "BO_ ", message.id);
  }
}

template <typename Record, typename Key>
void Writer::category_of(const Record& record, const char* keyword, const Key& key) {
  if (!record.category) return;
  out_.put("CAT_ ", keyword, key, ' ', std::int32_t{record.category->number}, ";\n");
}

void Writer::filter() {
  const filter_t& filter = model_.filter;
  if (!filter.categories && !filter.nodes) return;
  out_.put("FILTER ", filter.mode, " CAT_ ");
  if (!filter.categories) out_.put("0 ");
  for (const catlink& link : each(filter.categories)) {
    out_.put(std::int32_t{link.category ? link.category->number : std::int16_t{0}}, ' ');
  }
  out_.put("BU_ ");
  if (!filter.nodes) out_.put('"', kNoFilterNode, "\" ");
  for (const rxblk& link : each(filter.nodes)) {
    if (link.node) {
      out_.put(name(*link.node), ' ');
    } else {
      out_.put('"', kNoFilterNode, "\" ");
    }
  }
  out_.put(";\n");
}

// --- More about signals ---

void Writer::type_references() {
  if (!noticed_.type) return;
  for_each_signal([this](const msgblk& message, const sigblk& signal) {
    if (!signal.sigtype) return;
    out_.put("SIG_TYPE_REF_ ", message.id, ' ', name(signal), " : ", signal.sigtype->name, ";\n");
  });
}

void Writer::signal_groups() {
  for (const msgblk& message : each(model_.messages)) {
    for (const siggroupblk& group : each(message.siggroups)) {
      out_.put("SIG_GROUP_ ", message.id, ' ', group.name, ' ',
               static_cast<std::uint32_t>(group.repetitions), " :");
      for (const siglistblk& member : each(group.signals)) {
        if (member.signal) out_.put(' ', name(*member.signal));
      }
      out_.put(";\n");
    }
  }
}

void Writer::value_types() {
  if (noticed_.value_type) {
    for_each_signal([this](const msgblk& message, const sigblk& signal) {
      if (signal.value_type == ZELK_VALUE_INTEGER) return;
      out_.put("SIG_VALTYPE_ ", message.id, ' ', name(signal), " : ", signal.value_type, ";\n");
    });
  }
  for (const sigtype& type : each(model_.sig_types)) {
    if (type.value_type == ZELK_VALUE_INTEGER) continue;
    out_.put("SIGTYPE_VALTYPE_ ", type.name, " : ", type.value_type, ";\n");
  }
}

// --- Multiplexor ranges ---

void Writer::multiplexor_ranges() {
  const msgblk* const messages = noticed_.multiplexor ? model_.messages : nullptr;
  for (const msgblk& message : each(messages)) {
    const bool is_extended = count_multiplexors(message) > 1;
    for (const sigblk& signal : each(message.signals)) {
      if (has_range_statement(signal, is_extended)) signal_ranges(message, signal);
    }
  }
  out_.put('\n');
}

void Writer::signal_ranges(const msgblk& message, const sigblk& signal) {
  out_.put("\nSG_MUL_VAL_ ", message.id, ' ', name(signal), ' ', name(*signal.mux_signal));
  for (const muxor_val_range& range : each(signal.mux_ranges)) {
    out_.put(' ', range.low, '-', range.high, range.next ? ',' : ';');
  }
}

}  // namespace zelk
