target_sources(tq_objects PRIVATE
    color/argb_to_packed422.cpp
    color/luminance.cpp
    color/packed422_to_argb.cpp)
tq_add_kernels(
    color/argb_to_packed422_kernels.cpp
    color/luminance_kernels.cpp
    color/packed422_to_argb_kernels.cpp)
