#include "logs/columns/table_decoder.hpp"

#include <algorithm>

namespace zelk::logs {

void TableDecoder::prepare(const TablePlan& plan) {
  presence_.prepare(plan.presence());
  if (!plan.decoder()) return;
  const std::size_t columns = plan.frame_columns().size();
  raw_values_.resize(std::max(raw_values_.size(), plan.decoder()->SignalCount()));
  present_.resize(std::max(present_.size(), plan.decoder()->PresenceWords()));
  column_words_.resize(std::max(column_words_.size(), columns));
  column_flags_.resize(std::max(column_flags_.size(), columns));
}

void TableDecoder::decode(const TablePlan& plan, const ZelkFrameBlock& block,
                          std::span<const std::uint32_t> frames,
                          std::span<const std::int32_t> channels, TableRows& rows) {
  for (std::size_t done = 0; done < frames.size(); done += kStripRows) {
    const auto strip = frames.subspan(done, std::min(kStripRows, frames.size() - done));
    frames_.load(block, strip);
    words_.clear();
    add_times(block.Times(), strip, rows.column(kTimeColumn));
    add_channels(block.Channels(), strip, channels, rows.column(kChannelColumn));
    presence_.find(frames_, words_, plan.presence());
    add_window_columns(plan, rows);
    if (plan.decoder()) add_frame_columns(plan, rows);
  }
}

/// Sets `valid_` for values that were written behind the rows of a column: those that are `none`
/// are null.
///
/// @param has_none  whether there are any
template <typename Value>
void TableDecoder::find_values(const ColumnRows& column, std::size_t count, Value none,
                               bool has_none) {
  const auto* const values = reinterpret_cast<const Value*>(column.end());
  valid_.nulls = 0;
  if (!has_none) return;
  for (std::size_t i = 0; i < count; ++i) flags_[i] = values[i] != none ? 1 : 0;
  valid_.set(flags_.data(), count);
}

void TableDecoder::add_times(std::span<const std::int64_t> times,
                             std::span<const std::uint32_t> frames, ColumnRows& column) {
  auto* const to = reinterpret_cast<std::int64_t*>(column.end());
  bool has_none = false;
  if (are_neighbours(frames)) {
    const std::int64_t* const from = &times[frames.front()];
    std::copy_n(from, frames.size(), to);
    for (std::size_t i = 0; i < frames.size(); ++i) has_none |= from[i] == kZelkNoTime;
  } else {
    for (std::size_t i = 0; i < frames.size(); ++i) {
      const std::int64_t time = times[frames[i]];
      has_none |= time == kZelkNoTime;
      to[i] = time;
    }
  }
  find_values(column, frames.size(), kZelkNoTime, has_none);
  add_present(column, frames.size(), valid_);
}

void TableDecoder::add_channels(std::span<const std::uint16_t> block_channels,
                                std::span<const std::uint32_t> frames,
                                std::span<const std::int32_t> channels, ColumnRows& column) {
  auto* const to = reinterpret_cast<std::int32_t*>(column.end());
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const std::uint16_t channel = block_channels[frames[i]];
    to[i] = channel < channels.size() ? channels[channel] : kNoText;
  }
  add_texts(column, nullptr);
}

/// Adds indices of texts that were written behind the rows.
///
/// @param valid  which of them count; null: all that are texts
void TableDecoder::add_texts(ColumnRows& column, const StripBits* valid) {
  const auto* const texts = reinterpret_cast<const std::int32_t*>(column.end());
  bool has_none = false;
  for (std::size_t i = 0; i < frames_.count; ++i) has_none |= texts[i] == kNoText;
  find_values(column, frames_.count, kNoText, has_none);
  if (valid) valid_.intersect(*valid, frames_.count);
  add_present(column, frames_.count, valid_);
}

void TableDecoder::add_window_columns(const TablePlan& plan, TableRows& rows) {
  for (const WindowColumn& from : plan.window_columns()) {
    ColumnRows& column = rows.column(from.column);
    const StripBits& valid = presence_[from.presence];
    if (valid.nulls == frames_.count) {
      add_present(column, frames_.count, valid);
      continue;
    }
    const std::uint64_t* const words = words_.of(frames_, from.window);
    from.kernel(from.conversion, words, frames_.count, column.end());
    from.conversion.texts ? add_texts(column, &valid) : add_present(column, frames_.count, valid);
  }
}

void TableDecoder::add_frame_columns(const TablePlan& plan, TableRows& rows) {
  decode_frames(plan);
  for (std::size_t i = 0; i < plan.frame_columns().size(); ++i) {
    const FrameColumn& from = plan.frame_columns()[i];
    ColumnRows& column = rows.column(from.column);
    from.kernel(from.conversion, column_words_[i].data(), frames_.count, column.end());
    StripBits present;
    present.set(column_flags_[i].data(), frames_.count);
    from.conversion.texts ? add_texts(column, &present)
                          : add_present(column, frames_.count, present);
  }
}

void TableDecoder::decode_frames(const TablePlan& plan) {
  const std::vector<FrameColumn>& columns = plan.frame_columns();
  for (std::size_t row = 0; row < frames_.count; ++row) {
    plan.decoder()->DecodeRaw(frames_.data + frames_.offsets[row], frames_.lengths[row],
                              raw_values_.data(), present_.data());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::size_t signal = columns[i].signal;
      column_words_[i][row] = static_cast<std::uint64_t>(raw_values_[signal]);
      column_flags_[i][row] = present_[signal / kWordBits] >> (signal % kWordBits) & 1;
    }
  }
}

}  // namespace zelk::logs
