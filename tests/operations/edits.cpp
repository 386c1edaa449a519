// Edits of managers.

#include <utility>

#include "operations/operation.hpp"
#include "operations/worlds.hpp"

namespace {

using W = Databases;
using M = ZelkWriteManager;

constexpr zelk_attr_value_t kOne = {.number = 1};
constexpr char kReported[] = "called";  // edits return nothing

template <auto kCreate>
Answer created(W& w) {
  return (w.writer.*kCreate)(w.db, 0);
}

/// Calls an edit of the arguments that a function gives.
template <typename... Parameters, typename... Arguments>
Answer edited(W& w, void (M::*edit)(Parameters...), Arguments&&... arguments) {
  (w.writer.*edit)(std::forward<Arguments>(arguments)...);
  return kReported;
}

const Operations<W> kEdits(
    "Edits",
    {
        {"ZelkWriteManager::CreateNode", Promise::kReports, "null", created<&M::CreateNode>},
        {"ZelkWriteManager::CreateMessage", Promise::kReports, "null", created<&M::CreateMessage>},
        {"ZelkWriteManager::CreateEnvvar", Promise::kReports, "null", created<&M::CreateEnvvar>},
        {"ZelkWriteManager::CreateBitTiming", Promise::kReports, "null",
         created<&M::CreateBitTiming>},
        {"ZelkWriteManager::CreateCategory", Promise::kReports, "null",
         created<&M::CreateCategory>},
        {"ZelkWriteManager::CreateSignalType", Promise::kReports, "null",
         created<&M::CreateSignalType>},
        {"ZelkWriteManager::CreateValueTable", Promise::kReports, "null",
         created<&M::CreateValueTable>},
        {"ZelkWriteManager::CreateAttrDefinition", Promise::kReports, "null",
         created<&M::CreateAttrDefinition>},
        {"ZelkWriteManager::CreateSignal", Promise::kReports, "null",
         [](W& w) -> Answer { return w.writer.CreateSignal(*w.message, 0); }},
        {"ZelkWriteManager::CreateSignalGroup", Promise::kReports, "null",
         [](W& w) -> Answer { return w.writer.CreateSignalGroup(*w.message, 0); }},

        {"ZelkWriteManager::DeleteNode", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteNode, *w.node, w.db); }},
        {"ZelkWriteManager::DeleteMessage", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteMessage, *w.message, w.db); }},
        {"ZelkWriteManager::DeleteEnvvar", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteEnvvar, *w.variable, w.db); }},
        {"ZelkWriteManager::DeleteBitTiming", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteBitTiming, *w.timing, w.db); }},
        {"ZelkWriteManager::DeleteCategory", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteCategory, *w.category, w.db); }},
        {"ZelkWriteManager::DeleteSignalType", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteSignalType, *w.type, w.db); }},
        {"ZelkWriteManager::DeleteValueTable", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteValueTable, *w.table, w.db); }},
        {"ZelkWriteManager::DeleteAttrDefinition", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteAttrDefinition, *w.definition, w.db); }},
        {"ZelkWriteManager::DeleteSignal", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteSignal, *w.signal, w.db); }},
        {"ZelkWriteManager::DeleteSignalGroup", Promise::kAllocatesNothing, nullptr,
         [](W& w) { return edited(w, &M::DeleteSignalGroup, *w.group, w.db); }},

        {"ZelkWriteManager::SetName", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetName(*w.node, "N"), called(); }},
        {"ZelkWriteManager::SetName", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetName(*w.message, "N"), called(); }},
        {"ZelkWriteManager::SetName", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetName(*w.variable, "N"), called(); }},
        {"ZelkWriteManager::SetName", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetName(*w.signal, "N"), called(); }},
        {"ZelkWriteManager::SetComment", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetComment(*w.node, "c"), called(); }},
        {"ZelkWriteManager::SetComment", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetComment(*w.message, "c"), called(); }},
        {"ZelkWriteManager::SetComment", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetComment(*w.signal, "c"), called(); }},
        {"ZelkWriteManager::SetComment", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetComment(*w.type, "c"), called(); }},
        {"ZelkWriteManager::SetComment", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetComment(*w.group, "c"), called(); }},
        {"ZelkWriteManager::SetDatabaseComment", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::SetDatabaseComment, w.db, "c"); }},
        {"ZelkWriteManager::SetUserData", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::SetUserData, w.db, "c"); }},
        {"ZelkWriteManager::SetValueDescription", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetValueDescription(*w.signal, 9, "d"), called(); }},
        {"ZelkWriteManager::SetValueDescription", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetValueDescription(*w.variable, 0, "d"), called(); }},
        {"ZelkWriteManager::SetValueDescription", Promise::kReports, kReported,
         [](W& w) { return w.writer.SetValueDescription(*w.table->values, 9, "d"), called(); }},
        {"ZelkWriteManager::AddSignal", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddSignal, *w.group, *w.signal); }},
        {"ZelkWriteManager::AddReceiver", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddReceiver, *w.signal, *w.node); }},
        {"ZelkWriteManager::AddTransmitter", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddTransmitter, *w.message, *w.node); }},
        {"ZelkWriteManager::AddAccessNode", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddAccessNode, *w.variable, *w.node); }},
        {"ZelkWriteManager::AddFilterCategory", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddFilterCategory, *w.category, w.db); }},
        {"ZelkWriteManager::AddFilterNode", Promise::kReports, kReported,
         [](W& w) { return edited(w, &M::AddFilterNode, *w.node, w.db); }},
        {"ZelkWriteManager::RemoveSignal ZelkWriteManager::RemoveTransmitter "
         "ZelkWriteManager::RemoveFilterCategory ZelkWriteManager::RemoveFilterNode "
         "ZelkWriteManager::RemoveReceiver",
         Promise::kAllocatesNothing, nullptr,
         [](W& w) {
           w.writer.RemoveSignal(*w.group, *w.signal);
           w.writer.RemoveTransmitter(*w.message, *w.node);
           w.writer.RemoveReceiver(*w.signal, *w.node);
           w.writer.RemoveFilterCategory(*w.category, w.db);
           w.writer.RemoveFilterNode(*w.node, w.db);
           return called();
         }},
        {"ZelkWriteManager::SetAttrValue", Promise::kReports, kReported,
         [](W& w) {
           w.writer.SetAttrValue(*w.node->next->next, "Nd", kOne);
           return called();
         }},
        {"ZelkWriteManager::SetAttrValue", Promise::kReports, kReported,
         [](W& w) {
           w.writer.SetAttrValue(*w.variable, "Var", {.text = w.message->name});
           return called();
         }},
        {"ZelkWriteManager::SetAttrValue", Promise::kReports, kReported,
         [](W& w) {
           w.writer.SetAttrValue(*w.signal->next, "Sig", kOne);
           return called();
         }},
        {"ZelkWriteManager::SetAttrValue", Promise::kAllocatesNothing, nullptr,  // there is one
         [](W& w) {
           w.writer.SetAttrValue(w.db, "Net", kOne);
           return called();
         }},
        {"ZelkWriteManager::ResetAttrValue", Promise::kAllocatesNothing, nullptr,
         [](W& w) {
           w.writer.ResetAttrValue(w.db, "Net");
           w.writer.ResetAttrValue(*w.message, "Msg");
           w.writer.ResetAttrValue(*w.variable, "Var");
           return called();
         }},
    });

}  // namespace
