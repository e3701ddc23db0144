# Installs BUILD into WORK, builds the consumer against nothing but that tree, runs it, and takes everything away again.
function(step what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    file(REMOVE_RECURSE "${WORK}")
    message(FATAL_ERROR "${what} ended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK}")
set(sdk "${WORK}/sdk")
step("installing" ${CMAKE_COMMAND} --install ${BUILD} --prefix "${sdk}")
foreach(file bin/ZEMOUIFramework.dll bin/ZEMOGraphicsHook.dll bin/libcef.dll bin/icudtl.dat
             bin/cefsubprocess/d3dcompiler_47.dll
             bin/cefsubprocess/locales/en-US.pak include/zemo/export.h lib/cmake/ZEMOUIFramework/ZEMOUIFrameworkConfig.cmake
             bin/cefsubprocess/cef.subprocess.exe bin/resources/html/start.html demo/zemo_demo.exe demo/run_demo.cmd
             tools/zemo_doctor.exe docs/getting-started.md lib/cmake/ZEMOUIFramework/mingw-toolchain.cmake)
  if(NOT EXISTS "${sdk}/${file}")
    file(REMOVE_RECURSE "${WORK}")
    message(FATAL_ERROR "the installed tree lacks ${file}")
  endif()
endforeach()
# What only this project's own tests need never gets out, and no program lies among the files that a game ships.
file(GLOB_RECURSE strangers "${sdk}/*test*.exe" "${sdk}/*gtest*" "${sdk}/*.pdb" "${sdk}/*cefclient*" "${sdk}/*.log")
file(GLOB programs "${sdk}/bin/*.exe")
list(APPEND strangers ${programs})
if(strangers)
  file(REMOVE_RECURSE "${WORK}")
  message(FATAL_ERROR "the installed tree holds ${strangers}")
endif()

# The examples of the pages are what a newcomer copies: the consumer compiles them all.
file(GLOB pages "${sdk}/README.md" "${sdk}/docs/*.md" "${CONSUMER}/../../../README.md")
file(MAKE_DIRECTORY "${WORK}/pages")
step("taking the examples out of the pages" ${PYTHON} -B ${CONSUMER}/../snippets.py "${WORK}/pages/snippets.cpp" ${pages})

# A tree must work where it is moved to.
file(RENAME "${sdk}" "${WORK}/moved sdk")
if(TOOLCHAIN)
  set(compiler -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
else()
  set(compiler -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER})
endif()
step("configuring the consumer" ${CMAKE_COMMAND} -S "${CONSUMER}" -B "${WORK}/consumer" -G ${GENERATOR} ${compiler}
     -DCMAKE_BUILD_TYPE=Release "-DEXAMPLES=${WORK}/pages/snippets.cpp" "-DZEMOUIFramework_DIR=${WORK}/moved sdk/lib/cmake/ZEMOUIFramework")
step("building the consumer" ${CMAKE_COMMAND} --build "${WORK}/consumer")

# Each sample as its reader builds it, with what the SDK's page says. The first one is run: its page becomes a picture.
if(TOOLCHAIN)
  set(compiler "-DCMAKE_TOOLCHAIN_FILE=${WORK}/moved sdk/lib/cmake/ZEMOUIFramework/mingw-toolchain.cmake")
endif()
file(GLOB samples "${WORK}/moved sdk/samples/*")
foreach(sample ${samples})
  get_filename_component(name "${sample}" NAME)
  step("configuring the sample ${name}" ${CMAKE_COMMAND} -S "${sample}" -B "${WORK}/${name}" -G ${GENERATOR} ${compiler}
       -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PREFIX_PATH=${WORK}/moved sdk")
  step("building the sample ${name}" ${CMAKE_COMMAND} --build "${WORK}/${name}")
endforeach()
step("running frame_to_png" ${CMAKE_COMMAND} -E chdir "${WORK}/frame_to_png" ${EMULATOR} "${WORK}/frame_to_png/frame_to_png.exe")
if(NOT EXISTS "${WORK}/frame_to_png/page.png")
  file(REMOVE_RECURSE "${WORK}")
  message(FATAL_ERROR "frame_to_png wrote no picture")
endif()
step("looking at the folder that games ship" ${EMULATOR} "${WORK}/moved sdk/tools/zemo_doctor.exe" "${WORK}/moved sdk/bin")

# As a shipped game lies on a disk: program and library in one directory, here a name with a space and Korean letters.
set(game "${WORK}/game 게임")
file(RENAME "${WORK}/moved sdk/bin" "${game}")
file(COPY "${WORK}/consumer/consumer.exe" DESTINATION "${game}")
step("running the consumer" ${EMULATOR} "${game}/consumer.exe")
string(STRIP "${output}" output)
file(REMOVE_RECURSE "${WORK}")
message("${output}")
