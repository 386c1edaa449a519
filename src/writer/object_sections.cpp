// The frame of the file, the objects of the network, and comments.

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "base/characters.hpp"
#include "base/multiplexing.hpp"
#include "base/seeded_hash.hpp"
#include "base/signal_bits.hpp"
#include "text/keywords.hpp"
#include "text/new_symbols.hpp"
#include "text/token_codes.hpp"
#include "text/words.hpp"
#include "writer/writer.hpp"

namespace zelk {
namespace {

/// Of a signal or a signal type.
template <typename Record>
int byte_order(const Record& record) {
  return is_motorola(record) ? 0 : 1;
}

template <typename Record>
char sign(const Record& record) {
  return is_signed(record) ? '-' : '+';
}

/// Whether the writer puts this word where no object's name stands: the placeholder node, an access
/// code, or a multiplexer indicator ("M", "m3", "m3M").
bool is_written_word(std::string_view word) {
  if (is_no_node(word) || word.starts_with(kAccessCodePrefix) || word == "M") return true;
  if (!word.starts_with('m')) return false;
  word.remove_prefix(1);
  if (word.ends_with('M')) word.remove_suffix(1);
  return std::all_of(word.begin(), word.end(), is_digit);
}

}  // namespace

void Writer::write(bool with_multiplexor_ranges) {
  out_.put("VERSION ");
  out_.put_quoted(model_.version);
  out_.put("\n\n");
  if (needs_new_symbols()) new_symbols();
  bit_timings();
  nodes();
  value_tables();
  messages();
  transmitters();
  variables();
  comments();
  attributes();
  value_descriptions();
  categories();
  filter();
  type_references();
  signal_groups();
  value_types();
  if (with_multiplexor_ranges) multiplexor_ranges();
}

bool Writer::needs_new_symbols() const {
  const auto has_comment = [](const auto& object) { return !view(object.comment).empty(); };
  return !view(model_.comment).empty() || find_first(model_.nodes, has_comment) ||
         find_first(model_.messages,
                    [](const msgblk& message) {
                      return !view(message.comment).empty() || message.signals;
                    }) ||
         find_first(
             model_.env_vars,
             [](const env_var_blk& variable) { return variable.type == ZELK_ENVVAR_DATA; }) ||
         model_.filter.categories || model_.filter.nodes || model_.attr_defs || model_.categories ||
         model_.sig_types;
}

/// The keywords behind "NS_" in the table, and the names that the last file announced.
void Writer::new_symbols() {
  out_.put("\nNS_ : \n");
  const auto* const first =
      std::find_if(zelk_keyword.begin(), zelk_keyword.end(),
                   [](const Keyword& keyword) { return keyword.code == T_NS; });
  for (const auto* keyword = first + 1; keyword != zelk_keyword.end(); ++keyword) {
    out_.put('\t', keyword->text, '\n');
  }
  for (const std::string& symbol : unused_new_symbols()) out_.put('\t', symbol, '\n');
  out_.put('\n');
}

/// Calls `use` with every name that stands outside quotes. The order is that of the file: names
/// that are shortened get their numbers in the order in which they are asked for.
template <typename Use>
void Writer::for_each_written_name(Use use) {
  const auto use_links = [&](const rxblk* links) {
    for (const rxblk& link : each(links)) use(name(link.node));
  };
  for (const symblk& node : each(model_.nodes)) use(name(node));
  for (const valtable& table : each(model_.val_tables)) use(table.name);
  for (const msgblk& message : each(model_.messages)) {
    use(name(message));
    use(transmitter(message));
    for (const sigblk& signal : each(message.signals)) {
      use(name(signal));
      use_links(signal.receivers);
    }
    for (const siggroupblk& group : each(message.siggroups)) use(group.name);
  }
  for (const msgblk& message : each(model_.messages)) use_links(message.tx_nodes);
  for (const env_var_blk& variable : each(model_.env_vars)) {
    use(name(variable));
    use_links(variable.access_nodes);
  }
  for (const sigtype& type : each(model_.sig_types)) use(type.name);
  for (const cat& category : each(model_.categories)) use(category.name);
}

/// Those of the last file's announced names that no record bears here. A reader skips every
/// statement in which an announced name stands, so a name that is in use must not be announced
/// again.
std::vector<std::string> Writer::unused_new_symbols() {
  std::vector<std::string> symbols = last_new_symbols();
  if (symbols.empty()) return symbols;
  std::unordered_set<std::string_view, SeededHash> in_use;
  for_each_written_name([&in_use](std::string_view name) { in_use.insert(name); });
  std::erase_if(symbols, [&in_use](const std::string& symbol) {
    return is_written_word(symbol) || in_use.contains(symbol);
  });
  return symbols;
}

void Writer::bit_timings() {
  out_.put("BS_:\n");
  for (const btlblk& timing : each(model_.bit_timings)) {
    out_.put(' ', Padded{timing.baudrate, 5}, ':', Padded{timing.btr1, 3}, ',',
             Padded{timing.btr2, 3}, '\n');
  }
  out_.put('\n');
}

void Writer::nodes() {
  out_.put("BU_:");
  for (const symblk& node : each(model_.nodes)) out_.put(' ', name(node));
  out_.put('\n');
}

// --- Messages and signals ---

void Writer::messages() {
  for (const msgblk& message : each(model_.messages)) {
    out_.put("\nBO_ ", message.id, ' ', name(message), ": ", message.dlc, ' ', transmitter(message),
             '\n');
    for (const sigblk& signal : each(message.signals)) this->signal(signal);
  }
  out_.put('\n');
}

void Writer::signal(const sigblk& signal) {
  out_.put(" SG_ ", name(signal));
  if (is_multiplexed(signal)) {
    out_.put(" m", signal.mux_ranges ? signal.mux_ranges->low : std::uint32_t{0});
    if (is_multiplexor(signal)) out_.put('M');
  } else if (is_multiplexor(signal)) {
    out_.put(" M");
  }
  out_.put(" : ", signal.start_bit, '|', signal.length, '@', byte_order(signal), sign(signal), " (",
           signal.factor, ',', signal.offset, ") [", signal.minimum, '|', signal.maximum, "] ");
  out_.put_quoted(signal.unit);
  out_.put(' ');
  names(signal.receivers);
  out_.put('\n');
  notice(signal);
}

void Writer::notice(const sigblk& signal) {
  noticed_.link_attribute |= find_first(signal.receivers, [](const rxblk& link) {
                               return link.attrs != nullptr;
                             }) != nullptr;
  noticed_.type |= signal.sigtype != nullptr;
  noticed_.value_type |= signal.value_type != ZELK_VALUE_INTEGER;
  noticed_.multiplexor |= signal.mux_signal != nullptr;
}

/// Nodes behind a blank, separated by commas; the placeholder without a blank.
void Writer::names(const rxblk* links) {
  if (!links) out_.put(ZELK_NO_NODE);
  char separator = ' ';
  for (const rxblk& link : each(links)) out_.put(std::exchange(separator, ','), name(link.node));
}

/// The "BO_" line names one transmitter already.
void Writer::transmitters() {
  for (const msgblk& message : each(model_.messages)) {
    const rxblk* links = message.tx_nodes;
    if (!links || !links->next) continue;
    out_.put("BO_TX_BU_ ", message.id, " : ", name(links->node));
    for (const rxblk& link : each(links->next)) out_.put(',', name(link.node));
    out_.put(";\n");
  }
  out_.put('\n');
}

// --- Environment variables and signal types ---

void Writer::variables() {
  for (const env_var_blk& variable : each(model_.env_vars)) this->variable(variable);
  for (const env_var_blk& variable : each(model_.env_vars)) {
    if (variable.type != ZELK_ENVVAR_DATA) continue;
    out_.put("ENVVAR_DATA_ ", name(variable), ": ", variable.data_size, ";\n");
  }
  for (const sigtype& type : each(model_.sig_types)) signal_type(type);
  out_.put('\n');
}

/// This statement writes strings and data as integers: a bit of the access code marks a string, a
/// further statement data.
void Writer::variable(const env_var_blk& variable) {
  const bool is_string = variable.type == ZELK_ENVVAR_STRING;
  const bool is_plain = !is_string && variable.type != ZELK_ENVVAR_DATA;
  out_.put("\nEV_ ", name(variable), ": ", is_plain ? variable.type : std::uint32_t{0}, " [",
           variable.minimum, '|', variable.maximum, "] ");
  out_.put_quoted(variable.unit);
  out_.put(' ', variable.initial, ' ', variable.id, ' ', kAccessCodePrefix,
           Hexadecimal{variable.access_type | (is_string ? kAccessCodeString : 0)}, ' ');
  names(variable.access_nodes);
  out_.put(";\n");
}

void Writer::signal_type(const sigtype& type) {
  out_.put("SGTYPE_ ", type.name, " : ", type.length, '@', byte_order(type), sign(type), " (",
           type.factor, ',', type.offset, ") [", type.minimum, '|', type.maximum, "] ");
  out_.put_quoted(type.unit);
  out_.put("  ", type.default_value);
  if (type.valtable) out_.put(' ', type.valtable->name);
  out_.put(";\n");
}

// --- Comments ---

void Writer::comments() {
  if (!view(model_.comment).empty()) {
    out_.put("CM_ ");
    comment_text(model_.comment);
  }
  for (const symblk& node : each(model_.nodes)) {
    if (view(node.comment).empty()) continue;
    out_.put("CM_ BU_ ", name(node), ' ');
    comment_text(node.comment);
  }
  for (const msgblk& message : each(model_.messages)) message_comments(message);
  for (const env_var_blk& variable : each(model_.env_vars)) {
    if (view(variable.comment).empty()) continue;
    out_.put("CM_ EV_ ", name(variable), ' ');
    comment_text(variable.comment);
  }
  for (const sigtype& type : each(model_.sig_types)) {
    if (view(type.comment).empty()) continue;
    out_.put("CM_ SGTYPE_ ", type.name, ' ');
    comment_text(type.comment);
  }
}

void Writer::message_comments(const msgblk& message) {
  if (!view(message.comment).empty()) {
    out_.put("CM_ BO_ ", message.id, ' ');
    comment_text(message.comment);
  }
  for (const sigblk& signal : each(message.signals)) {
    if (view(signal.comment).empty()) continue;
    out_.put("CM_ SG_ ", message.id, ' ', name(signal), ' ');
    comment_text(signal.comment);
  }
}

void Writer::comment_text(const char* text) {
  out_.put_quoted(text);
  out_.put(";\n");
}

}  // namespace zelk
