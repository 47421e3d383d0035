find_package(benchmark REQUIRED)
find_package(TBB REQUIRED)
add_executable(bench-surface surface.cpp)
target_link_libraries(bench-surface PRIVATE quindle-points TBB::tbb benchmark::benchmark quindle-warnings)
