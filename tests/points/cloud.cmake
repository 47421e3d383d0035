target_sources(tests-points PRIVATE PointCloudTest.cpp)
