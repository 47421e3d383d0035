find_package(nlohmann_json REQUIRED)
target_link_libraries(quindle-points PRIVATE nlohmann_json::nlohmann_json)
target_sources(quindle-points PRIVATE
  BoxFilter.cpp
  ClassFilter.cpp
  DirectionFilter.cpp
  FieldLookup.cpp
  KeySort.cpp
  NeighbourFilter.cpp
  NeighbourGrid.cpp
  PolygonFilter.cpp
  RangeFilter.cpp
  Region.cpp
  Selection.cpp
  SphereFilter.cpp)
