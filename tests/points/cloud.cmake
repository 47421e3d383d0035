target_sources(tests-points PRIVATE
  CloudWriterTest.cpp
  PointCloudTest.cpp)
