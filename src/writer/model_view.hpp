/// \file
/// The database that a write puts into text.

#ifndef ZELK_WRITER_MODEL_VIEW_HPP
#define ZELK_WRITER_MODEL_VIEW_HPP

#include "zelk/records.h"

namespace zelk {

/// The list heads and texts in the order of the arguments of `zelk_write`; all may be null.
struct ModelView {
  const symblk* nodes;
  const msgblk* messages;
  const env_var_blk* env_vars;
  const btlblk* bit_timings;
  const attr_def* attr_defs;
  const attr* db_attrs;
  const cat* categories;
  const filter_t& filter;
  const char* comment;
  const char* version;
  const sigtype* sig_types;
  const valtable* val_tables;
};

}  // namespace zelk

#endif
