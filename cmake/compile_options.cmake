# Options of every target: the language, warnings as errors, hidden symbols, and arithmetic that does not depend on
# whether the processor has fused multiply-add (it would change physical values in the last bit).

set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(ZELK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them: \"address,undefined\", \"thread\"")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in every "literal" + std::string.
  add_compile_options(-Wno-restrict)
endif()

# Machines of 32 bits: files beyond 2 GiB, and doubles that are computed as doubles.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT WIN32)
  add_compile_definitions(_FILE_OFFSET_BITS=64)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "86")
    add_compile_options(-msse2 -mfpmath=sse)
  endif()
endif()

if(ZELK_SANITIZE)
  add_compile_options(-fsanitize=${ZELK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS) # indices and iterators that stay within their memory, but not their list
  add_link_options(-fsanitize=${ZELK_SANITIZE})
endif()

option(ZELK_COVERAGE "Count which lines and branches of the libraries, the checks and the modules are run (g++ only)" OFF)

# For a folder whose sources are counted, each by itself. Objects of several sources that are linked into more than one
# library or program differ there in the inline functions that the linker keeps: their counters cannot be added up.
# All programs link with the library of counters.
macro(zelk_count_coverage)
  if(ZELK_COVERAGE)
    set(CMAKE_UNITY_BUILD OFF)
    add_compile_options(--coverage -fprofile-update=atomic)
  endif()
endmacro()
if(ZELK_COVERAGE)
  add_link_options(--coverage)
endif()
# Two optimised builds of the same sources give the same bytes, wherever and whenever they run: nothing built has the names
# of the build's folders in it. Compilers that know several prefixes of a path take the last one.
foreach(prefix IN ITEMS ${PROJECT_SOURCE_DIR}=. ${CMAKE_BINARY_DIR}=build)
  add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-ffile-prefix-map=${prefix}>)
endforeach()
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
