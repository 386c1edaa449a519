#include "frame_run.hpp"

#include <cmath>
#include <utility>

#include "whole_batches.hpp"

namespace zelk::python {

FrameRun::FrameRun(std::shared_ptr<Decoding> decoding, bool transport)
    : decoding_(std::move(decoding)), batches_(decoding_->heads().size()) {
  if (transport) transport_.emplace();
}

void FrameRun::decode() {
  frame_count_ += block_.Size();
  if (transport_) transport_->Assemble(block_);
  decoding_->decoder().Decode(block_, rows_);
  counts_ += rows_.Counts();
  decoding_->decoder().Put(rows_);
  block_.Clear();
  take_batches(false);
}

void FrameRun::take_batches(bool is_end) {
  decoding_->take_batches(is_end, [this](std::size_t table, ArrowArray batch) {
    batches_[table].push_back(kept(batch, decoding_->heads()[table]));
    return true;
  });
}

nb::tuple FrameRun::finish() {
  {
    const nb::gil_scoped_release unlocked;
    decode();
    take_batches(true);
    if (transport_) transport_->End();
  }
  nb::list tables;
  for (std::size_t i = 0; i < batches_.size(); ++i)
    tables.append(nb::cast(TableRows(decoding_->heads()[i], std::move(batches_[i]))));
  return nb::make_tuple(
      tables, counts_to_python(counts_, frame_count_,
                               transport_ ? transport_->Counts() : ZelkTransportCounts{}));
}

std::optional<std::int64_t> nanoseconds_of(double seconds) {
  constexpr double kMost = 9.2e9;  // seconds, about 2^63 ns
  if (std::isnan(seconds)) return kZelkNoTime;
  if (!(std::fabs(seconds) < kMost)) return std::nullopt;
  const double whole = std::floor(seconds);
  const double fraction = seconds - whole;  // exact
  const double microseconds = std::nearbyint(fraction * 1e6);
  // Both are whole numbers below 2^53, so that the quotient is the double that is nearest.
  const bool is_of_microseconds = (whole * 1e6 + microseconds) / 1e6 == seconds;
  const double nanoseconds =
      is_of_microseconds ? microseconds * 1e3 : std::nearbyint(fraction * 1e9);
  return static_cast<std::int64_t>(whole) * 1'000'000'000 + static_cast<std::int64_t>(nanoseconds);
}

}  // namespace zelk::python
