# What the tests of the schema need beside their own sources.

# The classes of the small schema whose generated files people read: built, so that they run too.
file(GLOB tiny_sources CONFIGURE_DEPENDS schema/generator/golden/TINY/*.cpp)
target_sources(corvel_schema_tests PRIVATE ${tiny_sources})
set_source_files_properties(${tiny_sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
target_include_directories(corvel_schema_tests PRIVATE
  ${CMAKE_CURRENT_SOURCE_DIR}/schema/generator/golden)

# A table of the classes of each built release.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

set(class_tables_dir ${CMAKE_CURRENT_BINARY_DIR}/membership)
set(emit_class_table ${CMAKE_CURRENT_SOURCE_DIR}/schema/membership/emit_class_table.py)
set(for_releases "")
foreach(release IN LISTS CORVEL_RELEASES)
  set(facts ${CMAKE_SOURCE_DIR}/src/schema/releases/${release}.schema)
  add_custom_command(
    OUTPUT ${class_tables_dir}/${release}.cpp
    COMMAND ${Python3_EXECUTABLE} -B ${emit_class_table} ${facts} ${release}
            ${class_tables_dir}/${release}.cpp
    DEPENDS ${emit_class_table} ${facts}
    COMMENT "Listing the classes of ${release}"
    VERBATIM)
  target_sources(corvel_schema_tests PRIVATE ${class_tables_dir}/${release}.cpp)
  set_source_files_properties(${class_tables_dir}/${release}.cpp PROPERTIES
    SKIP_UNITY_BUILD_INCLUSION ON)
  string(APPEND for_releases " one(${release})")
endforeach()
file(CONFIGURE OUTPUT ${class_tables_dir}/class_tables/built_releases.h CONTENT
"// The releases of this build.
#define CORVEL_FOR_RELEASES(one)@for_releases@
" @ONLY)
target_include_directories(corvel_schema_tests PRIVATE ${class_tables_dir})
