target_sources(tq_objects PRIVATE
    wavelet/p2i.cpp
    wavelet/wavelet53.cpp
    wavelet/wavelet_ll.cpp)
tq_add_kernels(
    wavelet/p2i_kernels.cpp
    wavelet/wavelet53_kernels.cpp
    wavelet/wavelet_ll_kernels.cpp)
