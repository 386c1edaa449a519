#include "save/rounding.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "base/numbers.hpp"
#include "input/lookup.hpp"
#include "input/opening.hpp"
#include "term/output.hpp"
#include "term/text.hpp"
#include "words/attribute_words.hpp"

namespace zelk::tool {

namespace {

/// The number that is read from a file into which `number` was written.
double written(double number) { return parse_number(NumberText(number).view()).value(); }

class RoundingSearch {
  struct Number {
    const char* field;
    const double* place;
  };

  std::string shown(const char* name) const {
    return escaped(to_utf8(view(name), database_.encoding));
  }

  /// Makes the text of an object only when it is called.
  template <typename Record>
  auto named(const char* kind, const Record& record) const {
    return [this, kind, &record] { return fmt::format("{} {}", kind, shown(record.name)); };
  }

 public:
  explicit RoundingSearch(EncodedDatabase database) : database_(database) {}

  std::vector<Rounding> run() {
    const ZelkDatabase& database = database_.records;
    attributes(database.attr_values, [] { return std::string("network"); });
    for (const symblk& node : each(database.nodes)) attributes(node.attrs, named("node", node));
    for (const msgblk& message : each(database.messages)) search(message);
    for (const env_var_blk& variable : each(database.env_vars)) {
      const auto object = named("environment variable", variable);
      numbers(
          object,
          {{"min", &variable.minimum}, {"max", &variable.maximum}, {"initial", &variable.initial}});
      attributes(variable.attrs, object);
      relations(variable.access_nodes, object);
    }
    for (const sigtype& type : each(database.signal_types)) {
      const auto object = named("signal type", type);
      scaling(type, object);
      numbers(object, {{"default", &type.default_value}});
      attributes(type.attrs, object);
    }
    for (const attr_def& definition : each(database.attr_defs)) search(definition);
    return std::move(found_);
  }

 private:
  void search(const msgblk& message) {
    const auto of_message = named("message", message);
    attributes(message.attrs, of_message);
    relations(message.tx_nodes, of_message);
    for (const sigblk& signal : each(message.signals)) {
      const auto object = [&] {
        return fmt::format("signal {}.{}", shown(message.name), shown(signal.name));
      };
      scaling(signal, object);
      attributes(signal.attrs, object);
      relations(signal.receivers, object);
    }
  }

  void search(const attr_def& definition) {
    if (!has_range(definition)) return;
    const auto object = [&] {
      return fmt::format("{} attribute {}", object_kind(definition),
                         in_quotes(to_utf8(definition.name, database_.encoding)));
    };
    numbers(object, {{"min", &definition.minimum},
                     {"max", &definition.maximum},
                     {"default", &definition.default_value.number}});
  }

  template <typename Scaled, typename Name>
  void scaling(const Scaled& scaled, const Name& object) {
    numbers(object, {{"factor", &scaled.factor},
                     {"offset", &scaled.offset},
                     {"min", &scaled.minimum},
                     {"max", &scaled.maximum}});
  }

  template <typename Name>
  void attributes(const attr* values, const Name& object) {
    for (const attr& value : each(values)) {
      if (!has_range(*value.def)) continue;
      const std::string name = to_utf8(value.def->name, database_.encoding);
      check(&value.value.number, object, [&] { return "attribute " + in_quotes(name); });
    }
  }

  template <typename Name>
  void relations(const rxblk* links, const Name& object) {
    for (const rxblk& link : each(links)) attributes(link.attrs, object);
  }

  template <typename Name>
  void numbers(const Name& object, std::initializer_list<Number> numbers) {
    for (const Number& number : numbers)
      check(number.place, object, [&] { return std::string(number.field); });
  }

  template <typename Name, typename Field>
  void check(const double* place, const Name& object, const Field& field) {
    const double after = written(*place);
    if (after != *place) found_.push_back({place, *place, after, object(), field()});
  }

  EncodedDatabase database_;
  std::vector<Rounding> found_;
};

}  // namespace

std::vector<Rounding> roundings_of(EncodedDatabase database) {
  return RoundingSearch(database).run();
}

void check_roundings(const std::vector<Rounding>& roundings, const std::string& path,
                     bool are_allowed) {
  constexpr std::size_t kMostShown = 10;
  const std::string_view lead = are_allowed ? "warning: " : "";
  for (std::size_t i = 0; i < std::min(roundings.size(), kMostShown); ++i) {
    const Rounding& rounding = roundings[i];
    print_error(behind_path(
        path,
        fmt::format("{}{}: {} {} {} {}", lead, rounding.object, rounding.field, rounding.before,
                    are_allowed ? "becomes" : "would become", rounding.after)));
  }
  const std::size_t left = roundings.size() - std::min(roundings.size(), kMostShown);
  if (left > 0) print_error(behind_path(path, fmt::format("{}and {} more", lead, left)));
  if (are_allowed || roundings.empty()) return;
  throw RequestError(
      "not written: a file keeps 14 digits of a number; --allow-rounding writes it all the same");
}

}  // namespace zelk::tool
