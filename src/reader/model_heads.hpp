/// \file
/// The caller's lists that a read extends.

#ifndef ZELK_READER_MODEL_HEADS_HPP
#define ZELK_READER_MODEL_HEADS_HPP

#include "zelk/records.h"

namespace zelk {

/// The list heads and texts in the order of the arguments of `zelk_read`.
struct ModelHeads {
  symblk*& nodes;
  msgblk*& messages;
  env_var_blk*& env_vars;
  btlblk*& bit_timings;
  attr_def*& attr_defs;
  attr*& net_attrs;
  cat*& categories;
  filter_t& filter;
  char*& comment;
  char*& version;
  sigtype*& sig_types;
  valtable*& val_tables;
  attr_def** slots;  ///< four, in the order of `kLongNameAttributes`; null allowed. Only compared
                     ///< and set: what a caller left there may be no record
};

}  // namespace zelk

#endif
