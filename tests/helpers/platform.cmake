# platform_probe runs the platform functions in a fresh process of its own, in surroundings that the test makes up; it
# has a version resource, the plain one has none.
set(platform_probe_sources platform_probe.cpp platform_probe_ipc.cpp made_up_wmi.cpp ../support/debug_log.cpp
    ../support/crash_exit.cpp)
zemo_test_helper(platform_probe ${platform_probe_sources} platform_probe.rc)
zemo_test_helper(platform_probe_plain ${platform_probe_sources})
foreach(name platform_probe platform_probe_plain)
  target_link_libraries(${name} PRIVATE zemo_objects)
  if(MINGW)
    target_link_options(${name} PRIVATE -municode)
  endif()
endforeach()

# A server of runtime classes with answers that the test chooses.
add_library(made_up_winrt MODULE made_up_winrt.cpp)
set_target_properties(made_up_winrt PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${ZEMO_TEST_HELPERS_DIR})
target_link_libraries(made_up_winrt PRIVATE oleaut32 ole32 uuid)
zemo_warnings(made_up_winrt)
add_dependencies(zemo_test_helpers made_up_winrt)
