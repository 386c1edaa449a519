# What is different on each system stands in sources of their own, which end in posix.cpp or win32.cpp.

function(zelk_keep_sources_of_this_system list)
  if(WIN32)
    list(FILTER ${list} EXCLUDE REGEX "posix\\.cpp$")
  else()
    list(FILTER ${list} EXCLUDE REGEX "win32\\.cpp$")
  endif()
  set(${list} ${${list}} PARENT_SCOPE)
endfunction()
