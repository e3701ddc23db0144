add_library(zemo_graphics_hook_stub MODULE ${CMAKE_CURRENT_SOURCE_DIR}/graphics_hook_stub.cpp)
# In the helpers' directory, where no program looks for it: a test puts it beside itself for as long as it needs it.
set_target_properties(zemo_graphics_hook_stub PROPERTIES PREFIX "" OUTPUT_NAME ZEMOGraphicsHook
  LIBRARY_OUTPUT_DIRECTORY ${ZEMO_TEST_HELPERS_DIR} RUNTIME_OUTPUT_DIRECTORY ${ZEMO_TEST_HELPERS_DIR})
zemo_warnings(zemo_graphics_hook_stub)
add_dependencies(zemo_test_helpers zemo_graphics_hook_stub)
