# What `cmake --install` puts in place for the library; the platform's folder and the command's bring their own.
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Quindle)
install(TARGETS quindle EXPORT QuindleTargets FILE_SET HEADERS)
install(EXPORT QuindleTargets NAMESPACE Quindle:: DESTINATION ${package})
# Before 1.0 a new minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuindleConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/QuindleConfig.cmake ${PROJECT_BINARY_DIR}/QuindleConfigVersion.cmake
        DESTINATION ${package})

if(NOT BUILD_SHARED_LIBS)
  set(QUINDLE_PC_FLAGS -DQUINDLE_STATIC)
endif()
quindle_install_pkgconfig(${CMAKE_CURRENT_LIST_DIR}/quindle.pc.in ${CMAKE_INSTALL_INCLUDEDIR})

file(GLOB examples CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.quindle)
install(FILES ${examples} DESTINATION ${CMAKE_INSTALL_DATADIR}/quindle/quindles)

# The pages and the hosts to copy from, in the folders of the source tree, so that their links hold.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md"
        PATTERN "*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/embedding DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
