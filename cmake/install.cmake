# What `cmake --install BUILD --prefix P` puts under P. Installed files refer
# to each other by paths relative to themselves, so the tree works from any
# prefix it is moved to.
include(CMakePackageConfigHelpers)

set(TALP_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/talpremote)
set(TALP_PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/talpremote)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/talp ${PROJECT_BINARY_DIR}/include/talp
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(TARGETS talpremote_shared EXPORT talpremote-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS talpremote_plugin EXPORT talpremote-targets LIBRARY DESTINATION ${TALP_PLUGIN_DIR})
install(TARGETS talp-script-host RUNTIME DESTINATION ${TALP_PLUGIN_DIR})
install(TARGETS talpremote EXPORT talpremote-static-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Stripping (cmake --install --strip, the Debian package) leaves out the static
# library's debug information too, which is most of its size.
install(CODE "
  if(CMAKE_INSTALL_DO_STRIP)
    execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-debug
                    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:talpremote>\")
  endif()")
install(TARGETS talp RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The CMake package: find_package(talpremote CONFIG) in a consumer.
install(EXPORT talpremote-targets NAMESPACE talp:: DESTINATION ${TALP_CMAKE_DIR})
install(EXPORT talpremote-static-targets NAMESPACE talp:: DESTINATION ${TALP_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/talpremote-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/talpremote-config.cmake ${PROJECT_SOURCE_DIR}/cmake/talpremote-dependencies.cmake
              ${PROJECT_BINARY_DIR}/talpremote-config-version.cmake
        DESTINATION ${TALP_CMAKE_DIR})

# The pkg-config file finds the prefix from its own place.
file(RELATIVE_PATH TALP_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" TALP_PC_TO_PREFIX "${TALP_PC_TO_PREFIX}")
list(JOIN TALP_DEPENDENCY_LINK_FLAGS " " TALP_PC_LIBS_PRIVATE)
configure_file(${PROJECT_SOURCE_DIR}/cmake/talpremote.pc.in ${PROJECT_BINARY_DIR}/talpremote.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/talpremote.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/tools/talp/talp.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/tools/talp/talp.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME talp)

# The bundled catalogues and the embedding examples, to try and copy from.
install(FILES ${PROJECT_SOURCE_DIR}/examples/catalogue-tab.txt ${PROJECT_SOURCE_DIR}/examples/catalogue-comma.csv
              ${PROJECT_SOURCE_DIR}/examples/catalogue-semicolon.csv ${PROJECT_SOURCE_DIR}/examples/catalogue-utf16.txt
              ${PROJECT_SOURCE_DIR}/examples/catalogue-ansi.txt ${PROJECT_SOURCE_DIR}/examples/catalogue.xml
              ${PROJECT_SOURCE_DIR}/examples/catalogue.sql ${PROJECT_SOURCE_DIR}/examples/styling.xml
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/host DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
