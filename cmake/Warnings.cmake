# C++ types cross the border between library and game, so both use the run time as a DLL (/MD).
if(MSVC AND CMAKE_MSVC_RUNTIME_LIBRARY AND NOT CMAKE_MSVC_RUNTIME_LIBRARY MATCHES "DLL$")
  message(FATAL_ERROR "CMAKE_MSVC_RUNTIME_LIBRARY is ${CMAKE_MSVC_RUNTIME_LIBRARY}: library and game must share the run time's DLL.")
endif()

# Applied per target, so that third-party code (GoogleTest, stb_image) keeps its own flags.
function(zemo_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /utf-8 /permissive- /EHsc)
    # It calls standard functions unsafe for which no other run time has a substitute (C4996).
    target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
      target_compile_options(${target} PRIVATE -Wno-cast-function-type -Wno-missing-field-initializers)
    endif()
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror -Wno-cast-function-type -Wno-missing-field-initializers)
  endif()
endfunction()
