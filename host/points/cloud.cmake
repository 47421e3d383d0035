target_sources(quindle-points PRIVATE
  AtomicFile.cpp
  CloudWriter.cpp
  LasBuilder.cpp
  LasLayout.cpp
  MappedFile.cpp
  PointCloud.cpp
  StandardClasses.cpp
  cloudInfo.cpp
  writeWholeFile.cpp)
