target_sources(tq_objects PRIVATE
    zoom/geometry.cpp
    zoom/linear.cpp
    zoom/nearest.cpp)
tq_add_kernels(
    zoom/linear_kernels.cpp)
