target_sources(tests-points PRIVATE
  FiltersTest.cpp
  NeighbourFilterTest.cpp
  RegionTest.cpp
  SelectionTest.cpp)
