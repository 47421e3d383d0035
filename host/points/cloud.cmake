target_sources(quindle-points PRIVATE
  LasLayout.cpp
  MappedFile.cpp
  PointCloud.cpp)
