# What every source and every program of a Windows build has in common, GoogleTest's included.
if(NOT WIN32)
  return()
endif()

# Wide characters everywhere, Windows 7 and later.
add_compile_definitions(UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601 NOMINMAX
  WIN32_LEAN_AND_MEAN)

if(MINGW)
  # The formats of the C standard, which the warnings check against.
  add_compile_definitions(__USE_MINGW_ANSI_STDIO=1)
  # The generated classes have more sections than a plain object file can hold.
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-Wa,-mbig-obj>)
  # The same sources give the same bytes.
  add_link_options(-Wl,--no-insert-timestamp)
endif()
