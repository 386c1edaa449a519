/// \file
/// Saving a database without losing the file that is there.

#ifndef ZELK_WRITER_WRITE_HPP
#define ZELK_WRITER_WRITE_HPP

#include "model/heads.hpp"

namespace zelk {

/// Writes what `zelk_write` writes beside the file at `path`, and then puts it in its place. A
/// database that a file could not give back (read_back.hpp) is not written: the error text names
/// the record (`ZELK_ERR_FORMAT`).
///
/// A failure adds its reason to the error text, with the path, as error 13. See
/// `files::Replacement` for the files that are not replaced in one step.
///
/// @return false when nothing was written, or not the whole: the file that was there is as it was,
/// but for the failures of `files::Replacement::take_place`
/// @throws std::bad_alloc, with the same effect
bool save(const char* path, const ModelView& model, bool with_multiplexor_ranges);

}  // namespace zelk

#endif
