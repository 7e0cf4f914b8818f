# Window-free rules of the entry fields and of the contest clock.
target_sources(kolibrino_logic PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/contest_clock.cpp ${CMAKE_CURRENT_LIST_DIR}/contest_clock.h
  ${CMAKE_CURRENT_LIST_DIR}/entry_colours.h
  ${CMAKE_CURRENT_LIST_DIR}/entry_keys.cpp ${CMAKE_CURRENT_LIST_DIR}/entry_keys.h)
