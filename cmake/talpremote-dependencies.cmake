# The third-party libraries that talpremote links, one line each at the end.
#
# The build includes this file and links TALP_DEPENDENCY_TARGETS privately;
# talpremote.pc lists TALP_DEPENDENCY_LINK_FLAGS for static linking; and the
# installed CMake package includes it again, from beside its own files, only
# for consumers of the static library, who link these libraries themselves.
# The shared library carries its own references to them, so its consumers
# need none of them, not even their headers.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

set(TALP_DEPENDENCY_TARGETS Threads::Threads)
set(TALP_DEPENDENCY_LINK_FLAGS -pthread)

# A library that pkg-config knows as module; linked as PkgConfig::${prefix}.
macro(talp_pkg_config_dependency prefix module)
  if(NOT TARGET PkgConfig::${prefix})
    pkg_check_modules(${prefix} REQUIRED QUIET IMPORTED_TARGET GLOBAL ${module})
  endif()
  list(APPEND TALP_DEPENDENCY_TARGETS PkgConfig::${prefix})
  foreach(library IN LISTS ${prefix}_LIBRARIES)
    list(APPEND TALP_DEPENDENCY_LINK_FLAGS -l${library})
  endforeach()
endmacro()

# A library without pkg-config file, found as lib${name} with header; linked
# as talp::dependency::${name}.
macro(talp_library_dependency name header)
  if(NOT TARGET talp::dependency::${name})
    find_library(TALP_${name}_LIBRARY ${name} REQUIRED)
    find_path(TALP_${name}_INCLUDE_DIR ${header} REQUIRED)
    add_library(talp::dependency::${name} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(talp::dependency::${name} PROPERTIES IMPORTED_LOCATION "${TALP_${name}_LIBRARY}"
                          INTERFACE_INCLUDE_DIRECTORIES "${TALP_${name}_INCLUDE_DIR}")
  endif()
  list(APPEND TALP_DEPENDENCY_TARGETS talp::dependency::${name})
  list(APPEND TALP_DEPENDENCY_LINK_FLAGS -l${name})
endmacro()

talp_pkg_config_dependency(MARIADB libmariadb)
# unixODBC: the Unicode builds of current drivers load under it only.
talp_pkg_config_dependency(ODBC odbc)
# Duktape 2.7; its pkg-config file reports an older version, so none is asked for.
talp_pkg_config_dependency(DUKTAPE duktape)
