# What `cmake --install` gives: the libraries, the headers under include/zrvcomn, the home tree where
# the library looks for it, the manual page of the library, a pkg-config file, and the CMake package
# zrvcomn with the targets zrv::comn, zrv::intl, zrv::unic and zrv::ssfs. The command installs itself and
# its page (tools/).
include(CMakePackageConfigHelpers)

set_target_properties(zrvcomn PROPERTIES EXPORT_NAME comn)
set_target_properties(zrvintl PROPERTIES EXPORT_NAME intl)
set_target_properties(zrvunic PROPERTIES EXPORT_NAME unic)
set_target_properties(velssfs PROPERTIES EXPORT_NAME ssfs)
install(TARGETS zrvintl zrvunic velssfs zrvcomn EXPORT zrvcomn)
install(FILES ${public_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zrvcomn)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/home/ DESTINATION ${ZRV_HOME_DIR})
install(FILES ${CMAKE_SOURCE_DIR}/docs/libzrvcomn.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zrvcomn)
install(EXPORT zrvcomn NAMESPACE zrv:: FILE zrvcomn-targets.cmake DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/zrvcomn-config.cmake.in
                              ${CMAKE_BINARY_DIR}/zrvcomn-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zrvcomn-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zrvcomn-config.cmake
              ${CMAKE_BINARY_DIR}/zrvcomn-config-version.cmake DESTINATION ${package_dir})

# The pkg-config file tells everything from its own place, so that the prefix may be moved; a directory
# outside the prefix stays where it is. The prefix is known for certain only when the installation runs
# (--prefix).
set(pkg_config_in ${CMAKE_CURRENT_LIST_DIR}/zrvcomn.pc.in)
install(
  CODE "
    set(PROJECT_VERSION ${PROJECT_VERSION})
    get_filename_component(prefix \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
    set(libdir \"${CMAKE_INSTALL_LIBDIR}\")
    set(includedir \"${CMAKE_INSTALL_INCLUDEDIR}\")
    set(homedir \"${ZRV_HOME_DIR}\")
    foreach(dir libdir includedir homedir)
      cmake_path(ABSOLUTE_PATH \${dir} BASE_DIRECTORY \"\${prefix}\")
    endforeach()
    set(file \"\${libdir}/pkgconfig/zrvcomn.pc\")
    message(STATUS \"Installing: \${file}\")
    file(RELATIVE_PATH up \"\${libdir}/pkgconfig\" \"\${prefix}\")
    foreach(dir libdir includedir homedir)
      cmake_path(IS_PREFIX prefix \"\${\${dir}}\" inside)
      if(inside)
        file(RELATIVE_PATH \${dir} \"\${prefix}\" \"\${\${dir}}\")
        string(PREPEND \${dir} \"\\\${prefix}/\")
      endif()
      string(REPLACE \" \" \"\\\\ \" \${dir} \"\${\${dir}}\")
    endforeach()
    configure_file(\"${pkg_config_in}\" \"\$ENV{DESTDIR}\${file}\" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${file}\")
  ")
