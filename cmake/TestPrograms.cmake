# How programs of GoogleTest become tests, and what a cross build needs to run at all.

# Tests of these layers look for windows by their titles, whichever program a window belongs to.
set(CORVEL_LAYERS_WITH_WINDOWS platform plugin)

# Adds the tests of a layer's program. A start under an emulator takes longer than most tests, so
# that there all tests of a program are one entry, of the name of the program.
function(corvel_register_tests layer program)
  set(properties TIMEOUT 600)
  if(WIN32 AND layer IN_LIST CORVEL_LAYERS_WITH_WINDOWS)
    list(APPEND properties RESOURCE_LOCK desktop)
  endif()
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${program} COMMAND ${program})
    set_tests_properties(${program} PROPERTIES ${properties})
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
