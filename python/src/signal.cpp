// The class Signal of Python.

#include <cmath>

#include "base/list.hpp"
#include "base/multiplexing.hpp"
#include "base/signal_bits.hpp"
#include "check/objects/record_words.hpp"
#include "collection.hpp"
#include "objects.hpp"
#include "zelk/model.h"

namespace zelk::python {
namespace {

constexpr std::int64_t kMostBits = 32767;
/// Values of a multiplexor that are listed one by one: a file can name four billion in one range.
constexpr std::uint64_t kMostIds = 1 << 16;

bool has_range(const sigblk& signal) { return signal.minimum != 0 || signal.maximum != 0; }

template <double sigblk::*kMember>
nb::object limit_of(const Signal& signal) {
  const sigblk& record = signal.get();
  return has_range(record) ? number_to_python(record.*kMember) : nb::none();
}

template <double sigblk::*kMember>
nb::object number_of(const Signal& signal) {
  return number_to_python(signal.get().*kMember);
}

nb::object choices_of(const Signal& signal) {
  const Use use(signal.model());
  const sigblk& record = signal.get();
  const nb::object choices =
      choices_to_python(record.values, is_signed(record), signal.model()->encoding);
  return choices.is_none() ? choices : checked(PyDictProxy_New(choices.ptr()));
}

nb::object multiplexer_ids_of(const Signal& signal) {
  const sigblk& record = signal.get();
  if (!is_multiplexed(record)) return nb::none();
  nb::list ids;
  std::uint64_t count = 0;
  for (const muxor_val_range& range : each(record.mux_ranges)) {
    if (range.high < range.low) continue;
    count += std::uint64_t{range.high} - range.low + 1;
    if (count > kMostIds) {
      throw Failure(FailureKind::kEdit,
                    "more than " + std::to_string(kMostIds) +
                        " values select the signal: multiplexer_ranges has them as ranges");
    }
    for (std::uint64_t id = range.low; id <= range.high; ++id) ids.append(nb::int_(id));
  }
  return ids;
}

nb::object multiplexer_ranges_of(const Signal& signal) {
  nb::list ranges;
  for (const muxor_val_range& range : each(signal.get().mux_ranges))
    ranges.append(nb::make_tuple(range.low, range.high));
  return ranges;
}

nb::object multiplexer_signal_of(const Signal& signal) {
  const sigblk* const multiplexor = signal.get().mux_signal;
  return multiplexor ? nb::object(text_to_python(view(multiplexor->name), signal.model()->encoding))
                     : nb::none();
}

nb::object message_of(const Signal& signal) {
  const msgblk* const message = signal.get().message;
  return message ? nb::cast(signal.to(*message)) : nb::none();
}

nb::str repr(const Signal& signal) {
  const sigblk& record = signal.get();
  const Encoding encoding = signal.model()->encoding;
  std::string text = "<zelk.Signal " + to_utf8(view(record.name), encoding) + ": " +
                     std::to_string(record.length) + " bits at " +
                     std::to_string(record.start_bit) + ", " +
                     std::string(check::byte_order(record.flags)) + " " +
                     check::number_format(record.flags, record.value_type);
  if (record.factor != 1) text += ", x " + check::number_text(record.factor);
  if (record.offset != 0) text += ", + " + check::number_text(record.offset);
  if (*record.unit) text += ", " + to_utf8(view(record.unit), encoding);
  return text_to_python(text + ">");
}

// --- Changes ---

void set_name(const Signal& signal, nb::handle name) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  const std::string stored = name_to_record(name);
  const sigblk* const other =
      record.message ? find_name(record.message->signals, stored.c_str()) : nullptr;
  if (other && other != &record)
    throw Failure(FailureKind::kEdit, "another signal of the message is named " + shown(name));
  editor_of(*signal.model()).SetName(record, stored.c_str());
}

template <double sigblk::*kMember>
void set_number(const Signal& signal, nb::handle number) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  record.*kMember = real_from_python(number, "number");
}

void set_scale(const Signal& signal, nb::handle number) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  const double factor = real_from_python(number, "scale");
  if (factor == 0) throw Failure(FailureKind::kEdit, "scale = 0: all values would be one");
  record.factor = factor;
}

template <std::uint16_t sigblk::*kMember, std::int64_t kLow>
void set_bits(const Signal& signal, nb::handle number) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  record.*kMember = static_cast<std::uint16_t>(whole_from_python(number, "bits", kLow, kMostBits));
}

void set_byte_order(const Signal& signal, nb::handle order) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  const std::string wanted = text_to_record(order, "byte_order", Encoding::kUtf8);
  if (wanted != "little_endian" && wanted != "big_endian") {
    throw Failure(FailureKind::kEdit,
                  "byte_order = " + shown(order) + ": neither 'little_endian' nor 'big_endian'");
  }
  set_flag(record, ZELK_SIGNAL_MOTOROLA, wanted == "big_endian");
}

void set_signed(const Signal& signal, bool is_signed) {
  set_flag(signal.change().record, ZELK_SIGNAL_SIGNED, is_signed);
}

void set_unit(const Signal& signal, nb::handle unit) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  const std::string stored = inline_text_to_record(unit, "unit", signal.model()->encoding);
  record.unit[stored.copy(record.unit, stored.size())] = '\0';
}

void clear_choices(sigblk& signal) {
  while (val* const value = signal.values) {
    signal.values = value->next;
    zelk_mfree(value->text);
    zelk_mfree(value);
  }
}

void set_choices(const Signal& signal, nb::handle choices) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  std::vector<std::pair<std::int32_t, std::string>> stored;
  if (!choices.is_none()) {
    const auto given = nb::cast<nb::dict>(nb::module_::import_("builtins").attr("dict")(choices));
    for (const auto& [number, text] : given) {
      const std::int64_t value = whole_from_python(number, "choice", INT32_MIN, UINT32_MAX);
      stored.emplace_back(static_cast<std::int32_t>(value),
                          text_to_record(text, "choice", signal.model()->encoding));
    }
  }
  clear_choices(record);
  // Each enters in front.
  for (auto entry = stored.rbegin(); entry != stored.rend(); ++entry)
    editor_of(*signal.model()).SetValueDescription(record, entry->first, entry->second.c_str());
}

void set_receivers(const Signal& signal, nb::handle names) {
  const auto changing = signal.change();
  sigblk& record = changing.record;
  EditManager& editor = editor_of(*signal.model());
  const std::vector<symblk*> nodes = nodes_of(*signal.model(), names);
  while (record.receivers && record.receivers->node)
    editor.RemoveReceiver(record, *record.receivers->node);
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) editor.AddReceiver(record, **node);
}

template <typename Getter, typename Setter>
void bind_number(nb::class_<Signal>& signal, const char* name, Getter get, Setter set,
                 const char* signature, const char* doc) {
  signal.def_prop_rw(name, get, set, nb::arg("number").none(), nb::for_getter(nb::sig(signature)),
                     doc);
}

void bind_numbers(nb::class_<Signal>& signal) {
  bind_number(signal, "scale", number_of<&sigblk::factor>, set_scale,
              "def scale(self) -> int | float", "Factor: physical = raw * scale + offset.");
  bind_number(signal, "offset", number_of<&sigblk::offset>, set_number<&sigblk::offset>,
              "def offset(self) -> int | float", "Physical value of the raw value 0.");
  bind_number(signal, "minimum", limit_of<&sigblk::minimum>, set_number<&sigblk::minimum>,
              "def minimum(self) -> int | float | None",
              "Smallest physical value; None when the file has no range (0 to 0).");
  bind_number(signal, "maximum", limit_of<&sigblk::maximum>, set_number<&sigblk::maximum>,
              "def maximum(self) -> int | float | None",
              "Largest physical value; None when the file has no range (0 to 0).");
  bind_number(
      signal, "start", [](const Signal& s) { return s.get().start_bit; },
      set_bits<&sigblk::start_bit, 0>, "def start(self) -> int",
      "Bit number (byte * 8 + bit, bit 0 the least significant one) of the least significant bit "
      "of an Intel signal, of the most significant bit of a Motorola one.");
  bind_number(
      signal, "length", [](const Signal& s) { return s.get().length; },
      set_bits<&sigblk::length, 1>, "def length(self) -> int", "Bits.");
}

void bind_form(nb::class_<Signal>& signal) {
  signal
      .def_prop_rw(
          "byte_order",
          [](const Signal& s) { return is_motorola(s.get()) ? "big_endian" : "little_endian"; },
          set_byte_order, nb::arg("order").none(),
          nb::for_setter(nb::sig("def byte_order(self, order: str, /) -> None")),
          "\"little_endian\" (Intel) or \"big_endian\" (Motorola).")
      .def_prop_rw(
          "is_signed", [](const Signal& s) { return is_signed(s.get()); }, set_signed,
          "Whether raw values are in two's complement.")
      .def_prop_ro(
          "is_float", [](const Signal& s) { return is_ieee(s.get()); },
          "Whether the bits are an IEEE number.")
      .def_prop_rw(
          "unit",
          [](const Signal& s) { return text_or_none(view(s.get().unit), s.model()->encoding); },
          set_unit, nb::arg("unit").none(), nb::for_getter(nb::sig("def unit(self) -> str | None")),
          nb::for_setter(nb::sig("def unit(self, unit: str | None, /) -> None")),
          "Unit of physical values, or None.")
      .def_prop_rw("choices", choices_of, set_choices, nb::arg("choices").none(),
                   nb::for_getter(nb::sig("def choices(self) -> collections.abc.Mapping[int, "
                                          "Choice] | None")),
                   nb::for_setter(nb::sig("def choices(self, choices: "
                                          "collections.abc.Mapping[int, str] | None, /) -> None")),
                   "Texts by raw values, or None; to change them, assign a whole mapping.")
      .def_prop_rw(
          "receivers",
          [](const Signal& s) {
            return nb::tuple(node_names(s.get().receivers, s.model()->encoding));
          },
          set_receivers, nb::arg("names").none(),
          nb::for_getter(nb::sig("def receivers(self) -> tuple[str, ...]")),
          nb::for_setter(
              nb::sig("def receivers(self, names: collections.abc.Iterable[str], /) -> None")),
          "Names of the nodes that receive it.");
}

void bind_multiplexing(nb::class_<Signal>& signal) {
  signal
      .def_prop_ro(
          "is_multiplexer", [](const Signal& s) { return is_multiplexor(s.get()); },
          "Whether its value selects other signals of the message.")
      .def_prop_ro(
          "is_multiplexed", [](const Signal& s) { return is_multiplexed(s.get()); },
          "Whether another signal selects it; others are in every frame.")
      .def_prop_ro("multiplexer_signal", multiplexer_signal_of,
                   nb::sig("def multiplexer_signal(self) -> str | None"),
                   "Name of the signal that selects it.")
      .def_prop_ro("multiplexer_ids", multiplexer_ids_of,
                   nb::sig("def multiplexer_ids(self) -> list[int] | None"),
                   "Raw values of that signal for which it is in the frame; None for a signal "
                   "that is in every frame.")
      .def_prop_ro("multiplexer_ranges", multiplexer_ranges_of,
                   nb::sig("def multiplexer_ranges(self) -> list[tuple[int, int]]"),
                   "The same as ranges, both ends included.");
}

}  // namespace

void bind_signals(nb::module_& module) {
  nb::class_<Signal> signal(module, "Signal", "A value in the frames of a message.");
  signal
      .def_prop_rw("name", name_of<sigblk>, set_name, nb::arg("name").none(),
                   nb::for_getter(nb::sig("def name(self) -> str")),
                   nb::for_setter(nb::sig("def name(self, name: str, /) -> None")), "Its name.")
      .def_prop_ro("message", message_of, nb::sig("def message(self) -> Message"),
                   "The message that has it.")
      .def("__repr__", repr);
  bind_numbers(signal);
  bind_form(signal);
  bind_multiplexing(signal);
  bind_object<sigblk>(signal);
  bind_collection<sigblk>(module, "Signals", "Signal", "Signals in their order, also by name.");
}

}  // namespace zelk::python
