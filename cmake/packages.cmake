# The libraries of the program and the tests, from the distribution: CLI11::CLI11, fmt::fmt,
# nlohmann_json::nlohmann_json, GTest::gmock and GTest::gtest_main.
#
# A build for another system takes them from the same packages, in forms that do not depend on a system: headers, copied
# out of /usr/include because what lies beside them there is of the build machine's system, and GoogleTest's sources.

function(zelk_copy_header_library name folder)
  file(COPY /usr/include/${folder} DESTINATION ${CMAKE_BINARY_DIR}/headers)
  add_library(${name} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${name} INTERFACE ${CMAKE_BINARY_DIR}/headers)
endfunction()

if(NOT CMAKE_CROSSCOMPILING)
  if(ZELK_BUILD_TOOL)
    find_package(CLI11 REQUIRED)
    find_package(fmt REQUIRED)
    find_package(nlohmann_json REQUIRED)
  endif()
  if(ZELK_BUILD_TESTS)
    find_package(GTest REQUIRED)
  endif()
  return()
endif()

if(ZELK_BUILD_TOOL)
  zelk_copy_header_library(CLI11::CLI11 CLI)
  zelk_copy_header_library(fmt::fmt fmt)
  target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)
  zelk_copy_header_library(nlohmann_json::nlohmann_json nlohmann)
endif()
if(ZELK_BUILD_TESTS)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL SYSTEM)
  if(NOT TARGET GTest::gmock)
    add_library(GTest::gmock ALIAS gmock)
  endif()
endif()
