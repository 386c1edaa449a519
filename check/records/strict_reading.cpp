#include "check/records/strict_reading.hpp"

#include "zelk/dbc.h"
#include "zelk/model.h"

namespace zelk::check {

StrictReading::StrictReading(std::string_view text) {
  // An empty text is a file without statements, and null would be no file.
  if (text.data() == nullptr) text = "";
  attr_def* slots[4] = {};
  error_ = zelk_try_read_text(text.data(), text.size(), &nodes_, &messages_, &env_vars_,
                              &bit_timings_, &attr_defs_, &attr_values_, &categories_, &filter_,
                              &comment_, &version_, &types_, &tables_, slots);
}

StrictReading::~StrictReading() {
  zelk_free(nodes_, messages_, env_vars_, bit_timings_, attr_defs_, attr_values_, categories_,
            &filter_, comment_, version_, types_, tables_);
}

RecordsView StrictReading::view() const {
  return {nodes_, messages_, env_vars_, attr_defs_, attr_values_};
}

}  // namespace zelk::check
