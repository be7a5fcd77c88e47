# Links all programs of this folder and those below with LLVM's linker, if MinGW's linker would do it
# otherwise: for each symbol that one searches the sections of an object file one by one, and those of
# tests have thousands (14 s for a program, where this one takes half a second). It is for programs
# that only test: what users get is linked by the linker of its compiler.
macro(corvel_link_quickly)
  if(MINGW AND CMAKE_CROSSCOMPILING)
    find_program(CORVEL_LLD ld.lld)
    mark_as_advanced(CORVEL_LLD)
    if(CORVEL_LLD)
      add_link_options(-fno-use-linker-plugin -wrapper ${PROJECT_SOURCE_DIR}/tools/link-with-lld.sh)
    endif()
  endif()
endmacro()
