# Applied per target, so that third-party code (GoogleTest, stb_image) keeps its own flags.
function(zemo_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX /utf-8 /permissive- /EHsc)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror -Wno-cast-function-type -Wno-missing-field-initializers)
  endif()
endfunction()
