# tq_add_kernels(<sources>) names kernel sources; tq_build_kernels(), called once after all of
# them, compiles each once per instruction-set level, into the object libraries tq_kernels_base,
# tq_kernels_sse41 and tq_kernels_avx2, and sets TQ_KERNEL_OBJECTS.
function(tq_add_kernels)
    foreach(source IN LISTS ARGN)
        set_property(GLOBAL APPEND PROPERTY TQ_KERNEL_SOURCES ${PROJECT_SOURCE_DIR}/${source})
    endforeach()
endfunction()

function(tq_build_kernels)
    get_property(sources GLOBAL PROPERTY TQ_KERNEL_SOURCES)
    set(levels base)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
        list(APPEND levels sse41 avx2)
        set(flags_sse41 -msse4.1)
        set(flags_avx2 -mavx2 -mno-fma)
    endif()
    foreach(level IN LISTS levels)
        set(target tq_kernels_${level})
        add_library(${target} OBJECT ${sources})
        target_compile_definitions(${target} PRIVATE TQ_ISA=isa_${level})
        target_link_libraries(${target} PRIVATE tq_build)
        # -O3 for the vectoriser; no LTO, which may merge code of two levels.
        target_compile_options(${target} PRIVATE ${flags_${level}} $<$<CONFIG:Release>:-O3>)
        set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
        if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            # GCC bug 54412: Windows stacks are 16-byte aligned, GCC spills 32 bytes aligned.
            target_compile_options(${target} PRIVATE -Wa,-muse-unaligned-vector-move)
        endif()
        list(APPEND objects $<TARGET_OBJECTS:${target}>)
    endforeach()
    set(TQ_KERNEL_OBJECTS ${objects} PARENT_SCOPE)
endfunction()
