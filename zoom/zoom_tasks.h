#pragma once

#include <tqipl/thread.h>

// Band tasks of the zoom methods.

namespace tq {
struct LinearColumns;

// The fields that the tasks of the linear zoom begin with, in this order. Both pointers refer to
// whole images: the source rows of a band follow from the mapping.
class LinearTask : public CTQIPLTaskBase {
public:
    int m_nSrcWidth = 0;
    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nDstWidth = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int m_nRowBegin = 0;
    int m_nRowEnd = 0;

    // The columns to work on, which the tasks of one call share and only read, and memory for this
    // task. Null: all columns, and the task takes memory itself.
    const LinearColumns* m_pColumns = nullptr;
    unsigned char* m_pScratch = nullptr;
};

}  // namespace tq

class CZoomLinearTask_8u_C1R final : public tq::LinearTask {
public:
    int Run() override;
};

class CZoomLinearTask_8u_C4R final : public tq::LinearTask {
public:
    int Run() override;
};
