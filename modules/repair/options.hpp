/// \file
/// The option of the module: that of a host in one text.

#ifndef ZELK_MODULES_REPAIR_OPTIONS_HPP
#define ZELK_MODULES_REPAIR_OPTIONS_HPP

#include <string_view>

#include "check/includes/mend.hpp"

namespace zelk::modules {

///     option = { "--keep" MEND | "--no-node" NAME | "--include" FOLDER }
///
/// parted by blanks; a value goes up to the next " --".
///
/// @param text  in UTF-8
/// @throws Fault for another text, and for a mend that there is not
check::MendOptions parse_options(std::string_view text);

}  // namespace zelk::modules

#endif
