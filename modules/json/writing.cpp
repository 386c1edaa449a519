// Writes a database as a document. What hosts store in it for themselves is left out and noted.

#include <bit>

#include "base/encoding.hpp"
#include "common/file.hpp"
#include "json/converter.hpp"
#include "json/form.hpp"
#include "json/output.hpp"

namespace zelk::modules::json {
namespace {

bool is_same(auto a, auto b) { return a == b; }
/// -0 is not 0, and not-a-number is itself.
bool is_same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// A key of the object that is open in the text.
struct Place {
  TextOutput& out;
  const Path& object;
  std::string_view name;
  bool is_required;

  /// Begins the member; the result writes its value.
  ValueOutput add() const {
    out.key(name);
    return {out, Path(object, name)};
  }
};

/// Writes records by their keys: `give` for each way in which a key stands for a field.
class Writer {
 public:
  explicit Writer(TextOutput& out) : out_(out) {}

  /// Writes a record as an object of the document.
  void write(const Path& path, const auto& record) {
    out_.open('{');
    for_each_key(record,
                 [&](std::string_view name, bool is_required, const auto& field, auto kind) {
                   give({out_, path, name, is_required}, field, kind);
                 });
    out_.close('}');
    note_losses(path, record);
  }

 private:
  // --- Elements of arrays ---

  void element(const ValueOutput& value, const auto& record) { write(value.path(), record); }
  void element(const ValueOutput& value, const catlink& link) { refer(value, link.category); }
  void element(const ValueOutput& value, const siglistblk& member) { refer(value, member.signal); }
  void element(const ValueOutput& value, const rxblk& link) {
    link.attrs ? write(value.path(), link) : refer(value, link.node);
  }
  void element(const ValueOutput& value, const muxor_val_range& range) {
    range.low == range.high ? value.field(range.low) : write(value.path(), range);
  }
  void refer(const ValueOutput& value, const auto* field) {
    value.reference(field, lists_.of(field));
  }

  // --- Keys ---

  void give(Place key, const auto& field, Fixed) { key.add().field(field); }
  void give(Place key, const char* name, SignalName) { key.add().field(name); }
  template <std::size_t kSize>
  void give(Place key, const char (&name)[kSize], Plain) {
    if (key.is_required || name[0] != '\0') key.add().field(name);
  }
  template <typename Field>
  void give(Place key, const Field& field, Plain) {
    give(key, field, Otherwise<Field>{});
  }
  template <typename Field>
  void give(Place key, const Field& field, Otherwise<Field> kind) {
    if (key.is_required || !is_same(field, kind.absent)) key.add().field(field);
  }
  void give(Place key, const zelk_attr_value_t& value, AsText) { give(key, value.text, Plain()); }
  void give(Place key, const zelk_attr_value_t& value, AsNumber) {
    give(key, value.number, Plain());
  }
  void give(Place key, std::int64_t number, NumberWord kind) {
    if (key.is_required || number != 0) key.add().word(number, kind.words);
  }
  void give(Place key, unsigned flags, Flag kind) {
    if ((flags & kind.bit) != 0) key.add().flag();
  }
  void give(Place key, unsigned flags, ByteOrder) {
    if ((flags & ZELK_SIGNAL_MOTOROLA) != 0) key.add().text(kMotorola);
  }
  void give(Place key, unsigned flags, OtherBits kind) {
    if ((flags & kind.mask) != 0) key.add().field(flags & kind.mask);
  }
  void give(Place key, std::uint32_t id, Identifier) { key.add().field(id & ~ZELK_ID_EXTENDED); }
  void give(Place key, const char* field, Items) {
    if (field) key.add().items(field);
  }
  void give(Place key, const auto* field, Reference) {
    if (key.is_required || field) refer(key.add(), field);
  }
  void give(Place key, auto* head, List kind) {
    if (kind.attribute_kind) lists_.References<attr_def>::expect(*kind.attribute_kind);
    array(key, head);
    lists_.index(head);
  }
  void give(Place key, sigblk* head, Signals) {
    lists_.index(head);
    array(key, head);
    check_circles(key.object, head);
  }
  void give(Place key, const filter_t& filter, Part) {
    const bool is_empty = !filter.categories && !filter.nodes && filter.mode == 0;
    if (!is_empty) write(key.add().path(), filter);
  }

  void array(Place key, const auto* head) {
    if (!head) return;
    const ValueOutput value = key.add();
    std::size_t position = 0;
    out_.open('[');
    for (const auto& record : each(head)) {
      out_.element();
      element(ValueOutput(out_, Path(value.path(), position++)), record);
    }
    out_.close(']');
  }

  // --- What no key holds ---

  static void note_losses(const Path&, const auto&) {}
  static void note_losses(const Path& path, const siggroupblk& group) {
    if (group.extra) note(path, "the host's own entries of the group are left out");
  }
  static void note_losses(const Path& path, const env_var_blk& variable) {
    if (variable.unused != 0) note(path, "the host's own number of the variable is left out");
  }
  static void note(const Path& path, const char* what) {
    zelk_note(ZELK_ERR_FORMAT, 0, (path.text() + ": " + what).c_str());
  }

  TextOutput& out_;
  Lists lists_;
};

/// A document is ASCII except for its texts, which stand in quotes: the whole is UTF-8 when each of
/// them is, and else is converted as a whole.
std::string document_of(const Database& database) {
  TextOutput out;
  Writer(out).write(Path(), database);
  std::string text = out.text() + "\n";
  if (is_utf8(text)) return text;
  const std::string_view assumed = kEncodings[0];
  text.replace(text.find(assumed), assumed.size(), kEncodings[1]);  // in the third line
  return to_utf8(text, Encoding::kWindows1252);
}

}  // namespace

void export_file(const char* file, const Database& database, std::string_view) {
  write_new_file(file, document_of(database));
}

}  // namespace zelk::modules::json
