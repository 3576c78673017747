# SPDX-License-Identifier: MIT
# Lets a program count what its views ask for: tests/Support/CountedCalls.h.
function(count_calls target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests/Support)
  foreach(symbol IN ITEMS
      _ZNK14AppPreferences4textERK7QString
      _ZNK14AppPreferences6formatERK7QStringRK5QListISt7variantIJxS0_6PhraseEEE
      _Z8dateText9Timestamp9DateStyleRK7QString
      _Z15systemLanguagesv)
    target_link_options(${target} PRIVATE -Wl,--wrap=${symbol})
  endforeach()
endfunction()
