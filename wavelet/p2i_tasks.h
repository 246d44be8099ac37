#pragma once

#include <tqipl/thread.h>
#include <tqipl/wavelet.h>

// A stripe of columns of a progressive-to-interlaced form.
class CZP2I_Task final : public CTQIPLTaskBase {
public:
    unsigned int m_nWidth = 0;  // of the stripe, in pixels
    unsigned int m_nHeight = 0;
    unsigned int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;  // the stripe's first column
    unsigned int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    EVXR_P2I_MODE m_nMode = EVXR_P2I_TOP_FIELD;
    unsigned int m_nKind = 0;  // 0: C1R, 1: C1R_16u, 2: C4R, 3: C3R_16u, other: nothing
    int Run() override;
};
