# Compiles the sources of a layer several at a time: headers and templates cost more than what stands in
# the sources. Builds for one change after the other don't, and find a forgotten include. Nor is the
# reader compiled so: with others around it the compiler calls what it puts in place otherwise, and a
# merge takes 3 % more instructions.
option(CORVEL_SOURCES_TOGETHER "Compile the sources of layers several at a time" OFF)

# To the compiler of a unit all its sources are headers.
function(corvel_allow_units target)
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# Which sources can share a unit is looked up whenever CMake runs.
function(corvel_compile_sources_together target)
  if(NOT CORVEL_SOURCES_TOGETHER)
    return()
  endif()
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} -B ${PROJECT_SOURCE_DIR}/tools/source_groups.py ${sources}
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
    OUTPUT_VARIABLE groups OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE ";" "," groups "${groups}")
  string(REPLACE "\n" ";" groups "${groups}")
  set(number 0)
  foreach(group IN LISTS groups)
    string(REPLACE "," ";" group "${group}")
    set_source_files_properties(${group} PROPERTIES UNITY_GROUP ${number})
    math(EXPR number "${number} + 1")
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  corvel_allow_units(${target})
endfunction()
