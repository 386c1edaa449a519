// The C interface.

#include <memory>
#include <thread>
#include <utility>

#include "operations/operation.hpp"
#include "operations/worlds.hpp"

namespace {

/// A new record, released at once.
template <typename Record>
Answer made(Record* record) {
  zelk_mfree(record);
  return record;
}

/// Releases what was read before, and reads.
template <typename... Input>
Answer read(Records& w, Input... input) {
  w.read.emplace();
  return w.read->read_by(input...);
}

const std::string& text_of_file() {
  static const std::string text = bytes_of(kEveryStatement);
  return text;
}

constexpr char kMemoryOrName[] = "24|silent:1";

const Operations<Records> kOperations(
    "Records",
    {
        {"zelk_malloc zelk_mfree", Promise::kIsSilent, "null",
         [](Records&) { return made(zelk_malloc(9)); }},
        {"zelk_create_msgblk", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_msgblk()); }},
        {"zelk_create_sigblk", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_sigblk()); }},
        {"zelk_create_btlblk", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_btlblk()); }},
        {"zelk_create_symbol", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_symbol()); }},
        {"zelk_create_rx", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_rx(nullptr)); }},
        {"zelk_create_tx", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_tx(nullptr)); }},
        {"zelk_create_muxor_value_range", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_muxor_value_range()); }},
        {"zelk_create_evblk", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_evblk()); }},
        {"zelk_create_value", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_value()); }},
        {"zelk_create_attr_def", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_attr_def()); }},
        {"zelk_create_category", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_category()); }},
        {"zelk_create_valtable", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_valtable()); }},
        {"zelk_create_sigtype", Promise::kReports, kRaises,
         [](Records&) { return made(zelk_create_sigtype()); }},
        {"zelk_create_siggroup", Promise::kReports, kRaises,
         [](Records& w) { return made(zelk_create_siggroup(w.message)); }},
        {"zelk_create_siglist", Promise::kReports, kRaises,
         [](Records& w) { return made(zelk_create_siglist(w.signal)); }},
        {"zelk_add_multiplexor_value_range", Promise::kReports, kRaises,
         [](Records& w) -> Answer {
           return zelk_add_multiplexor_value_range(w.signal->next, w.signal, 7, 9);
         }},
        {"zelk_add_multiplexor_value_range", Promise::kLeavesAPart, kRaises,  // another multiplexor
         [](Records& w) -> Answer {
           return zelk_add_multiplexor_value_range(w.signal->next->next, w.signal, 7, 9);
         }},

        {"zelk_read", Promise::kLeavesAPart, "ZelkException|silent:1",
         [](Records& w) { return read(w, zelk_read, kEveryStatement); }},
        {"zelk_try_read", Promise::kLeavesAPart, kMemoryOrName,
         [](Records& w) { return read(w, zelk_try_read, kEveryStatement); }},
        {"zelk_try_read_text", Promise::kLeavesAPart, kMemoryOrName,
         [](Records& w) {
           return read(w, zelk_try_read_text, text_of_file().data(), text_of_file().size());
         }},
        {"zelk_write", Promise::kLeavesAPart, kRaises,
         [](Records& w) -> Answer { return w.lists.write(w.written.c_str()); }},
        {"zelk_try_write", Promise::kLeavesAPart, "24",
         [](Records& w) -> Answer { return w.lists.write_by(zelk_try_write, w.written.c_str()); }},

        {"zelk_get_error_text", Promise::kIsSilent, "bad_alloc|Resource temporarily unavailable",
         [](Records&) -> Answer {  // a new thread finds no memory for its texts, or does not begin
           std::thread([] {
             zelk_note(ZELK_ERR_MEANING, 0,
                       "a text that is longer than what fits into a short string");
             zelk_get_error_text();
           }).join();
           return called();
         }},
        {"zelk_note zelk_report zelk_format_error zelk_get_thread_error_text zelk_clear_error_text "
         "ZelkException::ZelkException ZelkException::what",
         Promise::kAllocatesNothing, nullptr,
         [](Records&) -> Answer {
           zelk_clear_error_text();
           zelk_note(ZELK_ERR_MEANING, 1, "a");
           zelk_report(ZELK_ERR_MEANING, 2, "b", 0);
           zelk_format_error(ZELK_ERR_MEANING, 3, ZelkException("c").what());
           return zelk_get_thread_error_text();
         }},
    });

const std::vector<Stated<Records>> kLookups = {
    {"zelk_get_message zelk_get_message_name zelk_get_message_n zelk_get_j1939_message "
     "zelk_get_signal "
     "zelk_get_signal_n zelk_get_signal_of_msg_n zelk_get_signal_of_msg_name zelk_get_sig_factor "
     "zelk_get_sig_offset zelk_get_btlblk zelk_get_evblk_name zelk_get_evblk_h zelk_get_evblk_n "
     "zelk_get_symbol_name zelk_get_symbol_n zelk_get_category zelk_get_sigtype_name "
     "zelk_get_valtable_name zelk_get_file_comment",
     Promise::kAllocatesNothing, nullptr,
     [](Records& w) -> Answer {
       Lists& d = w.lists;
       char text[9];
       return called(
           zelk_get_message(d.messages, 1), zelk_get_message_name(d.messages, "M"),
           zelk_get_message_n(d.messages, 2),
           zelk_get_j1939_message(d.messages, d.definitions, 0x98FF0000, ZELK_J1939_FRAME_FORMAT),
           zelk_get_signal(d.messages, 1, "S"), zelk_get_signal_n(d.messages, 1, 3),
           zelk_get_signal_of_msg_n(w.message, 1), zelk_get_signal_of_msg_name(w.message, "S"),
           zelk_get_sig_factor(w.signal), zelk_get_sig_offset(w.signal),
           zelk_get_btlblk(d.timings, 500), zelk_get_evblk_name(d.variables, "V"),
           zelk_get_evblk_h(d.variables, 9), zelk_get_evblk_n(d.variables, 2),
           zelk_get_symbol_name(d.nodes, "E"), zelk_get_symbol_n(d.nodes, 5),
           zelk_get_category(d.categories, 1), zelk_get_sigtype_name(d.types, "Celsius"),
           zelk_get_valtable_name(d.tables, "Gears"), zelk_get_file_comment(d.comment, text, 9));
     }},
    {"zelk_get_attr_def_name zelk_get_attrtype zelk_get_attrdefault zelk_get_attrval "
     "zelk_get_db_attrval zelk_get_sym_attrval zelk_get_msg_attrval zelk_get_sig_attrval "
     "zelk_get_ev_attrval zelk_get_sig_enumsymbol zelk_get_sig_enumvalue zelk_get_ev_enumsymbol "
     "zelk_get_ev_enumvalue zelk_is_attribute_defined zelk_is_attribute_defined_for_type "
     "zelk_is_db_attribute_defined zelk_is_ev_attribute_defined zelk_is_msg_attribute_defined "
     "zelk_is_sig_attribute_defined zelk_is_sym_attribute_defined zelk_can_name_object "
     "zelk_set_symbol_length zelk_symbols_shortened zelk_reset_symbols_shortened "
     "zelk_free_mode_cache zelk_get_conversion",
     Promise::kAllocatesNothing, nullptr,
     [](Records& w) -> Answer {
       Lists& d = w.lists;
       zelk_set_symbol_length(32);
       zelk_reset_symbols_shortened();
       zelk_free_mode_cache();
       return called(
           zelk_get_attr_def_name(d.definitions, "Net"), zelk_get_attrtype(d.definitions, "Nd"),
           zelk_get_attrdefault(d.definitions, "Net"), zelk_get_attrval(d.values, "Net"),
           zelk_get_db_attrval(d.values, "Net"), zelk_get_sym_attrval(d.nodes, "Nd"),
           zelk_get_msg_attrval(w.message, "Msg"), zelk_get_sig_attrval(w.signal, "Sig"),
           zelk_get_ev_attrval(d.variables, "Var"), zelk_get_sig_enumsymbol(w.signal, 1),
           zelk_get_sig_enumvalue(w.signal, "on"), zelk_get_ev_enumsymbol(d.variables, 0),
           zelk_get_ev_enumvalue(d.variables, "low"), zelk_is_attribute_defined(d.values, "Net"),
           zelk_is_attribute_defined_for_type(d.definitions, ZELK_OBJ_NODE, "Nd"),
           zelk_is_db_attribute_defined(d.values, "Net"),
           zelk_is_ev_attribute_defined(d.variables, "Var"),
           zelk_is_msg_attribute_defined(w.message, "Msg"),
           zelk_is_sig_attribute_defined(w.signal, "Sig"),
           zelk_is_sym_attribute_defined(d.nodes, "Nd"), zelk_can_name_object("A", 1),
           zelk_symbols_shortened(), zelk_get_conversion());
     }},
};

const Operations<Records> kOwnLookups("Records", kLookups);
const Operations<SharedRecords, Records> kSharedLookups("SharedRecords", kLookups);

/// A record of each kind, with nothing that a deletion would leave to its caller.
struct Spares : World {
  Spares() {
    lists.nodes = zelk_create_symbol();
    lists.variables = zelk_create_evblk();
    lists.timings = zelk_create_btlblk();
    lists.definitions = zelk_create_attr_def();
    lists.categories = zelk_create_category();
    lists.types = zelk_create_sigtype();
    lists.tables = zelk_create_valtable();
    lists.messages = zelk_create_msgblk();
    for (int i = 0; i < 3; ++i) can_insert_sig(lists.messages, zelk_create_sigblk(), 0);
    for (sigblk* signal = lists.messages->signals; signal; signal = signal->next) {
      signal->message = lists.messages;
      if (signal != lists.messages->signals) {
        zelk_add_multiplexor_value_range(signal, lists.messages->signals, 1, 2);
      }
    }
    lists.messages->siggroups = zelk_create_siggroup(lists.messages);
  }
  sigblk*& second() { return lists.messages->signals->next; }

  Lists lists;
};

template <typename Record>
Answer put_back(void* (*insert)(Record**, Record*, uint32_t), Record*& list) {
  return insert(&list, std::exchange(list, nullptr), 0);
}

template <typename Record>
Answer deleted(void (*remove)(Record**, Record*), Record*& list) {
  remove(&list, list);
  return list;
}

const Operations<Spares> kChanges(
    "Deletions",
    {
        {"can_insert_symbol", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return put_back(can_insert_symbol, w.lists.nodes); }},
        {"can_insert_msg", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return put_back(can_insert_msg, w.lists.messages); }},
        {"can_insert_evblk", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return put_back(can_insert_evblk, w.lists.variables); }},
        {"can_insert_sigtype", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return put_back(can_insert_sigtype, w.lists.types); }},
        {"can_insert_valtable", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return put_back(can_insert_valtable, w.lists.tables); }},
        {"can_insert_sig", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           return can_insert_sig(w.lists.messages, std::exchange(w.second(), w.second()->next), 9);
         }},
        {"can_delete_symbol", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_symbol, w.lists.nodes); }},
        {"can_delete_evblk", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_evblk, w.lists.variables); }},
        {"can_delete_btl", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_btl, w.lists.timings); }},
        {"can_delete_attr_def", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_attr_def, w.lists.definitions); }},
        {"can_delete_category", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_category, w.lists.categories); }},
        {"can_delete_sigtype", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_sigtype, w.lists.types); }},
        {"can_delete_valtable", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) { return deleted(can_delete_valtable, w.lists.tables); }},
        {"can_delete_siggroup can_deallocate_siggroup", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           can_delete_siggroup(w.lists.messages, w.lists.messages->siggroups);
           can_deallocate_siggroup(nullptr);
           return w.lists.messages->siggroups;
         }},
        {"can_delete_sig can_delete_multiplexor_value_range zelk_remove_multiplexor",
         Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           zelk_remove_multiplexor(w.second()->next);
           can_delete_multiplexor_value_range(w.second(), w.second()->mux_ranges);
           can_delete_sig(w.lists.messages, w.second());
           return w.lists.messages->signals->flags;
         }},
        {"can_deallocate_sig", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           can_deallocate_sig(std::exchange(w.second()->next, nullptr));
           return w.second()->flags;
         }},
        {"can_delete_siglist", Promise::kDoesWithout, nullptr,
         [](Spares& w) -> Answer {
           can_delete_siglist(std::exchange(w.second()->next, nullptr));
           return w.lists.messages->signals->flags;
         }},
        {"can_delete_msg", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           can_delete_siggroup(w.lists.messages, w.lists.messages->siggroups);
           can_delete_msg(&w.lists.messages, w.lists.messages);
           return w.lists.messages;
         }},
        {"zelk_free", Promise::kAllocatesNothing, nullptr,
         [](Spares& w) -> Answer {
           std::destroy_at(&w.lists);
           std::construct_at(&w.lists);
           return 0;
         }},
    });

}  // namespace
