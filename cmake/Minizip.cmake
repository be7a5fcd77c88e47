# The zip library, as corvel_minizip. Two libraries have the interface that is used: minizip-ng,
# from version 4, in its layer for programs of the classic minizip, and that one itself, which takes
# its place on systems that don't have the former.
include_guard(GLOBAL)
add_library(corvel_minizip INTERFACE)

find_package(minizip-ng 4 CONFIG QUIET)
if(TARGET MINIZIP::minizip-ng)
  message(STATUS "Zip library: minizip-ng")
  target_link_libraries(corvel_minizip INTERFACE MINIZIP::minizip-ng)
  return()
endif()

message(STATUS "Zip library: the classic minizip")
if(CMAKE_CROSSCOMPILING)
  include(cross/ClassicMinizip)
  target_link_libraries(corvel_minizip INTERFACE corvel_classic_minizip)
  return()
endif()
find_package(ZLIB REQUIRED)
find_path(CORVEL_MINIZIP_INCLUDE unzip.h PATH_SUFFIXES minizip REQUIRED)
find_library(CORVEL_MINIZIP_LIBRARY minizip REQUIRED)
mark_as_advanced(CORVEL_MINIZIP_INCLUDE CORVEL_MINIZIP_LIBRARY)
target_include_directories(corvel_minizip SYSTEM INTERFACE ${CORVEL_MINIZIP_INCLUDE})
target_link_libraries(corvel_minizip INTERFACE ${CORVEL_MINIZIP_LIBRARY} ZLIB::ZLIB)
