# How programs of GoogleTest become tests, and what a cross build needs to run at all.

# Tests of these layers look for windows by their titles, whichever program a window belongs to.
set(CORVEL_LAYERS_WITH_WINDOWS platform plugin)

# A start under the sanitizers costs ten times what most tests do.
option(CORVEL_TESTS_IN_SHARDS "Run the tests of a program in a few starts instead of one for each" OFF)
set(CORVEL_SHARDS 6)

# Adds the tests of a layer's program: one entry for each test, or one for each sixth of them. A
# start under an emulator takes longer still, so that there all of a program are one entry.
function(corvel_register_tests layer program)
  set(properties TIMEOUT 600)
  if(WIN32 AND layer IN_LIST CORVEL_LAYERS_WITH_WINDOWS)
    list(APPEND properties RESOURCE_LOCK desktop)
  endif()
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${program} COMMAND ${program})
    set_tests_properties(${program} PROPERTIES ${properties})
  elseif(CORVEL_TESTS_IN_SHARDS)
    math(EXPR last "${CORVEL_SHARDS} - 1")
    foreach(shard RANGE ${last})
      add_test(NAME ${program}.${shard} COMMAND ${program})
      set_tests_properties(${program}.${shard} PROPERTIES ${properties}
        ENVIRONMENT "GTEST_TOTAL_SHARDS=${CORVEL_SHARDS};GTEST_SHARD_INDEX=${shard}")
    endforeach()
  else()
    gtest_discover_tests(${program} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
  endif()
endfunction()

# The source folder as the tests see it: Wine has the root of this machine as drive Z.
set(CORVEL_TEST_ROOT ${CMAKE_SOURCE_DIR})
if(CMAKE_CROSSCOMPILING AND WIN32)
  string(PREPEND CORVEL_TEST_ROOT Z:)
  # For tests in Python the program has the name that it has everywhere.
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/bin/corvel CONTENT
"#!/bin/sh
exec '@CMAKE_CROSSCOMPILING_EMULATOR@' '@CMAKE_BINARY_DIR@/bin/corvel.exe' \"$@\"
" @ONLY)
  file(CHMOD ${CMAKE_BINARY_DIR}/bin/corvel PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endif()
