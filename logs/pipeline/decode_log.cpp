#include "zelk/logs/pipeline.hpp"

namespace {

class ColumnWorker : public ZelkLogWorker {
 public:
  ColumnWorker(ZelkColumnDecoder& decoder, const std::function<void()>& put)
      : decoder_(decoder), put_(put) {}

  void Decode(const ZelkLogBlock& block, ZelkFrameCounts& counts) override {
    decoder_.Decode(block.frames, rows_);
    counts += rows_.Counts();
  }
  void Put(const ZelkLogBlock&) override {
    decoder_.Put(rows_);
    if (put_) put_();
  }

 private:
  ZelkColumnDecoder& decoder_;
  const std::function<void()>& put_;
  ZelkColumnRows rows_;
};

class TextWorker : public ZelkLogWorker {
 public:
  TextWorker(const ZelkTextDecoder& decoder, const std::function<void(std::string_view)>& write)
      : decoder_(decoder), write_(write) {}

  void Decode(const ZelkLogBlock& block, ZelkFrameCounts& counts) override {
    decoder_.Decode(block.frames, lines_);
    counts += lines_.Counts();
  }
  void Put(const ZelkLogBlock&) override { write_(lines_.Text()); }

 private:
  const ZelkTextDecoder& decoder_;
  const std::function<void(std::string_view)>& write_;
  ZelkTextLines lines_;
};

template <typename Worker, typename Decoder, typename Sink>
ZelkLogSummary decode_log(ZelkLogReader& log, Decoder& decoder, const ZelkPipelineOptions& options,
                          const Sink& sink) {
  ZelkLogPipeline pipeline(log, options);
  pipeline.Run([&] { return std::make_unique<Worker>(decoder, sink); });
  return pipeline.Summary();
}

}  // namespace

ZelkLogSummary ZelkDecodeLog(ZelkLogReader& log, ZelkColumnDecoder& decoder,
                             const ZelkPipelineOptions& options, const std::function<void()>& put) {
  static_cast<void>(decoder.Tables());  // ends the choosing
  return decode_log<ColumnWorker>(log, decoder, options, put);
}

ZelkLogSummary ZelkDecodeLog(ZelkLogReader& log, const ZelkTextDecoder& decoder,
                             const ZelkPipelineOptions& options,
                             const std::function<void(std::string_view)>& write) {
  return decode_log<TextWorker>(log, decoder, options, write);
}
