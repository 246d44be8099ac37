target_sources(tq_objects PRIVATE
    morph/binary_morphology.cpp
    morph/boxes.cpp
    morph/fast_morphology.cpp
    morph/labelling.cpp
    morph/labelling_denoise.cpp
    morph/labelling_ex.cpp
    morph/runs.cpp
    morph/seed_growth.cpp
    morph/window_pass.cpp)
tq_add_kernels(
    morph/morphology_kernels.cpp
    morph/runs_kernels.cpp)
