#pragma once

// Arrays of row strides and of plane pointers, by which callers describe images in several planes.

#include <tqipl/array.h>

#include <cstdint>

#include "frame/band.h"
#include "frame/rows.h"

namespace tq {

using StrideArray = CTQArray<int, int>;
using PlaneArray = CTQArray<unsigned char*, unsigned char*>;

// Makes `to` a copy with storage of its own. Does not read `from` through GetAt, which grows an
// empty array.
template <class T> void CopyElements(const CTQArray<T, T>& from, CTQArray<T, T>& to) {
    to.SetSize(from.GetSize());
    for (int64_t i = 0; i < from.GetSize(); ++i) to.m_pData[i] = from.m_pData[i];
}

// Moves each plane once, past `rows` rows of the stride with its index.
inline void AdvancePlanes(int rows, StrideArray& strides, PlaneArray& planes) {
    for (int64_t i = 0; i < planes.GetSize(); ++i)
        planes.GetAt(i) = AfterRows(planes.GetAt(i), rows, strides.GetAt(i));
}

// Strides and planes that belong to one call or to one task.
struct OwnPlanes {
    StrideArray strides;
    PlaneArray planes;
    OwnPlanes(const StrideArray& callerStrides, const PlaneArray& callerPlanes) {
        CopyElements(callerStrides, strides);
        CopyElements(callerPlanes, planes);
    }
};

// The fields of a task from one packed image to planes, in this order. The arrays are the task's
// own, so a caller may change its arrays as soon as its form returns.
class PackedToPlanesTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    StrideArray m_strides;
    PlaneArray m_planes;
};

// The fields of a task from planes to one packed image, in this order.
class PlanesToPackedTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    StrideArray m_strides;
    PlaneArray m_planes;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
};

// Whole MultiThread forms of such tasks. The caller's arrays stay as they are, even at one
// processor, where the plain form grows an empty one of its arguments.
template <class Task>
void RunPackedToPlanesBands(BandRule rule,
                            void (*plain)(int, int, int, unsigned char*, StrideArray&, PlaneArray&),
                            int width, int height, int srcStride, unsigned char* src,
                            const StrideArray& strides, const PlaneArray& planes) {
    OwnPlanes own(strides, planes);
    if (RunsPlain(rule)) {
        plain(width, height, srcStride, src, own.strides, own.planes);
        return;
    }
    const BandPlan plan = PlanBands(rule, height);
    TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        task.m_nSrcStride = srcStride;
        task.m_pSrc = src;
        CopyElements(own.strides, task.m_strides);
        CopyElements(own.planes, task.m_planes);
        if (i + 1 < plan.count) {
            src = AfterRows(src, task.m_nHeight, srcStride);
            AdvancePlanes(task.m_nHeight, own.strides, own.planes);
        }
    }
    tasks.Run();
}

template <class Task>
void RunPlanesToPackedBands(BandRule rule,
                            void (*plain)(int, int, StrideArray&, PlaneArray&, int, unsigned char*),
                            int width, int height, const StrideArray& strides,
                            const PlaneArray& planes, int dstStride, unsigned char* dst) {
    OwnPlanes own(strides, planes);
    if (RunsPlain(rule)) {
        plain(width, height, own.strides, own.planes, dstStride, dst);
        return;
    }
    const BandPlan plan = PlanBands(rule, height);
    TaskSet<Task> tasks;
    for (int i = 0; i < plan.count; ++i) {
        Task& task = tasks.Add();
        task.m_nWidth = width;
        task.m_nHeight = plan.Length(i);
        CopyElements(own.strides, task.m_strides);
        CopyElements(own.planes, task.m_planes);
        task.m_nDstStride = dstStride;
        task.m_pDst = dst;
        if (i + 1 < plan.count) {
            AdvancePlanes(task.m_nHeight, own.strides, own.planes);
            dst = AfterRows(dst, task.m_nHeight, dstStride);
        }
    }
    tasks.Run();
}

// Whether two blocks of memory share a byte.
inline bool Overlap(const uint8_t* a, ptrdiff_t aBytes, const uint8_t* b, ptrdiff_t bBytes) {
    const auto aFirst = reinterpret_cast<uintptr_t>(a), bFirst = reinterpret_cast<uintptr_t>(b);
    return aFirst < bFirst + static_cast<uintptr_t>(bBytes) &&
           bFirst < aFirst + static_cast<uintptr_t>(aBytes);
}

}  // namespace tq
