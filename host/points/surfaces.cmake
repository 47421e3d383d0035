target_sources(quindle-points PRIVATE
  Expression.cpp
  ExpressionFilter.cpp
  MeshParsers.cpp
  Surface.cpp
  SurfaceFile.cpp
  SurfaceFilter.cpp
)
