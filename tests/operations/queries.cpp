// Lookups, iterators and signal values of managers, and decoders: of a database of their own, and
// of one that others share.

#include "operations/operation.hpp"
#include "operations/worlds.hpp"
#include "zelk/frame_decoder.hpp"
#include "zelk/predicates.hpp"

namespace {

using M = ZelkManager;

const std::vector<Stated<Opened>> kQueries = {
    {"ZelkManager::GetNode ZelkManager::GetMessage ZelkManager::GetEnvvar "
     "ZelkManager::GetBitTiming "
     "ZelkManager::GetCategory ZelkManager::GetSignalType ZelkManager::GetValueTable "
     "ZelkManager::GetAttrDefinition ZelkManager::GetJ1939Message",
     Promise::kDoesWithout, nullptr,
     [](Opened& w) -> Answer {
       ZelkManager& m = *w.manager;
       const char* name = nullptr;
       const ZelkSelection any;
       return m.GetNode("E", w.db) && m.GetMessage("M", &name) && m.GetMessage(1UL, any) &&
              m.GetEnvvar("W", any, &name) && m.GetBitTiming(500, w.db) &&
              m.GetCategory("Drive", w.db) && m.GetSignalType("Celsius", w.db) &&
              m.GetValueTable("Gears", w.db) && m.GetAttrDefinition("Net", w.db) &&
              !m.GetJ1939Message(0x98FF0000UL, 0, w.db);
     }},
    {"ZelkManager::GetAttrValueString", Promise::kReports, "null",
     [](Opened& w) -> Answer {
       const char* const text = w.manager->GetAttrValueString("Msg", 2, w.db);
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
     [](Opened& w) {
       ZelkManager& m = *w.manager;
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
     "ZelkManager::GetValueDescriptionIterator MultiplexorPredicate::operator "
     "MultiplexedSignalPredicate::operator MultiplexedBySignalPredicate::operator "
     "ValidSignalPredicate::operator ValidMultiplexorPredicate::operator",
     Promise::kAllocatesNothing, nullptr,
     [](Opened& w) {
       ZelkManager& m = *w.manager;
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
           *m.GetValueDescriptionIterator(*w.signal), is_multiplexor(w.signal, m, w.db),
           is_multiplexed(w.signal, m, w.db));
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
     [](Opened& w) {
       ZelkManager& m = *w.manager;
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
     [](Opened& w) {
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
     [](Opened& w) -> Answer {
       const ZelkFrameEncoder encoder(*w.message);
       const double values[3] = {1, 0, 5};
       return encoder.SignalCount() == 3 && encoder.Encode(values, nullptr, w.frame, 8);
     }},
    {"ZelkFrameDecoderTable::ZelkFrameDecoderTable ZelkFrameDecoderTable::Find "
     "ZelkFrameDecoderTable::operator= ZelkFrameDecoder::operator= ZelkFrameEncoder::operator=",
     Promise::kIsSilent, kBadAlloc,
     [](Opened& w) -> Answer {
       ZelkFrameDecoderTable table(w.message);
       table = ZelkFrameDecoderTable(w.message);
       return table.Find(1) && table.Find(*w.message);
     }},
};

const Operations<Databases> kIterators(
    "Queries", {
                   {"ZelkWriteManager::GetValidSignalIterator "
                    "ZelkWriteManager::GetValidMultiplexorSignalIterator "
                    "ZelkWriteManager::GetMultiplexedSignalIterator "
                    "ZelkWriteManager::GetMultiplexorSignalIterator",
                    Promise::kAllocatesNothing, nullptr,
                    [](Databases& w) {
                      MultiplexedBySignalPredicate is_selected(*w.signal);
                      ValidSignalPredicate is_valid(w.frame[0], 8);
                      ValidMultiplexorPredicate is_valid_multiplexor(w.frame[0], 8);
                      return called(*w.writer.GetValidSignalIterator(*w.message, is_valid),
                                    *w.writer.GetValidMultiplexorSignalIterator(
                                        *w.message, is_valid_multiplexor),
                                    *w.writer.GetMultiplexedSignalIterator(*w.message, is_selected),
                                    *w.writer.GetMultiplexorSignalIterator(*w.message));
                    }},
               });

const Operations<Databases, Opened> kOwnQueries("Queries", kQueries);
const Operations<SharedDatabase, Opened> kSharedQueries("SharedQueries", kQueries);

}  // namespace
