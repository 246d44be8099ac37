target_sources(tq_objects PRIVATE
    zoom/cubic.cpp
    zoom/cubic_passes.cpp
    zoom/geometry.cpp
    zoom/linear.cpp
    zoom/nearest.cpp
    zoom/six_cubic.cpp
    zoom/weights.cpp)
tq_add_kernels(
    zoom/cubic_kernels.cpp
    zoom/linear_kernels.cpp)
