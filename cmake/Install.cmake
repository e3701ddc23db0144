# The SDK tree: bin/ is what a game ships and nothing else; include/ and lib/ are what it is built with; samples/, docs/,
# demo/ and tools/ are for the people who build it.
include(CMakePackageConfigHelpers)
set(ZEMO_INSTALLED_BIN bin)
install(TARGETS ZEMOUIFramework EXPORT ZEMOUIFrameworkTargets
  RUNTIME DESTINATION bin LIBRARY DESTINATION lib ARCHIVE DESTINATION lib INCLUDES DESTINATION include)
set_target_properties(ZEMOUIFramework PROPERTIES EXPORT_NAME UIFramework)
target_compile_features(ZEMOUIFramework INTERFACE cxx_std_20)
add_library(ZEMO::UIFramework ALIAS ZEMOUIFramework)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/zemo DESTINATION include FILES_MATCHING PATTERN "*.h")

foreach(file ${ZEMO_ENGINE_FILES})
  install(FILES ${ZEMO_BIN_DIR}/${file} DESTINATION bin)
endforeach()
install(DIRECTORY ${ZEMO_BIN_DIR}/cefsubprocess DESTINATION bin USE_SOURCE_PERMISSIONS
  FILES_MATCHING PATTERN "*.exe" PATTERN "*.dll" PATTERN "*.pak")
install(DIRECTORY ${ZEMO_BIN_DIR}/resources DESTINATION bin)
install(TARGETS zemo_demo zemo_minimal RUNTIME DESTINATION demo)
install(FILES ${PROJECT_SOURCE_DIR}/sdk/run_demo.cmd DESTINATION demo)
install(TARGETS zemo_doctor RUNTIME DESTINATION tools)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/samples ${PROJECT_SOURCE_DIR}/docs DESTINATION .
  FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h" PATTERN "*.txt" PATTERN "*.html" PATTERN "*.css" PATTERN "*.js" PATTERN "*.md" PATTERN "Doxyfile" EXCLUDE)
install(TARGETS ZEMOGraphicsHook LIBRARY DESTINATION bin RUNTIME DESTINATION bin)

set(package lib/cmake/ZEMOUIFramework)
install(EXPORT ZEMOUIFrameworkTargets NAMESPACE ZEMO:: DESTINATION ${package})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZEMOUIFrameworkConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/ZEMOUIFrameworkConfig.cmake INSTALL_DESTINATION ${package} PATH_VARS ZEMO_INSTALLED_BIN)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZEMOUIFrameworkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZEMOUIFrameworkConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZEMOUIFrameworkConfigVersion.cmake
  DESTINATION ${package})
install(FILES ${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake DESTINATION ${package} RENAME mingw-toolchain.cmake)
install(FILES ${PROJECT_SOURCE_DIR}/sdk/README.md ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION .)
