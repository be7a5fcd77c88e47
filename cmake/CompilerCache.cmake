# The generated classes take minutes to build: use ccache where there is one.
find_program(CORVEL_CCACHE ccache)
if(CORVEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CORVEL_CCACHE})
endif()
