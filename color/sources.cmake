target_sources(tq_objects PRIVATE
    color/argb_to_packed422.cpp
    color/luma_and_repack.cpp
    color/luminance.cpp
    color/matrix.cpp
    color/packed422_to_argb.cpp
    color/planar422.cpp
    color/planes.cpp)
tq_add_kernels(
    color/argb_to_packed422_kernels.cpp
    color/luma_and_repack_kernels.cpp
    color/luminance_kernels.cpp
    color/matrix_kernels.cpp
    color/packed422_to_argb_kernels.cpp
    color/planar422_kernels.cpp
    color/planes_kernels.cpp)
