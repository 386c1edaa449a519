# Unity builds (`-D CMAKE_UNITY_BUILD=ON`) compile several sources of a target as one, which takes a third of the time: what
# they include is read once. Those sources share their unnamed namespaces.

if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # What is included counts as a header, where a type of an unnamed namespace would be another one in each source.
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
endif()

# Keeps sources of this folder, by patterns, out of unity builds: their names stand in others too, because they are alike.
function(zelk_compile_separately)
  file(GLOB separate CONFIGURE_DEPENDS ${ARGN})
  set_source_files_properties(${separate} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
