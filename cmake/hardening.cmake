# What compiler and linker do, in optimised builds, against faults that nobody has found yet: a fault that somebody's file
# reaches should end the process rather than serve whoever made the file. tests/binaries/check_hardening sees to it that
# libraries, modules and program have all this.
#
# Builds with sanitizers do without: these watch the same places closer, and know their own versions of the functions that
# _FORTIFY_SOURCE replaces.

include(CheckCXXCompilerFlag)
include(CheckPIESupported)

if(WIN32)
  add_link_options(LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
elseif(NOT APPLE)
  # The program is loaded at a random address, as libraries are.
  check_pie_supported()
  # The loader's tables are read-only before the first line of the program runs, and nothing on a stack is executed.
  add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
endif()
# On Windows the compiler's checks call a library of its own, which a host would have to bring along.
if(ZELK_SANITIZE OR WIN32)
  return()
endif()

# A level that the distribution sets has to go first; C libraries that know no level 3 take it for their highest.
set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options($<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)

set(hardening -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
set(CMAKE_REQUIRED_FLAGS -Werror)
foreach(flag IN LISTS hardening)
  string(MAKE_C_IDENTIFIER "ZELK_TAKES_${flag}" taken)
  check_cxx_compiler_flag(${flag} ${taken})
  if(${taken})
    add_compile_options($<${optimised}:${flag}>)
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
