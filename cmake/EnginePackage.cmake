# Finds the unpacked engine package (tools/ground brings it) and checks that it is the one this tree was made for.
if(NOT EXISTS ${ZEMO_ENGINE_DIR}/win_amd64/header.py OR NOT EXISTS ${ZEMO_ENGINE_DIR}/runtime/libcef.dll)
  message(FATAL_ERROR "ZEMO_ENGINE_DIR must name the unpacked engine package (win_amd64/header.py, runtime/libcef.dll); ./run passes it.")
endif()
set(ZEMO_ENGINE_RUNTIME ${ZEMO_ENGINE_DIR}/runtime)
