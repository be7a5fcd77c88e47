if(CORVEL_SANITIZE)
  add_compile_options(-fsanitize=${CORVEL_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  # The classes of nine releases would not fit into memory and time with checks of every cast.
  add_compile_options(-fno-sanitize=vptr)
  add_link_options(-fsanitize=${CORVEL_SANITIZE})
endif()

# The fuzzer is led by the coverage of everything, not of the targets alone.
if(CORVEL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
