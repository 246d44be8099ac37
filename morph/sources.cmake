target_sources(tq_objects PRIVATE
    morph/binary_morphology.cpp
    morph/fast_morphology.cpp
    morph/window_pass.cpp)
tq_add_kernels(
    morph/morphology_kernels.cpp)
