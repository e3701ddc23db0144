zemo_test_helper(locale_probe locale_probe.cpp
  ${PROJECT_SOURCE_DIR}/src/core/locale_setter.cpp ${PROJECT_SOURCE_DIR}/src/core/user_locale.cpp ${PROJECT_SOURCE_DIR}/src/core/locale_names.cpp)
target_compile_definitions(locale_probe PRIVATE ZEMO_NO_EXPORTS)
