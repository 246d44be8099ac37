target_sources(tq_objects PRIVATE
    zoom/correct.cpp
    zoom/correct_rows.cpp
    zoom/cubic.cpp
    zoom/cubic_correct.cpp
    zoom/cubic_passes.cpp
    zoom/geometry.cpp
    zoom/linear.cpp
    zoom/linear_correct.cpp
    zoom/nearest.cpp
    zoom/six_cubic.cpp
    zoom/weights.cpp)
tq_add_kernels(
    zoom/correct_kernels.cpp
    zoom/cubic_correct_kernels.cpp
    zoom/cubic_kernels.cpp
    zoom/linear_kernels.cpp)
