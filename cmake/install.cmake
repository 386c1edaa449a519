# `cmake --install`: headers, libraries, modules, tool, a CMake package (zelkmsnx::zelkmsnx, zelkmsnx::logs) and a
# pkg-config file for each library.

include(CMakePackageConfigHelpers)

install(TARGETS zelkmsnx EXPORT zelkmsnx
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(ZELK_BUILD_LOGS)
  set_target_properties(zelklogs PROPERTIES INSTALL_RPATH $ORIGIN)
  install(TARGETS zelklogs EXPORT zelkmsnx
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zelk DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(ZELK_BUILD_TOOL)
  # The program finds the library relative to its own folder, wherever the installation is.
  file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(zelk PROPERTIES INSTALL_RPATH $ORIGIN/${bin_to_lib})
  install(TARGETS zelk RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# Modules lie in the folder zelkms beside the library, where the program looks for them.
if(WIN32)
  set(module_dir ${CMAKE_INSTALL_BINDIR}/zelkms)
else()
  set(module_dir ${CMAKE_INSTALL_LIBDIR}/zelkms)
endif()
if(TARGET zelk-png)
  install(TARGETS zelk-png LIBRARY DESTINATION ${module_dir})
endif()
if(ZELK_BUILD_MODULES)
  set_target_properties(zelk-json zelk-kcd zelk-repair PROPERTIES INSTALL_RPATH $ORIGIN/..)
  install(TARGETS zelk-json zelk-kcd zelk-repair LIBRARY DESTINATION ${module_dir})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelkmsnx)
install(EXPORT zelkmsnx NAMESPACE zelkmsnx:: FILE zelkmsnx-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zelkmsnx-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zelkmsnx-config-version.cmake DESTINATION ${package_dir})

# The file names folders relative to its own, so that `cmake --install --prefix` may put the installation anywhere.
file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(libraries zelkmsnx)
if(ZELK_BUILD_LOGS)
  list(APPEND libraries zelklogs)
endif()
foreach(library IN LISTS libraries)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in ${CMAKE_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
