# Test programs and their runs. A program runs whole, in one process: a process for each of its tests would cost more than
# the tests themselves. Its own last lines tell how many passed.
include(GoogleTest)

# Usage: tests_of(LABEL TARGET...) has the target tests_of_LABEL build these as well.
function(tests_of label)
  if(NOT TARGET tests_of_${label})
    add_custom_target(tests_of_${label})
  endif()
  if(ARGN)
    add_dependencies(tests_of_${label} ${ARGN})
  endif()
endfunction()

# What is handed on is something in any case.
macro(default_run)
  foreach(what SHARDS COST)
    if(NOT arg_${what})
      set(arg_${what} 1)
    endif()
  endforeach()
endmacro()

# Usage: run_test_program(TARGET [SHARDS N] [COST SECONDS] [LABELS LABEL...] [EACH_ALONE] [WORKING_DIRECTORY DIR]) has the
# tests of a program run, the long ones in several parts that may go side by side; those that cost more start earlier.
# EACH_ALONE is for tests of what is remembered as long as a process lives. The name of the room is a label of them all.
function(run_test_program target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "EACH_ALONE" "SHARDS;COST;WORKING_DIRECTORY" "LABELS")
  foreach(default SHARDS:1 COST:1 "WORKING_DIRECTORY:${CMAKE_CURRENT_BINARY_DIR}")
    string(REGEX MATCH "^([A-Z_]+):(.*)$" unused "${default}")
    if(NOT arg_${CMAKE_MATCH_1})
      set(arg_${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
    endif()
  endforeach()
  get_filename_component(room ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set(labels ${room} ${arg_LABELS})
  foreach(label IN LISTS labels)
    tests_of(${label} ${target})
  endforeach()
  if(arg_EACH_ALONE)
    # They are listed when they run, so that a build needs no Windows runtime: those that GTEST_FILTER picks, and with another
    # GTEST_FILTER anew, or one run would leave tests out of all that follow.
    set(list "${CMAKE_CURRENT_BINARY_DIR}/${target}[1]_tests.cmake")
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/listed_tests.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/${target}_listed.cmake @ONLY)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}_listed.cmake)
    gtest_discover_tests(${target} WORKING_DIRECTORY ${arg_WORKING_DIRECTORY} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
      PROPERTIES LABELS "${labels}")
    return()
  endif()
  math(EXPR last "${arg_SHARDS} - 1")
  foreach(shard RANGE ${last})
    set(name ${target})
    set(environment GTEST_BRIEF=1)
    if(arg_SHARDS GREATER 1)
      math(EXPR number "${shard} + 1")
      set(name ${target}.${number})
      list(APPEND environment GTEST_TOTAL_SHARDS=${arg_SHARDS} GTEST_SHARD_INDEX=${shard})
    endif()
    add_test(NAME ${name} COMMAND ${target} WORKING_DIRECTORY ${arg_WORKING_DIRECTORY})
    # A dialog that hangs is ended by its script long before this.
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${environment}" TIMEOUT 600 COST ${arg_COST} LABELS "${labels}")
  endforeach()
endfunction()

# The runtime's desktop outlives a program by a second and keeps its error output open, and the runner would wait for
# that each time. The tests tell all they have to tell on the other one.
function(without_error_output target)
  set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR
    "sh;-c;exec \"$@\" 2>/dev/null;sh;${CMAKE_CROSSCOMPILING_EMULATOR}")
endfunction()

# Usage: heap_programs(NAME SOURCE... [LIBRARIES LIBRARY...] [DIRECTORY DIR])
# makes two programs of the same tests: NAME with its heap below 4 GiB, where addresses fit into item data and end codes,
# and NAME_high with its heap above, where the library hands out stand-ins. Which of the two is the usual one differs from
# runtime to runtime. What they are compiled from is the target NAME_objects.
function(heap_programs name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARDS;COST;DIRECTORY" "LIBRARIES")
  add_library(${name}_objects OBJECT ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name}_objects PRIVATE ${arg_LIBRARIES})
  foreach(regime below above)
    set(program ${name})
    if(NOT TARGET heap_${regime}_4gib)
      add_library(heap_${regime}_4gib OBJECT ${PROJECT_SOURCE_DIR}/tests/support/heap_${regime}_4gib.cpp)
      target_link_libraries(heap_${regime}_4gib PRIVATE GTest::gmock corvane_house)
    endif()
    # Without high entropy, and not aware of large addresses, a program gets low ones as long as there are any.
    set(options -Wl,-Xlink=-largeaddressaware:no -Wl,--disable-high-entropy-va)
    if(regime STREQUAL above)
      set(program ${name}_high)
      set(options "")
    endif()
    add_executable(${program} $<TARGET_OBJECTS:${name}_objects> $<TARGET_OBJECTS:heap_${regime}_4gib>)
    target_link_libraries(${program} PRIVATE ${arg_LIBRARIES})
    target_link_options(${program} PRIVATE ${options})
    if(arg_DIRECTORY)
      set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${arg_DIRECTORY})
    endif()
    without_error_output(${program})
  endforeach()
endfunction()

# Usage: both_heaps(NAME ... [SHARDS N] [COST SECONDS]) makes the two programs of heap_programs and has their tests run.
# Those of the first have the label low_heap.
function(both_heaps name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARDS;COST;DIRECTORY" "LIBRARIES")
  default_run()
  heap_programs(${ARGV})
  foreach(program ${name} ${name}_high)
    set(label low_heap)
    if(program STREQUAL "${name}_high")
      set(label "")
    endif()
    run_test_program(${program} SHARDS ${arg_SHARDS} COST ${arg_COST} LABELS ${label})
  endforeach()
endfunction()
