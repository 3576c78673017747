# SPDX-License-Identifier: MIT
# Writes the path data of the symbols' SVG files into a C++ table:
#
#   cmake -D OUTPUT=SymbolTable.cpp -D DRAWINGS=plus.svg,minus.svg -P MakeSymbolTable.cmake
#
# A drawing is a list of <path> elements with nothing but the commands M, L, H, V, C and Z. A path
# is stroked, or filled where it says fill="currentColor".
string(REPLACE "," ";" DRAWINGS "${DRAWINGS}")
set(rows "")
foreach(drawing IN LISTS DRAWINGS)
  get_filename_component(name "${drawing}" NAME)
  string(REGEX REPLACE "\\.svg$" "" name "${name}")
  file(READ "${drawing}" text)
  string(REGEX MATCHALL "<path[^>]*>" paths "${text}")
  set(strokes "")
  set(fills "")
  foreach(path IN LISTS paths)
    if(NOT path MATCHES " d=\"([MLHVCZ0-9. -]+)\"")
      message(FATAL_ERROR "${drawing}: only absolute M, L, H, V, C and Z are read: ${path}")
    endif()
    if(path MATCHES "fill=\"currentColor\"")
      string(REGEX REPLACE ".* d=\"([^\"]+)\".*" "\\1" data "${path}")
      string(APPEND fills "${data}")
    else()
      string(REGEX REPLACE ".* d=\"([^\"]+)\".*" "\\1" data "${path}")
      string(APPEND strokes "${data}")
    endif()
  endforeach()
  if(NOT paths)
    message(FATAL_ERROR "${drawing}: no path")
  endif()
  string(APPEND rows "    {\"${name}\", \"${strokes}\",\n     \"${fills}\"},\n")
endforeach()

file(WRITE "${OUTPUT}" "// Written by the build from the files in resources/symbols.
#include \"SymbolTable.h\"

namespace {

constexpr SymbolDrawing table[] = {
${rows}};

} // namespace

std::span<const SymbolDrawing> symbolDrawings()
{
    return table;
}
")
