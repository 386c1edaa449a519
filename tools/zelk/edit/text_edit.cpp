#include "edit/text_edit.hpp"

#include <cstddef>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "base/quoting.hpp"
#include "base/seeded_hash.hpp"
#include "diff/diff_text.hpp"
#include "files/files.hpp"
#include "input/lookup.hpp"
#include "save/exact_text.hpp"
#include "term/output.hpp"
#include "term/text.hpp"

namespace zelk::tool {

namespace {

/// The records of a text, in a manager of their own.
class ReadText {
 public:
  explicit ReadText(const std::string& text) {
    const char* name = nullptr;
    if (manager_.CreateDatabase("text", &name, nullptr) != ZelkErrorOk) throw std::bad_alloc();
    database_ = manager_.GetDatabase(name);
    ZelkDatabase& d = *database_;
    attr_def* slots[4] = {};
    zelk_clear_error_text();
    const std::uint32_t error =
        zelk_try_read_text(text.c_str(), text.size(), &d.nodes, &d.messages, &d.env_vars,
                           &d.bit_timings, &d.attr_defs, &d.attr_values, &d.categories, &d.filter,
                           &d.comment, &d.user_data, &d.signal_types, &d.value_tables, slots);
    if (error == ZELK_ERR_MEMORY) throw std::bad_alloc();
    if (error != ZELK_OK) fault_ = last_report();
  }

  /// Why the reader refuses the text; empty when it does not.
  const std::string& fault() const { return fault_; }

  EncodedDatabase encoded(Encoding encoding) const { return {*database_, encoding}; }

 private:
  static std::string last_report() {
    const std::vector<std::string> lines = escaped_lines(utf8(zelk_get_error_text()));
    return lines.empty() ? "refused" : lines.back();
  }

  ZelkWriteManager manager_{static_cast<void*>(nullptr)};
  ZelkDatabase* database_ = nullptr;
  std::string fault_;
};

constexpr std::size_t kMostShown = 10;

/// Prints what the file holds otherwise than the records.
void print_differences(EncodedDatabase wanted, EncodedDatabase found, const std::string& path,
                       const std::string& lead) {
  std::size_t count = 0;
  check::for_each_difference(wanted, found, [&](const check::Difference& difference) {
    if (++count <= kMostShown) print_error(behind_path(path, lead + difference_line(difference)));
  });
  if (count > kMostShown)
    print_error(behind_path(path, fmt::format("{}and {} more", lead, count - kMostShown)));
}

std::string bytes_of(const std::string& path) {
  try {
    return files::read_all(path.c_str());
  } catch (const std::system_error& error) {
    throw RequestError(error.code().message());
  }
}

}  // namespace

TextEdit::TextEdit(const std::string& path, const OpenedDatabase& opened)
    : opened_(opened),
      original_(check::read_document(check::Source(path, bytes_of(path)))),
      before_(exact_text(opened.encoded())) {}

std::size_t TextEdit::count_listed_nodes() const {
  std::unordered_set<std::string_view, SeededHash> names;
  for (const check::Token& token : original_.tokens) {
    const std::string_view name = original_.text_of(token);
    if (token.role == check::Role::kNode && name != ZELK_NO_NODE) names.insert(name);
  }
  return names.size();
}

check::Patched TextEdit::finish(const std::string& path) const {
  const std::string after = exact_text(opened_.encoded());
  const check::Document documents[] = {check::read_document(check::Source("", before_)),
                                       check::read_document(check::Source("", after))};
  for (const check::Nodes nodes : {check::Nodes::kListed, check::Nodes::kAll}) {
    std::optional<check::Patched> patched =
        check::patch(original_, documents[0], documents[1], nodes);
    if (patched && is_right(patched->text, after, path, nodes == check::Nodes::kAll))
      return *std::move(patched);
  }
  throw RequestError(
      "not written: these edits cannot be made in the text of the file alone; --canonical writes "
      "all of it in the library's own form");
}

/// Whether a text has the records, by what the library writes of them.
///
/// @param tells  whether a text that has not is complained about
bool TextEdit::is_right(const std::string& text, const std::string& wanted, const std::string& path,
                        bool tells) const {
  const ReadText read(text);
  const std::string& fault = read.fault();
  if (!fault.empty() && tells) print_error(behind_path(path, "could not be read again: " + fault));
  if (!fault.empty()) return false;
  const EncodedDatabase found = read.encoded(opened_.encoding);
  const bool is_right = exact_text(found) == wanted;
  if (is_right || tells) {
    print_differences(opened_.encoded(), found, path,
                      is_right ? "warning: in the file this is otherwise: " : "would differ: ");
  }
  return is_right;
}

}  // namespace zelk::tool
