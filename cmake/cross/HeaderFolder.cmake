# Headers of this machine that serve every system, for a cross build: /usr/include as a whole would
# bring the C library of the wrong system along, so they are reached through a folder that holds a
# link to theirs alone.
function(corvel_link_headers target header)
  find_path(${target}_ROOT ${header} PATHS /usr/include REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  get_filename_component(folder ${header} DIRECTORY)
  set(links ${CMAKE_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${links})
  file(CREATE_LINK ${${target}_ROOT}/${folder} ${links}/${folder} SYMBOLIC)
  add_library(${target}::${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target}::${target} INTERFACE ${links})
endfunction()
