# In the helpers' directories, where no program looks for them: a test loads one by its place, or puts it beside itself for
# as long as it needs it.
function(zemo_hook_module name folder)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME ZEMOGraphicsHook
    LIBRARY_OUTPUT_DIRECTORY ${folder} RUNTIME_OUTPUT_DIRECTORY ${folder})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/include)
  zemo_warnings(${name})
  add_dependencies(zemo_test_helpers ${name})
endfunction()
zemo_hook_module(zemo_graphics_hook_stub ${ZEMO_TEST_HELPERS_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/graphics_hook_stub.cpp)
zemo_hook_module(zemo_recording_hook ${ZEMO_TEST_HELPERS_DIR}/recording_hook ${CMAKE_CURRENT_SOURCE_DIR}/recording_hook.cpp)
