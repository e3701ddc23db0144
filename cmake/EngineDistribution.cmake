# A full engine distribution: its own CMake package says what it consists of, and builds its wrapper library.
file(TO_CMAKE_PATH "${ZEMO_CEF_ROOT}" ZEMO_CEF_ROOT)
if(NOT EXISTS ${ZEMO_CEF_ROOT}/cmake/FindCEF.cmake)
  message(FATAL_ERROR "ZEMO_CEF_ROOT must name a full engine distribution; ${ZEMO_CEF_ROOT}/cmake/FindCEF.cmake is not there.")
endif()

# A scope of its own: the package empties the compiler's flags and sets many names.
function(zemo_find_distribution)
  set(CEF_ROOT ${ZEMO_CEF_ROOT})
  list(PREPEND CMAKE_MODULE_PATH ${ZEMO_CEF_ROOT}/cmake)
  set(PROJECT_ARCH x86_64)  # it would take the building machine's
  set(USE_SANDBOX OFF)
  set(USE_ATL OFF)  # it looks for ATL from the compiler's path upward, and without Visual Studio never ends
  set(CEF_RUNTIME_LIBRARY_FLAG "/MD")
  foreach(kind "" _DEBUG _RELEASE)
    set(flags${kind} "${CMAKE_CXX_FLAGS${kind}}")
  endforeach()
  find_package(CEF REQUIRED MODULE)
  foreach(kind "" _DEBUG _RELEASE)
    set(CMAKE_CXX_FLAGS${kind} "${flags${kind}}")
  endforeach()

  # The wrapper and the library see each other's C++ types: one standard, one way of exceptions. Another's warnings are not
  # errors here.
  list(REMOVE_ITEM CEF_COMPILER_DEFINES _HAS_EXCEPTIONS=0)
  list(REMOVE_ITEM CEF_CXX_COMPILER_FLAGS /std:c++17)
  list(REMOVE_ITEM CEF_COMPILER_FLAGS /WX)
  if(NOT MSVC)  # all of them are that compiler's
    foreach(kind "" _DEBUG _RELEASE)
      set(CEF_COMPILER_FLAGS${kind})
      set(CEF_CXX_COMPILER_FLAGS${kind})
      set(CEF_LINKER_FLAGS${kind})
    endforeach()
  endif()
  add_subdirectory(${CEF_LIBCEF_DLL_WRAPPER_PATH} ${CMAKE_BINARY_DIR}/libcef_dll_wrapper EXCLUDE_FROM_ALL)
  if(NOT MSVC)
    target_compile_options(libcef_dll_wrapper PRIVATE -w)
  endif()

  # Shader compilers for what no page here is allowed to do stay out, as with the package.
  list(REMOVE_ITEM CEF_BINARY_FILES dxil.dll dxcompiler.dll)
  list(REMOVE_ITEM CEF_RESOURCE_FILES locales)
  set(files)
  foreach(kind Release:CEF_BINARY_FILES Resources:CEF_RESOURCE_FILES)
    string(REPLACE ":" ";" kind ${kind})
    list(GET kind 0 folder)
    list(GET kind 1 names)
    foreach(name ${${names}})
      list(APPEND files ${ZEMO_CEF_ROOT}/${folder}/${name})
    endforeach()
  endforeach()
  set(ZEMO_ENGINE_SOURCES ${files} PARENT_SCOPE)
endfunction()
zemo_find_distribution()

# Its list also names files that not each of its kinds has; these are what the engine can't do without.
foreach(file Release/libcef.dll Release/libcef.lib Release/chrome_elf.dll Release/v8_context_snapshot.bin Resources/icudtl.dat
             Resources/resources.pak Resources/locales/en-US.pak)
  if(NOT EXISTS ${ZEMO_CEF_ROOT}/${file} AND NOT (MINGW AND file MATCHES "lib$"))
    message(FATAL_ERROR "The engine distribution in ${ZEMO_CEF_ROOT} lacks ${file}.")
  endif()
endforeach()
foreach(file ${ZEMO_ENGINE_SOURCES})
  if(NOT EXISTS ${file})
    list(REMOVE_ITEM ZEMO_ENGINE_SOURCES ${file})
  endif()
endforeach()
set(ZEMO_ENGINE_FILES)
foreach(file ${ZEMO_ENGINE_SOURCES})
  get_filename_component(name ${file} NAME)
  list(APPEND ZEMO_ENGINE_FILES ${name})
endforeach()
set(ZEMO_ENGINE_LOCALES ${ZEMO_CEF_ROOT}/Resources/locales)
