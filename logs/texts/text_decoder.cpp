#include <memory>
#include <stdexcept>

#include "logs/texts/text_plan.hpp"
#include "zelk/logs/texts.hpp"

struct ZelkTextLines::Content {
  std::shared_ptr<const zelk::logs::TextPlan> plan;
  zelk::logs::FrameWalk walk;
  zelk::LineBuffer text;
};

ZelkTextLines::ZelkTextLines() = default;
ZelkTextLines::ZelkTextLines(ZelkTextLines&&) noexcept = default;
ZelkTextLines& ZelkTextLines::operator=(ZelkTextLines&&) noexcept = default;
ZelkTextLines::~ZelkTextLines() = default;

std::string_view ZelkTextLines::Text() const {
  return content_ ? content_->text.view() : std::string_view();
}

const ZelkFrameCounts& ZelkTextLines::Counts() const {
  static const ZelkFrameCounts kNone;
  return content_ ? content_->walk.counts() : kNone;
}

struct ZelkTextDecoder::State {
  zelk::logs::Choosing& open() {
    if (plan) throw std::logic_error("a text decoder is changed after it was prepared");
    return chosen;
  }
  const std::shared_ptr<const zelk::logs::TextPlan>& prepared() const {
    if (!plan) throw std::logic_error("a text decoder is used before it is prepared");
    return plan;
  }

  ZelkTextOptions options;
  zelk::logs::Choosing chosen;
  std::shared_ptr<const zelk::logs::TextPlan> plan;  ///< none while choosing
};

ZelkTextDecoder::ZelkTextDecoder(ZelkTextOptions options) : state_(std::make_unique<State>()) {
  state_->options = options;
}
ZelkTextDecoder::~ZelkTextDecoder() = default;

void ZelkTextDecoder::AddDatabase(const ZelkDatabase& database, std::string_view name,
                                  std::string_view channel) {
  state_->open().add_database(database, name, channel);
}

bool ZelkTextDecoder::SelectMessages(std::string_view pattern) {
  return state_->open().select_messages(pattern);
}

bool ZelkTextDecoder::SelectSignals(std::string_view pattern) {
  return state_->open().select_signals(pattern);
}

void ZelkTextDecoder::Prepare() {
  state_->plan = std::make_shared<const zelk::logs::TextPlan>(state_->open(), state_->options);
}

std::string_view ZelkTextDecoder::Heading() const { return state_->prepared()->format().heading(); }

void ZelkTextDecoder::Decode(const ZelkFrameBlock& frames, ZelkTextLines& lines) const {
  const auto& plan = state_->prepared();
  if (!lines.content_ || lines.content_->plan != plan) {
    lines.content_ = std::make_unique<ZelkTextLines::Content>();
    lines.content_->plan = plan;
  }
  ZelkTextLines::Content& content = *lines.content_;
  content.text.clear();
  content.walk.walk(*plan, frames, [&](const zelk::logs::DecodedFrame& frame, std::size_t) {
    plan->format().append(content.text, frame, plan->is_raw());
  });
}
