// Fills a database from a bus of a file in KCD.

#include <optional>
#include <set>
#include <string>

#include "base/encoding.hpp"
#include "common/records.hpp"
#include "kcd/element.hpp"
#include "kcd/format.hpp"
#include "kcd/left_out.hpp"
#include "kcd/message_import.hpp"
#include "kcd/nodes.hpp"
#include "kcd/source.hpp"
#include "zelk/module.h"

namespace zelk::modules::kcd {

namespace {

/// The lists of the database that is filled.
struct Target {
  msgblk*& messages;
  symblk*& nodes;
  attr_def*& definitions;
  attr*& values;
  char*& comment;
  char*& user_data;
  std::string option;  ///< the wanted bus, in UTF-8; empty: none in particular
};

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
  Import(const Source& source, Target& target)
      : reading_{source, left_out_}, root_(reading_, source.root()), target_(target) {}

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
  Target& target_;
};

void Import::run() {
  check_root();
  root_.take({.once = {"Document"}, .many = {"Node", "Bus"}});
  const Element bus = choose_bus();
  bus.take({.attributes = {"name", "baudrate"}, .many = {"Message"}});
  left_out_.add("Bus element", "", count_buses() - 1);
  take_document();
  const Nodes nodes(reading_, root_, bus, count_buses() == 1, target_.nodes);
  ListTail<attr_def> definitions(target_.definitions);
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
    const bool is_candidate =
        target_.option.empty() ? is_only || bus.child("Message") : name == target_.option;
    if (!is_candidate) return;
    ++candidates;
    chosen = bus;
  });
  if (candidates == 1) return *chosen;
  if (names.empty()) root_.fail("there is no Bus");
  if (target_.option.empty()) root_.fail("the option has to name one of the buses " + names);
  root_.fail(std::string(candidates == 0 ? "no bus" : "more than one bus") + " is named \"" +
             target_.option + "\"; the buses are " + names);
}

void Import::take_document() {
  const std::optional<Element> document = root_.child("Document");
  if (!document) return;
  document->take({.attributes = {"version"}, .has_text = true});
  const std::string text = document->content();
  if (!text.empty()) assign_text(target_.comment, text);
  if (const auto version = document->find("version")) {
    assign_text(target_.user_data, document->stored(*version));
  }
}

void Import::take_bus_attributes(const Element& bus, ListTail<attr_def>& definitions) {
  attr& name = append_value(target_.values, define(definitions, kBusName));
  assign_text(name.value.text, bus.stored(bus.text("name")));
  if (!bus.find("baudrate")) return;
  append_value(target_.values, define(definitions, kBaudrate)).value.number =
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
}  // namespace zelk::modules::kcd

extern "C" ZELK_MODULE_EXPORT int zelk_import(const char* file, msgblk** messages, symblk** nodes,
                                              env_var_blk** /*env_vars*/, attr_def** attr_defs,
                                              attr** attr_values) {
  using namespace zelk::modules;
  return guarded(ZELK_ERR_CONVERTED_FORMAT, [&] {
    const zelk_conversion& more = conversion();
    const zelk::Encoding encoding = zelk::encoding_of(more.option);
    kcd::Target target = {*messages,
                          *nodes,
                          *attr_defs,
                          *attr_values,
                          *more.comment,
                          *more.user_data,
                          zelk::to_utf8(more.option, encoding)};
    const kcd::Source source(file);
    kcd::Import(source, target).run();
  });
}
