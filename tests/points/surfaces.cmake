target_sources(tests-points PRIVATE
  ExpressionTest.cpp
  SurfaceFileTest.cpp
  SurfaceTest.cpp
)
