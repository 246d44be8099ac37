target_sources(tq_objects PRIVATE
    color/luminance.cpp)
tq_add_kernels(
    color/luminance_kernels.cpp)
