target_sources(tests-points PRIVATE
  ExpressionTest.cpp
  SurfaceFileTest.cpp
  SurfaceFilterTest.cpp
  SurfaceTest.cpp
)
