# Where the engine comes from, and the staging of its files into the one directory that a game ships.
#  ZEMO_ENGINE_FILES    their names there, ZEMO_ENGINE_SOURCES the files themselves
#  ZEMO_ENGINE_LOCALES  the folder of its languages
#  zemo_engine_files    the target that stages them
if(ZEMO_CEF_ROOT)
  include(EngineDistribution)
else()
  include(EnginePackage)
endif()

set(ZEMO_ENGINE_STAMP ${CMAKE_BINARY_DIR}/engine_files.stamp)
add_custom_command(
  OUTPUT ${ZEMO_ENGINE_STAMP}
  COMMAND ${CMAKE_COMMAND} "-DFILES=${ZEMO_ENGINE_SOURCES}" -DLOCALES=${ZEMO_ENGINE_LOCALES} -DTO=${ZEMO_BIN_DIR}
          -DSTAMP=${ZEMO_ENGINE_STAMP} -P ${CMAKE_CURRENT_LIST_DIR}/StageEngine.cmake
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/StageEngine.cmake ${ZEMO_ENGINE_SOURCES}
  COMMENT "Staging the engine's files"
  VERBATIM)
add_custom_target(zemo_engine_files ALL DEPENDS ${ZEMO_ENGINE_STAMP})
