# The system's headers, the standard library's and the test framework's parsed once for a program of tests, which is most of
# a small unit's time. A unit still names what it uses: lint.clang compiles each without this.
set(ZEMO_HEADERS_KEY "" CACHE STRING "What the system's headers are known by; where it is set, a compiler cache may share units across trees")
function(zemo_precompile target)
  if(MINGW)
    # The precompiled file holds its own place, so that no two trees have the same; ccache takes this beside it instead.
    if(ZEMO_HEADERS_KEY)
      file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${target}.dir/cmake_pch.hxx.gch.sum
           CONTENT "${ZEMO_HEADERS_KEY} ${ARGN}\n")
    endif()
    target_precompile_headers(${target} PRIVATE <windows.h> <algorithm> <array> <atomic> <chrono> <cstdint> <cstring>
        <filesystem> <functional> <map> <memory> <mutex> <optional> <string> <string_view> <system_error> <thread>
        <unordered_map> <utility> <vector> ${ARGN})
    # GCC forgets that these are the system's, and finds fault with what it makes of their inline functions.
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overread)
  endif()
endfunction()
