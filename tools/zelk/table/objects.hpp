/// \file
/// The kinds of objects that the program lists.

#ifndef ZELK_TOOL_TABLE_OBJECTS_HPP
#define ZELK_TOOL_TABLE_OBJECTS_HPP

#include "check/objects/objects.hpp"

namespace zelk::tool {

using check::Object;
using check::object_kinds;
using check::ObjectKind;

}  // namespace zelk::tool

#endif
