// The library of logs.

#include <string>

#include "operations/operation.hpp"
#include "operations/worlds.hpp"
#include "zelk/logs/candump.hpp"
#include "zelk/logs/column_stream.hpp"
#include "zelk/logs/messages.hpp"
#include "zelk/logs/pipeline.hpp"
#include "zelk/logs/times.hpp"
#include "zelk/logs/wide.hpp"

namespace {

/// A database and a log of two of its messages; the second one is of J1939.
struct Logs : World {
  Logs() {
    reader.OpenDatabase(path.c_str(), &db, "d", 0);
    database = reader.GetConstDatabase(db);
    for (int i = 0; i < 40; ++i) {
      const unsigned char data[8] = {static_cast<unsigned char>(i), 1};
      frames.Append(i * 1000, i % 2 == 0 ? 1 : 0x98FECA17, 0, frames.ChannelIndex("can0"), data);
    }
  }

  const Folder folder;
  const std::string path =
      folder.write("d.dbc",
                   "BS_:\nBU_: A\nBO_ 1 M: 8 A\n SG_ S : 0|8@1+ (0.5,0) [0|9] \"V\" A\n"
                   " SG_ T : 8|8@1- (1,0) [0|9] \"\" A\nBO_ 2566834709 J: 8 A\n"
                   " SG_ S : 0|8@1+ (1,0) [0|9] \"\" A\nVAL_ 1 T 1 \"on\" 0 \"off\" ;\n");
  const std::string log = folder.write(
      "a.log", "(1.5) can0 001#0102\nno frame\n(1.7) can1 18FECA17#01\n(1.9) can0 1#R8\n");
  ZelkManager reader{HWND{}};
  const char* db = nullptr;
  const ZelkDatabase* database;
  ZelkFrameBlock frames;
};

template <typename Decoder>
void choose(Decoder& decoder, const Logs& w) {
  decoder.AddDatabase(*w.database, "d", "");
  decoder.SelectMessages("*");
  decoder.SelectSignals("*");
}

const Operations<Logs> kOperations(
    "Logs",
    {
        {"ZelkLogReader::ZelkLogReader ZelkLogReader::Next ZelkLogReader::Take "
         "ZelkLogReader::Parse "
         "ZelkLogReader::Name ZelkLogReader::Form ZelkLogReader::Forms ZelkLogReader::IsDivisible "
         "ZelkLogReader::SizeBytes ZelkLogReader::BytesRead ZelkLogChunk::ZelkLogChunk "
         "ZelkLogChunk::operator=",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkLogReader reader(w.log);
           ZelkLogBlock block;
           std::size_t count = 0;
           while (reader.Next(block)) count += block.frames.Size() + 10 * block.malformed.size();
           return called(ZelkLogReader::Forms(), reader.Form().name, reader.SizeBytes()), count;
         }},
        {"ZelkFrameBlock::Append ZelkFrameBlock::ChannelIndex ZelkFrameBlock::Clear "
         "ZelkFrameBlock::Frame",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkFrameBlock block;
           ZelkFrame frame = w.frames.Frame(3);
           for (int i = 0; i < 40; ++i) {
             frame.channel = block.ChannelIndex(i == 0 ? "a channel with a long name" : "b");
             block.Append(frame);
           }
           const std::size_t size = block.Size();
           block.Clear();
           return size + block.Size();
         }},
        {"ZelkFrameText ZelkAppendLogLine ZelkAppendTime", Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           std::string text = ZelkFrameText(w.frames.Frame(0));
           ZelkAppendTime(1'000'000'000, text);
           ZelkAppendLogLine(w.frames, 1, "can0", text);
           return text.size();
         }},
        {"ZelkParseFrame ZelkParseTime ZelkParseTimePoint ZelkFrameCounts::operator+=",
         Promise::kAllocatesNothing, nullptr,
         [](Logs&) {
           ZelkFrame frame;
           ZelkFrameCounts counts;
           counts += counts;
           return called(ZelkParseFrame("1#02", frame), ZelkParseTime("2015-07-10T06:17:32Z"),
                         ZelkParseTimePoint("+0.00001"));
         }},
        {"ZelkTimeWindow::Begin ZelkTimeWindow::Cut ZelkTimeWindow::Shown", Promise::kIsSilent,
         kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkTimeOptions options;
           options.relative = true;
           options.start = {.time = 10'000, .is_from_first = true};
           ZelkTimeWindow window(options);
           window.Begin(0, "log");
           return window.Cut(w.frames, "log") + static_cast<std::size_t>(window.Shown(5));
         }},
        {"ZelkMessageFinder::ZelkMessageFinder ZelkMessageFinder::AddDatabase "
         "ZelkMessageFinder::Prepare ZelkMessageFinder::Find",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkMessageFinder finder(true);
           finder.AddDatabase(*w.database, "d", "can0");
           finder.Prepare();
           return finder.Find("can0", 1).message && finder.Find("can0", 0x98FECA17).message &&
                  !finder.Find("can1", 1).message;
         }},
        {"ZelkTransport::ZelkTransport ZelkTransport::Assemble ZelkTransport::Counts "
         "ZelkTransport::End",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkTransport transport;
           ZelkFrameBlock block;
           const unsigned char announced[8] = {32, 9, 0, 2, 0xFF, 0xCA, 0xFE, 0};
           const unsigned char packets[2][8] = {{1, 1, 2, 3, 4, 5, 6, 7}, {2, 8, 9}};
           block.Append(0, 0x9CECFF17, 0, 0, announced);
           block.Append(1, 0x9CEBFF17, 0, 0, packets[0]);
           block.Append(2, 0x9CEBFF17, 0, 0, packets[1]);
           transport.Assemble(block);
           transport.End();
           return called(w), transport.Counts().complete;
         }},
        {"ZelkColumnDecoder::ZelkColumnDecoder ZelkColumnDecoder::AddDatabase "
         "ZelkColumnDecoder::SelectMessages ZelkColumnDecoder::SelectSignals "
         "ZelkColumnDecoder::Tables ZelkColumnDecoder::Decode ZelkColumnDecoder::Put "
         "ZelkColumnDecoder::RowCount ZelkColumnDecoder::GetSchema ZelkColumnDecoder::TakeBatch "
         "ZelkColumnRows::ZelkColumnRows ZelkColumnRows::Counts ZelkColumnRows::operator=",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkColumnDecoder decoder({.values = ZelkColumnValues::kTexts, .match_groups = true});
           choose(decoder, w);
           std::size_t count = decoder.Tables().size();
           ZelkColumnRows rows;
           decoder.Decode(w.frames, rows);
           decoder.Put(rows);
           decoder.Decode(w.frames);
           count += decoder.RowCount(0);
           ArrowSchema schema = {};
           ArrowArray batch = {};
           decoder.GetSchema(0, &schema);
           schema.release(&schema);
           if (decoder.TakeBatch(0, true, &batch)) batch.release(&batch);
           return count;
         }},
        {"ZelkColumnStream::ZelkColumnStream ZelkColumnStream::GetSchema ZelkColumnStream::Next "
         "ZelkColumnStream::Export ZelkColumnStream::operator=",
         Promise::kIsSilent, "bad_alloc|12",  // ENOMEM of the C stream interface
         [](Logs& w) -> Answer {
           ZelkColumnDecoder decoder;
           choose(decoder, w);
           bool is_read = false;
           ZelkColumnStream stream(decoder, 0, [&](ZelkFrameBlock& block) {
             if (!is_read) block = w.frames;
             return !std::exchange(is_read, true);
           });
           ArrowArrayStream out = {};
           std::move(stream).Export(&out);
           ArrowArray batch = {};
           ArrowSchema schema = {};
           int error = out.get_schema(&out, &schema);
           if (error == 0) schema.release(&schema);
           if (error == 0) error = out.get_next(&out, &batch);
           if (error == 0 && batch.release) batch.release(&batch);
           out.release(&out);
           return error;
         }},
        {"ZelkTextDecoder::ZelkTextDecoder ZelkTextDecoder::AddDatabase "
         "ZelkTextDecoder::SelectMessages ZelkTextDecoder::SelectSignals ZelkTextDecoder::Prepare "
         "ZelkTextDecoder::Heading ZelkTextDecoder::Decode ZelkTextLines::ZelkTextLines "
         "ZelkTextLines::Text ZelkTextLines::Counts ZelkTextLines::operator=",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           std::size_t count = 0;
           for (const auto format :
                {ZelkTextFormat::kText, ZelkTextFormat::kJson, ZelkTextFormat::kCsv}) {
             ZelkTextDecoder decoder({.format = format});
             choose(decoder, w);
             decoder.Prepare();
             ZelkTextLines lines;
             decoder.Decode(w.frames, lines);
             count += decoder.Heading().size() + lines.Text().size();
           }
           return count;
         }},
        {"ZelkWideChoice::ZelkWideChoice ZelkWideChoice::AddDatabase "
         "ZelkWideChoice::SelectMessages "
         "ZelkWideChoice::SelectSignals ZelkWideDecoder::ZelkWideDecoder ZelkWideDecoder::Tables "
         "ZelkWideDecoder::Decode ZelkWideRows::ZelkWideRows ZelkWideRows::Size "
         "ZelkWideRows::Table "
         "ZelkWideRows::Line ZelkWideRows::Counts ZelkTimeline::ZelkTimeline ZelkTimeline::Heading "
         "ZelkTimeline::Decode ZelkTimeline::Put ZelkTimeline::End ZelkTimeline::MixedMessages "
         "ZelkTimelineValues::ZelkTimelineValues ZelkTimelineValues::Counts",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkWideChoice choice;
           choose(choice, w);
           const ZelkWideDecoder decoder(choice);
           ZelkWideRows rows;
           decoder.Decode(w.frames, rows);
           std::size_t count = decoder.Tables().size() + rows.Size() + rows.Line(0).size();
           ZelkTimeline timeline(choice, {}, 10'000,
                                 [&count](std::string_view lines) { count += lines.size(); });
           ZelkTimelineValues values;
           timeline.Decode(w.frames, values);
           timeline.Put(values);
           timeline.End();
           return count + timeline.Heading().size() + timeline.MixedMessages().size();
         }},
        {"ZelkDecodeLog ZelkLogPipeline::ZelkLogPipeline ZelkLogPipeline::Run "
         "ZelkLogPipeline::Summary",
         Promise::kIsSilent, kBadAlloc,
         [](Logs& w) -> Answer {
           ZelkLogReader reader(w.log);
           ZelkColumnDecoder decoder;
           choose(decoder, w);
           decoder.Tables();
           const ZelkLogSummary summary =
               ZelkDecodeLog(reader, decoder, {.threads = 1, .transport = true}, [] {});
           return summary.log.lines * 1000 + decoder.RowCount(0);
         }},
    });

}  // namespace
