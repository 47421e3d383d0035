# Every target of the project is compiled with these; a finding fails the build where
# QUINDLE_WARNINGS_AS_ERRORS is set, which the presets for development and CI do.
add_library(quindle-warnings INTERFACE)
target_compile_options(quindle-warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(QUINDLE_WARNINGS_AS_ERRORS)
  target_compile_options(quindle-warnings INTERFACE -Werror)
endif()
