# quindle_install_pkgconfig(<template> <header directory>): fills in a .pc file and installs it. All of its
# directories start from where the file itself lies, so that an installation can be moved.
function(quindle_install_pkgconfig template headers)
  set(directory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  cmake_path(ABSOLUTE_PATH directory BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE OUTPUT_VARIABLE from)
  cmake_path(ABSOLUTE_PATH headers BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} NORMALIZE)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${from} OUTPUT_VARIABLE libdir)
  cmake_path(RELATIVE_PATH headers BASE_DIRECTORY ${from} OUTPUT_VARIABLE includedir)
  set(QUINDLE_PC_LIBDIR "\${pcfiledir}/${libdir}")
  set(QUINDLE_PC_INCLUDEDIR "\${pcfiledir}/${includedir}")
  cmake_path(GET template STEM LAST_ONLY name)
  configure_file(${template} ${CMAKE_CURRENT_BINARY_DIR}/${name} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name} DESTINATION ${directory})
endfunction()
