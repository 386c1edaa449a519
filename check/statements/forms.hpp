/// \file
/// Reads statements by their forms, and says where they differ from them.

#ifndef ZELK_CHECK_STATEMENTS_FORMS_HPP
#define ZELK_CHECK_STATEMENTS_FORMS_HPP

#include "check/statements/document.hpp"

namespace zelk::check {

/// Divides the tokens of a document into statements and gives the tokens their roles. Tokens that
/// make up one odd name or number become one.
///
/// @param document  has its tokens, and nothing else yet but faults in characters, to which those
/// in forms are added
void read_statements(Document& document);

}  // namespace zelk::check

#endif
