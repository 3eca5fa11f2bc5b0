# find_package(talpremote CONFIG) gives the imported targets
#   talp::talpremote         the shared library, with the public headers;
#   talp::talpremote_plugin  the plug-in module a host loads ($<TARGET_FILE:...> is its path);
# and with COMPONENTS static
#   talp::talpremote_static  the static library; its consumers link the
#                            third-party libraries it uses, which are looked for then.
include(${CMAKE_CURRENT_LIST_DIR}/talpremote-targets.cmake)

foreach(talp_component IN LISTS talpremote_FIND_COMPONENTS)
  if(talp_component STREQUAL "static")
    include(${CMAKE_CURRENT_LIST_DIR}/talpremote-dependencies.cmake)
    include(${CMAKE_CURRENT_LIST_DIR}/talpremote-static-targets.cmake)
    set(talpremote_static_FOUND TRUE)
  elseif(talpremote_FIND_REQUIRED_${talp_component})
    set(talpremote_FOUND FALSE)
    set(talpremote_NOT_FOUND_MESSAGE "talpremote has no component ${talp_component} (only: static)")
  endif()
endforeach()
unset(talp_component)
