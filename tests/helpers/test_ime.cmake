# An input method module: the system itself loads it into the process whose keyboard layout names it.
add_library(zemo_test_ime MODULE test_ime/test_ime.cpp test_ime/test_ime.def)
set_target_properties(zemo_test_ime PROPERTIES PREFIX "" SUFFIX ".ime" OUTPUT_NAME zemotest
  LIBRARY_OUTPUT_DIRECTORY ${ZEMO_TEST_HELPERS_DIR})
target_link_libraries(zemo_test_ime PRIVATE imm32)
zemo_warnings(zemo_test_ime)
add_dependencies(zemo_test_helpers zemo_test_ime)
