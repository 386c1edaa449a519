# Makes texts part of a program.
#
#   zelk_embed_texts(TARGET ROOM FILE...)
#
# makes the header "ROOM/texts.hpp", which declares each file as a std::string_view in namespace zelk::tool::ROOM_texts:
# "report/page.mustache" is page_mustache there. A file that does not exist is an empty text.

function(zelk_embed_texts target room)
  set(declarations "")
  set(definitions "")
  foreach(file IN LISTS ARGN)
    get_filename_component(name ${file} NAME)
    string(MAKE_C_IDENTIFIER ${name} name)
    set(bytes "")
    if(EXISTS ${file})
      file(READ ${file} bytes HEX)
      string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    endif()
    string(APPEND declarations "extern const std::string_view ${name};\n")
    string(APPEND definitions
      "constexpr char ${name}_bytes[] = {${bytes}'\\0'};\n"
      "const std::string_view ${name}(${name}_bytes, sizeof ${name}_bytes - 1);\n")
  endforeach()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/embedded)
  set(namespace zelk::tool::${room}_texts)
  file(CONFIGURE OUTPUT ${folder}/${room}/texts.hpp @ONLY CONTENT
    "#pragma once\n#include <string_view>\nnamespace ${namespace} {\n${declarations}}\n")
  file(CONFIGURE OUTPUT ${folder}/${room}/texts.cpp @ONLY CONTENT
    "#include \"${room}/texts.hpp\"\nnamespace ${namespace} {\n${definitions}}\n")
  target_sources(${target} PRIVATE ${folder}/${room}/texts.cpp)
  target_include_directories(${target} PRIVATE ${folder})
endfunction()
