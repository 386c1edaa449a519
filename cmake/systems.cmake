# Code that differs between systems stands in sources whose names end in posix.cpp or win32.cpp.

function(zelk_keep_sources_of_this_system list)
  if(WIN32)
    list(FILTER ${list} EXCLUDE REGEX "posix\\.cpp$")
  else()
    list(FILTER ${list} EXCLUDE REGEX "win32\\.cpp$")
  endif()
  set(${list} ${${list}} PARENT_SCOPE)
endfunction()
