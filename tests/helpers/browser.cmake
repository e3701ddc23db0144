zemo_test_helper(stand_in_browser stand_in_browser.cpp)
target_link_options(stand_in_browser PRIVATE -municode)

# Reads addresses with the library's own value class, because it takes the library at run time.
zemo_test_helper(browser_game browser_game.cpp stand_in_browser_stage.cpp
  ${PROJECT_SOURCE_DIR}/src/core/url.cpp ${PROJECT_SOURCE_DIR}/src/core/string_util.cpp)
target_compile_definitions(browser_game PRIVATE ZEMO_NO_EXPORTS)
target_link_libraries(browser_game PRIVATE ws2_32 advapi32)
add_dependencies(browser_game ZEMOUIFramework stand_in_browser)
