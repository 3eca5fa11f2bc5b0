# `make package`: a Debian package of what `cmake --install` installs, under
# /usr. Its runtime dependencies are what dpkg-shlibdeps finds that the
# binaries link, so a new library dependency needs nothing here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME talpremote)
set(CPACK_PACKAGE_CONTACT "talpremote maintainers <talpremote@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "data-connector library and the talp tool")
set(CPACK_PACKAGE_DESCRIPTION
    "Reads records from, and writes them back to, delimited text and XML files, MySQL servers, ODBC data sources, \
script data sources and HTTP servers, as UTF-16 text in one layout. Holds the shared and static library with its \
headers, CMake package and pkg-config file, the plug-in module for host applications, and the command-line tool \
talp with its manual page and bash completion.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# A shlibs file, and the ldconfig trigger instead of CPack's ldconfig calls,
# as Debian packages of shared libraries have them.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
    ${PROJECT_SOURCE_DIR}/cmake/debian/postinst ${PROJECT_SOURCE_DIR}/cmake/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
