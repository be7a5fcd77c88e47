# Warnings are errors, in generated code too.
add_library(corvel_warnings INTERFACE)
if(MSVC)
  target_compile_options(corvel_warnings INTERFACE /W4 /WX /permissive- /utf-8 /bigobj)
else()
  target_compile_options(corvel_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wconversion -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wnull-dereference -Wformat=2
    # In sources that are compiled together the names of one hide those of another.
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wshadow>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(corvel_warnings INTERFACE -Wduplicated-cond -Wlogical-op)
    # The optimiser of this compiler sees null pointers in standard containers when sanitizing.
    if(CORVEL_SANITIZE)
      target_compile_options(corvel_warnings INTERFACE -Wno-null-dereference -Wno-maybe-uninitialized)
    endif()
  endif()
endif()
