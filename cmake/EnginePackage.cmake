# The unpacked engine package (tools/ground brings it): checks that it is the one this tree was made for.
if(NOT EXISTS ${ZEMO_ENGINE_DIR}/win_amd64/header.py OR NOT EXISTS ${ZEMO_ENGINE_DIR}/runtime/libcef.dll)
  message(FATAL_ERROR "Name the engine: -DZEMO_ENGINE_DIR=DIR, the unpacked engine package (win_amd64/header.py, runtime/libcef.dll; "
                      "./run passes it), or -DZEMO_CEF_ROOT=DIR, a full engine distribution.")
endif()
set(runtime ${ZEMO_ENGINE_DIR}/runtime)

# The engine looks for its data beside libcef.dll. The package's sample client and its shader compilers stay out.
set(ZEMO_ENGINE_FILES
    libcef.dll chrome_elf.dll icudtl.dat v8_context_snapshot.bin snapshot_blob.bin resources.pak chrome_100_percent.pak
    chrome_200_percent.pak libEGL.dll libGLESv2.dll vk_swiftshader.dll vk_swiftshader_icd.json vulkan-1.dll d3dcompiler_47.dll)
foreach(file ${ZEMO_ENGINE_FILES})
  if(NOT EXISTS ${runtime}/${file})
    message(FATAL_ERROR "The engine package in ${ZEMO_ENGINE_DIR} lacks runtime/${file}: it is another version, or was cut short.")
  endif()
endforeach()
list(TRANSFORM ZEMO_ENGINE_FILES PREPEND ${runtime}/ OUTPUT_VARIABLE ZEMO_ENGINE_SOURCES)
set(ZEMO_ENGINE_LOCALES ${runtime}/locales)
