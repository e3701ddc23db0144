# Library sources that need neither Windows nor the engine. They are part of the library as every other source, and are
# built natively a second time, where the sanitizers and the fuzzers run. Paths are relative to src/.
set(ZEMO_PORTABLE_SOURCES)
foreach(candidate
    core/locale_names.cpp
    core/string_util.cpp
    core/url.cpp
    render/frame_compositor.cpp
    render/cursor_file.cpp
    render/pixel_scale.cpp
    layers/deck/extra_window_rules.cpp
    layers/deck/on_screen_keyboard_rules.cpp
    api/file_selection.cpp
    browser/loopback_request.cpp
    browser/browser_rules.cpp)
  if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/../src/${candidate})
    list(APPEND ZEMO_PORTABLE_SOURCES ${CMAKE_CURRENT_LIST_DIR}/../src/${candidate})
  endif()
endforeach()
