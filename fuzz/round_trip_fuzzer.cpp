// Reads any bytes as a database, writes it, and reads and writes that again. What a file can give
// back comes back: the same records, and the same bytes. What it cannot is refused when it is
// saved.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "base/enum_items.hpp"
#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/text_view.hpp"
#include "expect.hpp"
#include "writer/read_back.hpp"
#include "writer/writer.hpp"
#include "written_words.hpp"

namespace {

/// The bytes of a file, written to memory.
std::string written(const Lists& lists) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const file = open_memstream(&bytes, &size);
  expect(file != nullptr, "no memory");
  const zelk::ModelView model = view_of(lists);
  {
    zelk::ShortNameCache names(model);
    zelk::TextOutput out(file);
    zelk::Writer(model, names, out).write(true);
  }
  std::fclose(file);
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  return {bytes, size};
}

std::uint32_t read(Lists& lists, const std::string& text) {
  zelk_clear_error_text();
  zelk_reset_symbols_shortened();
  return lists.read_by(zelk_try_read_text, text.data(), text.size());
}

/// Which of the three sections of a file has a definition.
int section_of(const attr_def& definition) {
  if (definition.object_type > ZELK_OBJ_SIGTYPE) return 2;
  return definition.object_type == ZELK_OBJ_SIGTYPE ? 1 : 0;
}

/// Whether definitions stand as a file has them. Else it is the second writing that is final: a
/// file puts them into order, but their defaults and values as they stood.
bool has_ordered_definitions(const Lists& lists) {
  int last = 0;
  for (const attr_def& definition : zelk::each(lists.definitions)) {
    if (section_of(definition) < last) return false;
    last = section_of(definition);
  }
  return true;
}

/// Whether some message has one transmitter or none in its list, and another one in its own line:
/// of a list of so few nodes nothing is written.
bool has_lone_transmitter(const Lists& lists) {
  return zelk::find_first(lists.messages, [](const msgblk& message) {
           const rxblk* const first = message.tx_nodes;
           const symblk* const only = first ? first->node : nullptr;
           return !(first && first->next) && only != message.transmitter;
         }) != nullptr;
}

/// Whether the last item of some ENUM is empty, and is not its only empty one: a file leaves out
/// the last one of these.
bool has_empty_items(const Lists& lists) {
  return zelk::find_first(lists.definitions, [](const attr_def& definition) {
           if (definition.value_type != ZELK_ATTR_ENUM) return false;
           const zelk::EnumItems items(zelk::view(definition.enum_values));
           const std::size_t last = items.size() - 1;
           return items.at(static_cast<double>(last)) == "" && items.index_of("") != last;
         }) != nullptr;
}

/// Whether a value selects a signal more than once, and no other does: where the message has one
/// multiplexor, it is written once.
bool has_doubled_value(const Lists& lists) {
  return zelk::find_first(lists.messages, [](const msgblk& message) {
           return zelk::find_first(message.signals, [](const sigblk& signal) {
                    return signal.mux_ranges && signal.mux_ranges->next &&
                           !zelk::has_several_values(signal);
                  }) != nullptr;
         }) != nullptr;
}

/// Of a filter with one list, the other one is written, and read, as a link to nothing; one without
/// lists is not written.
bool has_half_filter(const filter_t& filter) {
  const bool is_whole = filter.categories && filter.nodes;
  return !is_whole && (filter.categories || filter.nodes || filter.mode != 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace std::string_literals;
  const std::string input(reinterpret_cast<const char*>(data), size);
  // A text that a NUL ends behind a backslash is written with a blank, or it would not end there.
  if (input.find("\\\0"s) != std::string::npos) return 0;
  Lists first;
  if (read(first, input) != ZELK_OK) return 0;
  // Saving refuses both: what a file cannot express, and names that were cut on reading.
  if (zelk_symbols_shortened() != 0 || zelk::read_back_fault(view_of(first))) return 0;
  if (has_lone_transmitter(first) || has_lost_names(first.messages, first.definitions) ||
      has_empty_items(first) || has_doubled_value(first) || has_half_filter(first.filter))
    return 0;
  const std::string once = written(first);
  Lists second;
  expect(read(second, once) == ZELK_OK, zelk_get_thread_error_text(), once);
  const std::string before = written_words(view_of(first));
  const std::string after = written_words(view_of(second));
  expect(before == after, "other records", before + "---\n" + after);
  const std::string twice = written(second);
  if (has_ordered_definitions(first)) expect(once == twice, "another file", once + "---\n" + twice);
  Lists third;
  expect(read(third, twice) == ZELK_OK, zelk_get_thread_error_text(), twice);
  const std::string thrice = written(third);
  expect(twice == thrice, "another file again", twice + "---\n" + thrice);
  return 0;
}
