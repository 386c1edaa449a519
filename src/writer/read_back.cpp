#include "writer/read_back.hpp"

#include <cmath>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/enum_items.hpp"
#include "base/hash_table.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/seeded_hash.hpp"
#include "base/text_view.hpp"
#include "model/symbols.hpp"
#include "text/definition_index.hpp"
#include "text/words.hpp"

namespace zelk {
namespace {

constexpr std::uint32_t kCountMax = 32767;  // sizes, positions and rates: the lexer's short numbers

/// An object without a name is written with a substitute.
bool is_readable(const char* name, bool is_node) {
  return view(name).empty() || can_name_object(name, is_node);
}

bool has_values(const rxblk* links) {
  return find_first(links, [](const rxblk& link) { return link.attrs != nullptr; });
}

/// Whether statements beside its "SG_" line name the signal.
bool has_statements(const sigblk& signal) {
  return !view(signal.comment).empty() || signal.attrs || signal.values || signal.sigtype ||
         signal.value_type != ZELK_VALUE_INTEGER || has_values(signal.receivers);
}

bool has_statements(const msgblk& message) {
  const bool has_transmitters = message.tx_nodes && message.tx_nodes->next;
  const bool is_extended = count_multiplexors(message) > 1;
  return !view(message.comment).empty() || message.attrs || message.category || message.siggroups ||
         has_transmitters || has_values(message.tx_nodes) ||
         find_first(message.signals, [is_extended](const sigblk& signal) {
           return has_statements(signal) || has_range_statement(signal, is_extended);
         });
}

bool has_statements(const env_var_blk& variable) {
  return !view(variable.comment).empty() || variable.attrs || variable.values ||
         variable.category || variable.type == ZELK_ENVVAR_DATA ||
         has_values(variable.access_nodes);
}

bool has_statements(const sigtype& type) {
  return !view(type.comment).empty() || type.attrs || type.value_type != ZELK_VALUE_INTEGER;
}

std::string name_of(const char* kind, const char* name) {
  return std::string(kind) + " " + std::string(view(name));
}

std::string name_of(const msgblk& message) { return name_of("message", message.name); }
std::string name_of(const symblk& node) { return name_of("node", node.name); }
std::string name_of(const sigtype& type) { return name_of("signal type", type.name); }
std::string name_of(const attr_def& definition) { return name_of("attribute", definition.name); }
std::string name_of(const env_var_blk& variable) {
  return name_of("environment variable", variable.name);
}
std::string name_of(const sigblk& signal) {
  const std::string message(view(signal.message ? signal.message->name : nullptr));
  return "signal " + message + "::" + std::string(view(signal.name));
}

/// Walks over the records in the order of the file.
class Check {
 public:
  explicit Check(const ModelView& model) : model_(model) {
    for (const auto& node : each(model.nodes)) nodes_.insert(&node);
    for (const auto& def : each(model.attr_defs)) {
      definitions_.emplace(&def, 0);
      index_.add_old(const_cast<attr_def*>(&def));  // which is only looked at here
    }
    for (const auto& cat : each(model.categories)) categories_.insert(cat.number);
    for (const auto& type : each(model.sig_types))
      if (!types_.insert(type.name).second) hidden_types_.insert(&type);
    for (const auto& table : each(model.val_tables)) tables_.insert(table.name);
  }

  std::optional<std::string> run() {
    check_all(model_.bit_timings);
    check_all(model_.nodes);
    check_all(model_.val_tables);
    check_all(model_.messages);
    check_all(model_.env_vars);
    check_all(model_.sig_types);
    check_all(model_.attr_defs);
    values(model_.net_attrs, ZELK_OBJ_NETWORK, [] { return std::string("the database"); });
    check_all(model_.categories);
    filter();
    const auto has_several = [](const msgblk& message) { return count_multiplexors(message) > 1; };
    if (find_first(model_.messages, has_several)) cycles();
    return fault_;
  }

 private:
  template <typename Record>
  void check_all(const Record* list) {
    for (; list && !fault_; list = list->next) check(*list);
  }

  template <typename Record>
  void require(bool holds, const Record& record, const char* otherwise) {
    if (!holds && !fault_) fault_ = name_of(record) + ": " + otherwise;
  }

  void check(const btlblk& timing) {
    if (timing.baudrate > kCountMax) fault_ = "bit timing: its baud rate is above 32767";
  }

  void check(const symblk& node) {
    require(is_readable(node.name, true), node, "its name is none of the format");
    require(is_first_of_name(node.name, node_names_), node, "another node has its name");
    values(node.attrs, ZELK_OBJ_NODE, [&] { return name_of(node); });
    category(node);
  }

  void check(const valtable& table) { inline_name("value table", table.name); }
  void check(const cat& category) { inline_name("category", category.name); }

  void check(const msgblk& message) {
    require(is_readable(message.name, false), message, "its name is none of the format");
    require(message.dlc <= kCountMax, message, "its data length is above 32767");
    require(ids_.insert(message.id).second || !has_statements(message), message,
            "another message has its identifier, and would get what is said of it");
    if (message.transmitter) node_name(*message.transmitter);
    links(message.tx_nodes, ZELK_OBJ_REL_MESSAGE);
    values(message.attrs, ZELK_OBJ_MESSAGE, [&] { return name_of(message); });
    category(message);
    check_all(message.signals);
    members(message);
  }

  void check(const sigblk& signal) {
    require(is_readable(signal.name, false), signal, "its name is none of the format");
    require(signal.start_bit <= kCountMax, signal, "its start bit is above 32767");
    require(signal.length >= 1, signal, "its length is 0");
    require(signal.length <= kCountMax, signal, "its length is above 32767");
    require(signal.factor != 0 && !std::isnan(signal.factor), signal, "its factor is 0");
    require(!(signal.minimum > signal.maximum), signal, "its minimum is above its maximum");
    require(fits_inline(view(signal.unit)), signal, "its unit is longer than 32 characters");
    require(!signal.sigtype || types_.contains(signal.sigtype->name), signal,
            "the database does not hold its signal type");
    require(!hidden_types_.contains(signal.sigtype), signal,
            "another signal type has the name of its signal type");
    links(signal.receivers, ZELK_OBJ_REL_SIGNAL);
    values(signal.attrs, ZELK_OBJ_SIGNAL, [&] { return name_of(signal); });
  }

  using NameSet = std::unordered_set<std::string_view, SeededHash>;

  /// Missing and long names are written as names that no other has.
  static bool is_first_of_name(const char* name, NameSet& names) {
    return view(name).empty() || !fits_inline(view(name)) || names.insert(view(name)).second;
  }

  /// Finds the signals of a message that stand behind another one of their name.
  void find_hidden(const msgblk& message) {
    hidden_signals_.clear();
    const auto signals = each<const sigblk>(message.signals);
    HashTable<std::uint64_t, const sigblk*> named(signals.size());
    for (const sigblk& signal : signals) {
      const std::string_view name = view(signal.name);
      if (name.empty() || !fits_inline(name)) continue;
      const auto is_same = [name](const sigblk* other) { return view(other->name) == name; };
      if (named.enter(hash_(name), &signal, is_same) == &signal) continue;
      hidden_signals_.insert(&signal);
      require(!has_statements(signal), signal,
              "another signal has its name, and would get what is said of it");
    }
  }

  /// What refers to signals must mean signals of the same message, the first ones of their names.
  void members(const msgblk& message) {
    find_hidden(message);
    const bool has_links = message.siggroups || find_first(message.signals, [](const sigblk& s) {
                             return s.mux_signal || s.mux_ranges;
                           });
    if (has_links) links_to_signals(message);
  }

  void links_to_signals(const msgblk& message) {
    std::unordered_set<const sigblk*> own;
    for (const sigblk& signal : each(message.signals)) own.insert(&signal);
    const std::size_t multiplexors = count_multiplexors(message);
    const bool is_extended = multiplexors > 1;
    for (const sigblk& signal : each(message.signals)) {
      require(signal.mux_signal || !signal.mux_ranges || multiplexors != 1, signal,
              "the only multiplexor of its message would select it");
      require(!signal.mux_signal || own.contains(signal.mux_signal), signal,
              "its multiplexor is no signal of its message");
      require(!signal.mux_signal || signal.mux_ranges, signal,
              "it has a multiplexor, but no value that selects it");
      if (fault_ || hidden_signals_.empty() || !has_range_statement(signal, is_extended)) continue;
      require(!hidden_signals_.contains(&signal) && !hidden_signals_.contains(signal.mux_signal),
              signal, "the multiplexing of signals with one name cannot be told apart");
    }
    for (const siggroupblk& group : each(message.siggroups)) {
      inline_name("signal group", group.name);
      for (const siglistblk& member : each(group.signals)) {
        require(!member.signal || own.contains(member.signal), message,
                "a signal group of it has a signal of another message");
        require(!hidden_signals_.contains(member.signal), message,
                "a signal group of it has the second of two signals with one name");
      }
    }
  }

  void check(const env_var_blk& variable) {
    require(is_readable(variable.name, false), variable, "its name is none of the format");
    require(variable.type <= ZELK_ENVVAR_DATA, variable, "its type is none of the format");
    require((variable.access_type & kAccessCodeString) == 0, variable,
            "bit 15 of its access code means a string");
    require(fits_inline(view(variable.unit)), variable, "its unit is longer than 32 characters");
    require(is_first_of_name(variable.name, variable_names_) || !has_statements(variable), variable,
            "another variable has its name, and would get what is said of it");
    links(variable.access_nodes, ZELK_OBJ_REL_ENVVAR);
    values(variable.attrs, ZELK_OBJ_ENVVAR, [&] { return name_of(variable); });
    category(variable);
  }

  void check(const sigtype& type) {
    inline_name("signal type", type.name);
    require(fits_inline(view(type.unit)), type, "its unit is longer than 32 characters");
    require(!type.valtable || tables_.contains(type.valtable->name), type,
            "the database does not hold its value table");
    require(!hidden_types_.contains(&type) || !has_statements(type), type,
            "another signal type has its name, and would get what is said of it");
    values(type.attrs, ZELK_OBJ_SIGTYPE, [&] { return name_of(type); });
  }

  void check(const attr_def& definition) {
    const std::int32_t kind = definition.object_type;
    const std::int32_t type = definition.value_type;
    require(fits_inline(view(definition.name)), definition,
            "its name is longer than 32 characters");
    require(kind >= ZELK_OBJ_NETWORK && kind <= ZELK_OBJ_REL_ENVVAR, definition,
            "its kind of object is none of the format");
    require(type >= ZELK_ATTR_INT && type <= ZELK_ATTR_HEX, definition,
            "its type is none of the format");
    if (type != ZELK_ATTR_ENUM) return;
    const std::string_view text = view(definition.default_value.text);
    const bool is_item = EnumItems(view(definition.enum_values)).index_of(text).has_value();
    require(text.empty() || text == kEmptyItem || is_item, definition, "its default is no item");
  }

  void filter() {
    for (const catlink& link : each(model_.filter.categories)) {
      if (!link.category || categories_.contains(link.category->number) || fault_) continue;
      fault_ = "filter: the database does not hold a category of it";
    }
    for (const rxblk& link : each(model_.filter.nodes)) {
      if (!link.node || nodes_.contains(link.node) || fault_) continue;
      fault_ = "filter: the database does not hold a node of it";
    }
  }

  /// A file in which some message has several multiplexors must be free of circles. Where a message
  /// has one, that selects all multiplexed signals: itself, too.
  void cycles() {
    CircleSearch search;
    for (const msgblk& message : each(model_.messages)) {
      const bool has_one = count_multiplexors(message) == 1;
      for (const sigblk& signal : each(message.signals)) {
        if (!is_multiplexor(signal)) continue;
        const bool selects_itself = has_one && is_multiplexed(signal);
        require(!selects_itself && !search.circle_above(signal), signal,
                "its multiplexors form a circle");
      }
    }
  }

  template <typename Record>
  void category(const Record& record) {
    require(!record.category || categories_.contains(record.category->number), record,
            "the database does not hold its category");
  }

  /// A reader of the file must find the definition of each value, and no other one of its name.
  ///
  /// @param kind            of the object, `zelk_obj_t`
  /// @param name_of_object  gives the name of the object that has the values
  template <typename NameOfObject>
  void values(const attr* list, std::int32_t kind, NameOfObject name_of_object) {
    for (const attr& value : each(list)) {
      if (!value.def || fault_) continue;
      const auto found = definitions_.find(value.def);
      if (found == definitions_.end()) {
        fault_ = name_of_object() + ": the database does not define an attribute of it";
        return;
      }
      const unsigned bit = 1U << static_cast<unsigned>(kind);
      if ((found->second & bit) != 0) continue;
      found->second |= bit;
      if (index_.find(kind, value.def->name) == value.def) continue;
      fault_ = name_of_object() + ": another definition has the name of " +
               std::string(view(value.def->name)) + ", and would get its value";
    }
  }

  void links(const rxblk* list, std::int32_t kind) {
    for (const rxblk& link : each(list)) {
      if (!link.node) continue;
      node_name(*link.node);
      values(link.attrs, kind, [&] { return name_of(*link.node); });
    }
  }

  /// Of a node that a record links to: the list of nodes need not hold it.
  void node_name(const symblk& node) {
    if (nodes_.contains(&node)) return;
    require(is_readable(node.name, true), node, "its name is none of the format");
  }

  template <std::size_t kSize>
  void inline_name(const char* kind, const char (&name)[kSize]) {
    if (fault_ || (fits_inline(view(name)) && is_name(name))) return;
    fault_ = name_of(kind, name) + ": its name is none of the format";
  }

  const ModelView& model_;
  std::optional<std::string> fault_;
  std::unordered_set<const symblk*> nodes_;
  NameSet node_names_;
  /// With the kinds of objects for which a reader finds them, a bit each, as far as that was asked.
  std::unordered_map<const attr_def*, unsigned> definitions_;
  DefinitionIndex index_;
  std::unordered_set<std::int32_t, SeededHash> categories_;
  std::unordered_set<std::uint32_t, SeededHash> ids_;
  NameSet variable_names_;
  NameSet types_;
  NameSet tables_;
  // What stands behind another one of its name, which a reader of the file finds instead.
  std::unordered_set<const sigtype*> hidden_types_;
  std::unordered_set<const sigblk*> hidden_signals_;  // of the message that is looked at
  SeededHash hash_;
};

}  // namespace

std::optional<std::string> read_back_fault(const ModelView& model) { return Check(model).run(); }

}  // namespace zelk
