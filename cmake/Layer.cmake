# SPDX-License-Identifier: MIT
# A layer is one static library over one folder. Layers are declared bottom-up, and a layer may
# use only what is declared before it: an include that points upwards does not compile, because
# the folder of a later layer is on nobody's include path.
#
# For work on the tests QUILLMARK_SHARED_LAYERS makes them shared ones.
#
#   add_layer(Name SOURCES a.cpp HEADERS a.h USES LowerLayer Qt6::Core [PRIVATE_USES ICU::uc])
function(add_layer name)
  cmake_parse_arguments(L "" "" "SOURCES;HEADERS;USES;PRIVATE_USES" ${ARGN})
  foreach(dependency IN LISTS L_USES L_PRIVATE_USES)
    if(NOT TARGET ${dependency})
      message(FATAL_ERROR "${name} may only use layers declared before it, not ${dependency}")
    endif()
  endforeach()
  set(kind STATIC)
  if(QUILLMARK_SHARED_LAYERS)
    set(kind SHARED)
  endif()
  add_library(${name} ${kind} ${L_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS
    BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR} FILES ${L_HEADERS})
  target_link_libraries(${name} PUBLIC ${L_USES} PRIVATE ${L_PRIVATE_USES} ProjectWarnings)
endfunction()
