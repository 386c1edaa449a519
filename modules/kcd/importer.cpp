// Fills a database from a bus of a file in KCD.

#include <optional>
#include <set>
#include <string>

#include "base/encoding.hpp"
#include "common/module.hpp"
#include "common/records.hpp"
#include "kcd/converter.hpp"
#include "kcd/element.hpp"
#include "kcd/format.hpp"
#include "kcd/left_out.hpp"
#include "kcd/message_import.hpp"
#include "kcd/nodes.hpp"
#include "kcd/source.hpp"

namespace zelk::modules::kcd {
namespace {

/// Appends the definition of an attribute.
attr_def* define(ListTail<attr_def>& definitions, const KcdAttribute& attribute) {
  attr_def& definition = append_new(definitions);
  definition.object_type = attribute.object_type;
  definition.value_type = attribute.value_type;
  assign_inline(definition.name, attribute.name, "attribute");
  if (attribute.value_type == ZELK_ATTR_STRING) {
    assign_text(definition.default_value.text, "");
  } else {
    definition.maximum = kMaxAttribute;
  }
  return &definition;
}

attr& append_value(attr*& list, attr_def* definition) {
  ListTail<attr> values(list);
  attr& value = append_new(values);
  value.def = definition;
  return value;
}

class Import {
 public:
  /// @param option  name of the wanted bus; empty: none in particular
  Import(const Source& source, const Database& target, std::string_view option)
      : reading_{source, left_out_},
        root_(reading_, source.root()),
        target_(target),
        option_(to_utf8(option, encoding_of(option))) {}

  void run();

 private:
  void check_root() const;
  Element choose_bus() const;
  std::size_t count_buses() const;
  void take_document();
  void take_bus_attributes(const Element& bus, ListTail<attr_def>& definitions);
  void take_messages(const Element& bus, const Nodes& nodes, ListTail<attr_def>& definitions);

  LeftOut left_out_;
  Reading reading_;
  Element root_;
  const Database& target_;
  const std::string option_;
};

void Import::run() {
  check_root();
  root_.take({.once = {"Document"}, .many = {"Node", "Bus"}});
  const Element bus = choose_bus();
  bus.take({.attributes = {"name", "baudrate"}, .many = {"Message"}});
  left_out_.add("Bus element", "", count_buses() - 1);
  take_document();
  const Nodes nodes(reading_, root_, bus, count_buses() == 1, target_.nodes);
  ListTail<attr_def> definitions(target_.attr_defs);
  take_bus_attributes(bus, definitions);
  take_messages(bus, nodes, definitions);
  left_out_.note();
}

void Import::check_root() const {
  if (root_.tag() != "NetworkDefinition") root_.fail("the root is not NetworkDefinition");
  const std::string_view name_space = root_.find("xmlns").value_or(kNamespace);
  if (name_space != kNamespace) {
    root_.fail("xmlns=\"" + std::string(name_space) + "\" is not \"" + kNamespace + "\"");
  }
}

std::size_t Import::count_buses() const {
  std::size_t buses = 0;
  root_.each("Bus", [&buses](const Element&) { ++buses; });
  return buses;
}

/// The bus that the option names; without an option the only one, or else the only one with
/// messages.
Element Import::choose_bus() const {
  const bool is_only = count_buses() == 1;
  std::optional<Element> chosen;
  std::size_t candidates = 0;
  std::string names;
  root_.each("Bus", [&](const Element& bus) {
    const std::string_view name = bus.text("name");
    names += (names.empty() ? "\"" : ", \"") + std::string(name) + "\"";
    const bool is_candidate = option_.empty() ? is_only || bus.child("Message") : name == option_;
    if (!is_candidate) return;
    ++candidates;
    chosen = bus;
  });
  if (candidates == 1) return *chosen;
  if (names.empty()) root_.fail("there is no Bus");
  if (option_.empty()) root_.fail("the option has to name one of the buses " + names);
  root_.fail(std::string(candidates == 0 ? "no bus" : "more than one bus") + " is named \"" +
             option_ + "\"; the buses are " + names);
}

void Import::take_document() {
  const std::optional<Element> document = root_.child("Document");
  if (!document) return;
  document->take({.attributes = {"version"}, .has_text = true});
  const std::string text = document->content();
  if (!text.empty()) assign_text(target_.comment, text);
  if (const auto version = document->find("version")) {
    assign_text(target_.version_text, document->stored(*version));
  }
}

void Import::take_bus_attributes(const Element& bus, ListTail<attr_def>& definitions) {
  attr& name = append_value(target_.attr_values, define(definitions, kBusName));
  assign_text(name.value.text, bus.stored(bus.text("name")));
  if (!bus.find("baudrate")) return;
  append_value(target_.attr_values, define(definitions, kBaudrate)).value.number =
      static_cast<double>(bus.whole("baudrate", 0, kMaxAttribute));
}

void Import::take_messages(const Element& bus, const Nodes& nodes,
                           ListTail<attr_def>& definitions) {
  ListTail<msgblk> messages(target_.messages);
  attr_def* interval = nullptr;
  std::set<std::uint32_t> ids;
  bus.each("Message", [&](const Element& element) {
    msgblk& message = append_new(messages);
    MessageImport(reading_, element, nodes).fill(message);
    if (!ids.insert(message.id).second) element.fail("another message has this id");
    if (!element.find("interval")) return;
    if (!interval) interval = define(definitions, kInterval);
    append_value(message.attrs, interval).value.number =
        static_cast<double>(element.whole("interval", 0, kMaxAttribute));
  });
}

}  // namespace

void import_file(const char* file, const Database& database, std::string_view option) {
  const Source source(file);
  Import(source, database, option).run();
}

}  // namespace zelk::modules::kcd
