# SPDX-License-Identifier: MIT
# One INTERFACE target carries what every source file of the project is compiled with.
add_library(ProjectWarnings INTERFACE)
target_compile_options(ProjectWarnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Wold-style-cast -Woverloaded-virtual -Wcast-align -Wformat=2
  $<$<BOOL:${QUILLMARK_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(ProjectWarnings INTERFACE
  QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)

if(QUILLMARK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(QUILLMARK_BUILD_FUZZERS)
  # The fuzzers are led by what they reach, so all that they reach is instrumented.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(QUILLMARK_TIDY)
  find_program(CLANG_TIDY NAMES clang-tidy-14 clang-tidy REQUIRED)
  set(CMAKE_CXX_CLANG_TIDY ${CLANG_TIDY} --quiet)
endif()
