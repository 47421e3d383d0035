target_sources(quindle-points PRIVATE)
