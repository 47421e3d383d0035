find_package(benchmark REQUIRED)
add_executable(bench-points points.cpp)
target_link_libraries(bench-points PRIVATE quindle-points benchmark::benchmark quindle-warnings)
