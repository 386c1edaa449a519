// Edits, lookups and signal values of managers without memory.

#include <gtest/gtest.h>

#include <utility>

#include "exhausted/operation.hpp"
#include "exhausted/worlds.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/predicates.hpp"

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

const Operations<W> kEdits = {
    {"ZelkWriteManager::CreateNode", Promise::kReports, "null", created<&M::CreateNode>},
    {"ZelkWriteManager::CreateMessage", Promise::kReports, "null", created<&M::CreateMessage>},
    {"ZelkWriteManager::CreateEnvvar", Promise::kReports, "null", created<&M::CreateEnvvar>},
    {"ZelkWriteManager::CreateBitTiming", Promise::kReports, "null", created<&M::CreateBitTiming>},
    {"ZelkWriteManager::CreateCategory", Promise::kReports, "null", created<&M::CreateCategory>},
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
};

const Operations<W> kQueries = {
    {"ZelkManager::GetNode ZelkManager::GetMessage ZelkManager::GetEnvvar "
     "ZelkManager::GetBitTiming "
     "ZelkManager::GetCategory ZelkManager::GetSignalType ZelkManager::GetValueTable "
     "ZelkManager::GetAttrDefinition ZelkManager::GetJ1939Message",
     Promise::kDoesWithout, nullptr,
     [](W& w) -> Answer {
       ZelkManager& m = w.writer;
       const char* name = nullptr;
       const ZelkSelection any;
       return m.GetNode("E", w.db) && m.GetMessage("M", &name) && m.GetMessage(1UL, any) &&
              m.GetEnvvar("W", any, &name) && m.GetBitTiming(500, w.db) &&
              m.GetCategory("Drive", w.db) && m.GetSignalType("Celsius", w.db) &&
              m.GetValueTable("Gears", w.db) && m.GetAttrDefinition("Net", w.db) &&
              !m.GetJ1939Message(0x98FF0000UL, 0, w.db);
     }},
    {"ZelkManager::GetAttrValueString", Promise::kReports, "null",
     [](W& w) -> Answer {
       const char* const text = w.writer.GetAttrValueString("Msg", 2, w.db);
       zelk_mfree(const_cast<char*>(text));
       return static_cast<const void*>(text);
     }},
    {"ZelkManager::GetAttrDefault ZelkManager::GetAttrDefaultEx ZelkManager::GetAttrValue "
     "ZelkManager::GetAttrValueEx ZelkManager::GetAttrValueIndex "
     "ZelkManager::GetNetworkAttrDefinition ZelkManager::IsAttrValueDefined "
     "ZelkManager::IsAttributeDefined ZelkManager::GetValueDescription "
     "ZelkManager::GetDescriptionValue ZelkManager::IsCategoryInFilter "
     "ZelkManager::IsNodeInFilter ZelkManager::GetSignal ZelkManager::GetSignalGroup "
     "ZelkManager::NodeCount ZelkManager::MessageCount ZelkManager::EnvvarCount "
     "ZelkManager::BitTimingCount ZelkManager::AttrDefinitionCount ZelkManager::CategoryCount "
     "ZelkManager::SignalTypeCount ZelkManager::ValueTableCount ZelkManager::AttributeCount "
     "ZelkManager::SignalCount ZelkManager::SignalGroupCount",
     Promise::kAllocatesNothing, nullptr,
     [](W& w) {
       ZelkManager& m = w.writer;
       zelk_attr_value_t value;
       return called(
           m.GetAttrDefault("Net", w.db), m.GetAttrDefaultEx("Msg", value, w.db),
           m.GetAttrValue(*w.message, "Msg"), m.GetAttrValue(*w.signal->receivers, "RelSig"),
           m.GetAttrValueEx(*w.message, "Msg", value, w.db),
           m.GetAttrValueIndex("Msg", "event", w.db), m.GetNetworkAttrDefinition(w.db, "Net"),
           m.IsAttrValueDefined(*w.message, "Msg"),
           m.IsAttributeDefined("Msg", ZELK_OBJ_MESSAGE, w.db),
           m.GetAttrDefinition(*w.signal, "Sig", w.db), m.GetValueDescription(*w.signal, 1),
           m.GetDescriptionValue(*w.variable, "low"), m.IsCategoryInFilter(*w.category, w.db),
           m.IsNodeInFilter(*w.node, w.db), m.GetSignal(*w.message, "U"),
           m.GetSignal(*w.group, "T"), m.GetSignalGroup(*w.message, "G"), m.NodeCount(w.db),
           m.MessageCount(w.db), m.EnvvarCount(w.db), m.BitTimingCount(w.db),
           m.AttrDefinitionCount(w.db), m.CategoryCount(w.db), m.SignalTypeCount(w.db),
           m.ValueTableCount(w.db), m.AttributeCount(w.db), m.AttributeCount(*w.signal),
           m.SignalCount(*w.message), m.SignalCount(*w.group), m.SignalGroupCount(*w.message));
     }},
    {"ZelkManager::GetDatabaseNameIterator ZelkManager::GetNodeIterator "
     "ZelkManager::GetMessageIterator ZelkManager::GetEnvvarIterator "
     "ZelkManager::GetBitTimingIterator ZelkManager::GetAttrDefinitionIterator "
     "ZelkManager::GetCategoryIterator ZelkManager::GetSignalTypeIterator "
     "ZelkManager::GetValueTableIterator ZelkManager::GetAttributeIterator "
     "ZelkManager::GetFilterCategoryIterator ZelkManager::GetFilterNodeIterator "
     "ZelkManager::GetSignalIterator ZelkManager::GetValidSignalIterator "
     "ZelkManager::GetValidMultiplexorSignalIterator ZelkManager::GetMultiplexedSignalIterator "
     "ZelkManager::GetMultiplexorSignalIterator ZelkManager::GetSignalGroupIterator "
     "ZelkManager::GetSubsignalIterator ZelkManager::GetReceiverIterator "
     "ZelkManager::GetTransmitterIterator ZelkManager::GetAccessNodeIterator "
     "ZelkManager::GetValueDescriptionIterator ZelkWriteManager::GetValidSignalIterator "
     "ZelkWriteManager::GetValidMultiplexorSignalIterator "
     "ZelkWriteManager::GetMultiplexedSignalIterator "
     "ZelkWriteManager::GetMultiplexorSignalIterator MultiplexorPredicate::operator "
     "MultiplexedSignalPredicate::operator MultiplexedBySignalPredicate::operator "
     "ValidSignalPredicate::operator ValidMultiplexorPredicate::operator",
     Promise::kAllocatesNothing, nullptr,
     [](W& w) {
       const ZelkManager& m = w.writer;
       MultiplexorPredicate is_multiplexor;
       MultiplexedSignalPredicate is_multiplexed;
       MultiplexedBySignalPredicate is_selected(*w.signal);
       ValidSignalPredicate is_valid(w.frame[0], 8);
       ValidMultiplexorPredicate is_valid_multiplexor(w.frame[0], 8);
       return called(
           *m.GetDatabaseNameIterator(), *m.GetNodeIterator(w.db), *m.GetMessageIterator(w.db),
           *m.GetEnvvarIterator(w.db), *m.GetBitTimingIterator(w.db),
           *m.GetAttrDefinitionIterator(w.db), *m.GetCategoryIterator(w.db),
           *m.GetSignalTypeIterator(w.db), *m.GetValueTableIterator(w.db),
           *m.GetAttributeIterator(w.db), *m.GetFilterCategoryIterator(w.db),
           *m.GetFilterNodeIterator(w.db), *m.GetSignalIterator(*w.message),
           *m.GetValidSignalIterator(*w.message, is_valid),
           *m.GetValidMultiplexorSignalIterator(*w.message, is_valid_multiplexor),
           *m.GetMultiplexedSignalIterator(*w.message, is_selected),
           *m.GetMultiplexorSignalIterator(*w.message), *m.GetSignalGroupIterator(*w.message),
           *m.GetSubsignalIterator(*w.group), *m.GetReceiverIterator(*w.signal),
           *m.GetTransmitterIterator(*w.message), *m.GetAccessNodeIterator(*w.variable),
           *m.GetValueDescriptionIterator(*w.signal), is_multiplexor(w.signal, w.writer, w.db),
           is_multiplexed(w.signal, w.writer, w.db),
           *w.writer.GetValidSignalIterator(*w.message, is_valid),
           *w.writer.GetValidMultiplexorSignalIterator(*w.message, is_valid_multiplexor),
           *w.writer.GetMultiplexedSignalIterator(*w.message, is_selected),
           *w.writer.GetMultiplexorSignalIterator(*w.message));
     }},
    {"ZelkManager::CheckSignalModeValue ZelkManager::GetMultiplexorSignal "
     "ZelkManager::GetMultiplexorValueRanges ZelkManager::GetSignalAccessMask "
     "ZelkManager::GetSignalPhysicalValue ZelkManager::GetSignalRawValue "
     "ZelkManager::GetSignalRawValueInt64 ZelkManager::GetSignalRawValueUint64 "
     "ZelkManager::GetSignalValue ZelkManager::GetSignalValueInt64 "
     "ZelkManager::PhysicalToRawValue ZelkManager::PhysicalToRawValueInt64 "
     "ZelkManager::RawToPhysicalValue ZelkManager::RawToPhysicalValueInt64 "
     "ZelkManager::SetSignalPhysicalValue ZelkManager::SetSignalRawValue "
     "ZelkManager::SetSignalRawValueInt64 ZelkManager::SetSignalRawValueUint64 "
     "ZelkManager::SignalIsMultiplexed ZelkManager::SignalIsMultiplexedByValue "
     "ZelkManager::SignalIsMultiplexor",
     Promise::kAllocatesNothing, nullptr,
     [](W& w) {
       ZelkManager& m = w.writer;
       const sigblk& s = *w.signal;
       const msgblk& b = *w.message;
       unsigned char& f = w.frame[0];
       const unsigned char* bytes = w.frame;
       zelk_sig_mask_t mask;
       unsigned long raw = 3;
       long long raw64 = 3;
       std::uint64_t bits = 3;
       double number = 3;
       char text[40];
       m.GetSignalAccessMask(s, mask);
       return called(
           m.CheckSignalModeValue(f, s, b), M::GetMultiplexorSignal(w.signal),
           M::GetMultiplexorValueRanges(w.signal), m.GetSignalPhysicalValue(f, s, b, number),
           m.GetSignalRawValue(f, s, b, raw), m.GetSignalRawValueInt64(f, s, b, raw64),
           m.GetSignalRawValueUint64(f, s, b, bits), m.GetSignalValue(f, s, b, raw, number),
           m.GetSignalValue(f, s, b, text, 40, ZelkFormatPhysicalUnit, nullptr),
           m.GetSignalValue(f, s, b, text, 40, ZelkFormatHexBytes, nullptr),
           m.GetSignalValue(f, mask, s, b, raw, number),
           m.GetSignalValueInt64(f, s, b, raw64, number), m.PhysicalToRawValue(number, s, raw),
           m.PhysicalToRawValueInt64(number, s, raw64), m.RawToPhysicalValue(raw, s, number),
           m.RawToPhysicalValueInt64(raw64, s, number), m.SetSignalPhysicalValue(f, s, b, number),
           m.SetSignalRawValue(f, s, b, raw), m.SetSignalRawValue(f, s, b, bytes),
           m.SetSignalRawValueInt64(f, s, b, raw64), m.SetSignalRawValueUint64(f, s, b, bits),
           M::SignalIsMultiplexed(w.signal), M::SignalIsMultiplexedByValue(w.signal, 1),
           M::SignalIsMultiplexor(w.signal));
     }},

    {"ZelkFrameDecoder::ZelkFrameDecoder ZelkFrameDecoder::Decode ZelkFrameDecoder::DecodeRaw "
     "ZelkFrameDecoder::Message ZelkFrameDecoder::Signal ZelkFrameDecoder::SignalCount",
     Promise::kIsSilent, kBadAlloc,
     [](W& w) {
       const ZelkFrameDecoder decoder(*w.message);
       double values[3];
       std::int64_t raw[3];
       std::uint64_t present;
       decoder.Decode(w.frame, 8, values, &present);
       decoder.DecodeRaw(w.frame, 8, raw, &present);
       return called(decoder.Message(), decoder.Signal(0), decoder.SignalCount());
     }},
    {"ZelkFrameEncoder::ZelkFrameEncoder ZelkFrameEncoder::Encode ZelkFrameEncoder::SignalCount",
     Promise::kIsSilent, kBadAlloc,
     [](W& w) -> Answer {
       const ZelkFrameEncoder encoder(*w.message);
       const double values[3] = {1, 0, 5};
       return encoder.SignalCount() == 3 && encoder.Encode(values, nullptr, w.frame, 8);
     }},
    {"ZelkFrameDecoderTable::ZelkFrameDecoderTable ZelkFrameDecoderTable::Find "
     "ZelkFrameDecoderTable::operator= ZelkFrameDecoder::operator= ZelkFrameEncoder::operator=",
     Promise::kIsSilent, kBadAlloc,
     [](W& w) -> Answer {
       ZelkFrameDecoderTable table(w.message);
       table = ZelkFrameDecoderTable(w.message);
       return table.Find(1) && table.Find(*w.message);
     }},
};

TEST(Exhausted, Edits) { kEdits.exhaust_all(); }
TEST(Exhausted, Queries) { kQueries.exhaust_all(); }

}  // namespace
