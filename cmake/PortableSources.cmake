# Library sources that need neither Windows nor the engine. They are part of the library as every other source, and are
# built natively a second time, where the sanitizers and the fuzzers run.
set(ZEMO_PORTABLE_SOURCES
    core/json_quoted.cpp
    core/locale_names.cpp
    core/string_util.cpp
    core/texts_under_way.cpp
    core/url.cpp
    render/frame_compositor.cpp
    render/cursor_file.cpp
    render/pixel_scale.cpp
    layers/deck/extra_window_rules.cpp
    layers/deck/on_screen_keyboard_rules.cpp
    api/file_selection.cpp
    browser/loopback_request.cpp
    browser/browser_rules.cpp
    controller/controller_pages.cpp
    controller/controller_scripts.cpp
    controller/remote_input.cpp
    engine/client_scheme_handler_types.cpp
    engine/client/script/script_queue.cpp)
list(TRANSFORM ZEMO_PORTABLE_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/src/)
