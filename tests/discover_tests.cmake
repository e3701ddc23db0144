# Read by ctest, not by the configuration (zemo_discover in CMakeLists.txt writes what includes it): asks PROGRAM for its
# tests and adds them to the suite.
#
# Those that TOGETHER takes in run with the others of their gtest suite in one process, since a process costs more than
# most tests do; the rest have one of their own. With ZEMO_TESTS_ALONE in the environment each has, so that a single one
# can be chosen by its name.
#
# A name says what its test needs: in `engine` tests Screen, Foreground, Cursor or Click a display of its own, Missing
# the machine for itself (a file that another copy of the engine has open can't be renamed, since copies share files by
# hard links), Scale150 and Scale200 at its end a session whose desktop has that scale. OnScreenKeyboard needs the machine
# for itself too: a desktop has one such keyboard, and every view that ends closes it. Direct3D12 and D3D12Hook have Wine
# draw Direct3D 11 by Vulkan too: its OpenGL and a Vulkan swap chain can lock each other out of the display's connection.

cmake_minimum_required(VERSION 3.25)

if(NOT EXISTS "${LIST}" OR "${PROGRAM}" IS_NEWER_THAN "${LIST}")
  execute_process(COMMAND ${EMULATOR} ${PROGRAM} --gtest_list_tests TIMEOUT 60 RESULT_VARIABLE result
                  OUTPUT_VARIABLE listing ERROR_VARIABLE problem)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} does not list its tests (${result}): ${problem}")
  endif()
  file(WRITE "${LIST}" "${listing}")
endif()

# A gtest filter (a*:b*-c*) as two regular expressions: what it takes in, what it leaves out.
function(zemo_filter filter taken left)
  string(REGEX MATCH "^([^-]*)-?(.*)$" whole "${filter}-")
  set(parts "${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
  foreach(result IN ITEMS ${taken} ${left})
    list(POP_FRONT parts part)
    string(REGEX REPLACE "-$" "" part "${part}")  # an empty text would be no match
    string(REPLACE "." "[.]" part "${part}")
    string(REPLACE "*" ".*" part "${part}")
    string(REPLACE ":" "|" part "${part}")
    set(${result} "^(${part})$" PARENT_SCOPE)
  endforeach()
endfunction()

function(zemo_add name filter kind count)
  add_test(${name} ${EMULATOR} ${PROGRAM} --gtest_filter=${filter})
  set(environment)
  set(properties LABELS ${LABEL} ${LIMITS} COST ${count} WORKING_DIRECTORY ${FOLDER})
  if(kind STREQUAL "Serial")
    list(APPEND properties RUN_SERIAL TRUE)
  elseif(LABEL STREQUAL "window")
    list(APPEND properties RESOURCE_LOCK display)  # with its foreground, focus and cursor
    list(APPEND environment ZEMO_FRONT_SESSION=1)  # ... which games of engine tests would take
  elseif(kind STREQUAL "OnScreen")
    list(APPEND environment ZEMO_SESSION_DPI=96)  # a display of its own: other games' windows take the foreground
  elseif(kind STREQUAL "Scale150")
    list(APPEND environment ZEMO_SESSION_DPI=144)
  elseif(kind STREQUAL "Scale200")
    list(APPEND environment ZEMO_SESSION_DPI=192)
  endif()
  if(name MATCHES "Direct3D12|D3D12Hook")
    list(APPEND environment WINE_D3D_CONFIG=renderer=vulkan)
  endif()
  set_tests_properties(${name} PROPERTIES ${properties} ENVIRONMENT "${environment}")
endfunction()

function(zemo_add_all)
  zemo_filter("${TOGETHER}" taken left)
  set(groups)
  file(STRINGS "${LIST}" lines)
  foreach(line IN LISTS lines)
    string(REGEX REPLACE " *#.*$" "" line "${line}")
    if(line MATCHES "^([^ ]+)[.]$")
      set(suite ${CMAKE_MATCH_1})
    elseif(line MATCHES "^  ([^ ]+)$")
      set(test ${CMAKE_MATCH_1})
      set(name ${suite}.${test})
      set(kind Plain)
      if(name MATCHES "^OnScreenKeyboard(Request)?[.]")
        set(kind Serial)
      elseif(LABEL STREQUAL "engine")
        if(name MATCHES "(Scale(150|200))$")
          set(kind ${CMAKE_MATCH_1})
        elseif(name MATCHES "Screen|Foreground|Cursor|Click")
          set(kind OnScreen)
        elseif(name MATCHES "Missing")
          set(kind Serial)
        endif()
      endif()
      if("$ENV{ZEMO_TESTS_ALONE}" OR kind STREQUAL "Serial" OR NOT name MATCHES "${taken}" OR name MATCHES "${left}")
        zemo_add(${LABEL}.${name} ${name} ${kind} 1)
      else()
        list(APPEND groups "${suite}|${kind}")
        list(APPEND "members_${suite}|${kind}" ${name})
      endif()
    endif()
  endforeach()
  list(REMOVE_DUPLICATES groups)
  foreach(group IN LISTS groups)
    string(REPLACE "|" ";" parts "${group}")
    list(GET parts 0 suite)
    list(GET parts 1 kind)
    set(name ${LABEL}.${suite})
    if(NOT kind STREQUAL "Plain")
      string(APPEND name .${kind})
    endif()
    list(LENGTH "members_${group}" count)
    string(REPLACE ";" ":" filter "${members_${group}}")
    zemo_add(${name} "${filter}" ${kind} ${count})
  endforeach()
endfunction()
zemo_add_all()
