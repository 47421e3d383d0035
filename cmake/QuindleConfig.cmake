# The targets Quindle::quindle and Quindle::platform, the latter unless the caller has defined it already.
if(NOT TARGET Quindle::platform)
  include(${CMAKE_CURRENT_LIST_DIR}/QuindlePlatformTargets.cmake OPTIONAL)
endif()
if(TARGET Quindle::platform)
  include(${CMAKE_CURRENT_LIST_DIR}/QuindleTargets.cmake)
else()
  set(Quindle_FOUND FALSE)
  set(Quindle_NOT_FOUND_MESSAGE "This Quindle was built on a platform that was not installed with it. \
Define the target Quindle::platform, with that platform's headers and libraries, before find_package(Quindle).")
endif()
