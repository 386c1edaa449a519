/// \file
/// For a text in which no fault is to be seen, and that the strict reader refuses nonetheless.

#ifndef ZELK_CHECK_REPAIR_LAST_RESORT_HPP
#define ZELK_CHECK_REPAIR_LAST_RESORT_HPP

#include "check/repair/judge.hpp"
#include "check/repair/mender.hpp"

namespace zelk::check {

/// Drops the first statement with which the reader refuses the text. Messages, signals and the
/// sections in front of them are never dropped. The reader is asked two or three times mostly, and
/// at most twice the logarithm of the number of statements.
///
/// @param verdict  the reader's refusal of the whole text
/// @return whether there is such a statement, and its mend is not switched off
bool drop_refused(Mender& mender, const Verdict& verdict);

}  // namespace zelk::check

#endif
