# Finds the unpacked engine package (tools/ground brings it), checks that it is the one this tree was made for, and stages
# the engine's files into the one directory that a game ships.
if(NOT EXISTS ${ZEMO_ENGINE_DIR}/win_amd64/header.py OR NOT EXISTS ${ZEMO_ENGINE_DIR}/runtime/libcef.dll)
  message(FATAL_ERROR "ZEMO_ENGINE_DIR must name the unpacked engine package (win_amd64/header.py, runtime/libcef.dll); ./run passes it.")
endif()
set(ZEMO_ENGINE_RUNTIME ${ZEMO_ENGINE_DIR}/runtime)

# The engine looks for its data beside libcef.dll. The package's sample client and its shader compilers stay out.
set(ZEMO_ENGINE_FILES
    libcef.dll chrome_elf.dll icudtl.dat v8_context_snapshot.bin snapshot_blob.bin resources.pak chrome_100_percent.pak
    chrome_200_percent.pak libEGL.dll libGLESv2.dll vk_swiftshader.dll vk_swiftshader_icd.json vulkan-1.dll d3dcompiler_47.dll)
foreach(file ${ZEMO_ENGINE_FILES})
  if(NOT EXISTS ${ZEMO_ENGINE_RUNTIME}/${file})
    message(FATAL_ERROR "The engine package in ${ZEMO_ENGINE_DIR} lacks runtime/${file}: it is another version, or was cut short.")
  endif()
endforeach()

set(ZEMO_ENGINE_STAMP ${CMAKE_BINARY_DIR}/engine_files.stamp)
add_custom_command(
  OUTPUT ${ZEMO_ENGINE_STAMP}
  COMMAND ${CMAKE_COMMAND} -DFROM=${ZEMO_ENGINE_RUNTIME} -DTO=${ZEMO_BIN_DIR} "-DFILES=${ZEMO_ENGINE_FILES}"
          -P ${CMAKE_CURRENT_LIST_DIR}/StageEngine.cmake
  COMMAND ${CMAKE_COMMAND} -E touch ${ZEMO_ENGINE_STAMP}
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/StageEngine.cmake ${CMAKE_CURRENT_LIST_FILE}
  COMMENT "Staging the engine's files"
  VERBATIM)
add_custom_target(zemo_engine_files ALL DEPENDS ${ZEMO_ENGINE_STAMP})
