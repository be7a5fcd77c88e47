# The classic minizip for the target, as corvel_classic_minizip, made from the sources of this
# machine's own package. Everything is linked statically.
enable_language(C)

# An import library would make the result ask for a DLL that hardly any Windows has.
set(suffixes ${CMAKE_FIND_LIBRARY_SUFFIXES})
set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
find_library(CORVEL_STATIC_ZLIB z REQUIRED)
set(CMAKE_FIND_LIBRARY_SUFFIXES ${suffixes})
find_path(CORVEL_ZLIB_INCLUDE zlib.h REQUIRED)
mark_as_advanced(CORVEL_STATIC_ZLIB CORVEL_ZLIB_INCLUDE)

set(folder ${CMAKE_BINARY_DIR}/minizip)
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/get_minizip.sh ${folder}
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "The sources of minizip could not be had.")
endif()

# Its files are opened by functions of ours, so that ioapi.c is all that it needs of the system.
add_library(corvel_classic_minizip STATIC
  ${folder}/ioapi.c ${folder}/unzip.c ${folder}/zip.c)
target_include_directories(corvel_classic_minizip SYSTEM PUBLIC ${folder} ${CORVEL_ZLIB_INCLUDE})
target_link_libraries(corvel_classic_minizip PUBLIC ${CORVEL_STATIC_ZLIB})
target_compile_options(corvel_classic_minizip PRIVATE -w)
