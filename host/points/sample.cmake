target_sources(quindle-points PRIVATE SampleFiles.cpp SampleScene.cpp)

# A product and a sum rounded as one would give other last bits where the processor can do that.
set_source_files_properties(SampleScene.cpp PROPERTIES COMPILE_OPTIONS -ffp-contract=off)
