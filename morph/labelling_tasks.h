#pragma once

// Tasks of labelling, denoising and growth. Those that label run twice or more over the same bands:
// m_bLabel says what Run does. Run throws std::bad_alloc when memory is exhausted.

#include <tqipl/array.h>
#include <tqipl/thread.h>
#include <tqipl/types.h>

#include <cstdint>
#include <vector>

#include "morph/runs.h"

class CZFCCLabeing_Task final : public CTQIPLTaskBase {
public:
    int m_bLabel = 1;  // nonzero: label the band; 0: finish its regions
    int m_nWidth = 0;
    int m_nFirstRow = 0;
    int m_nEndRow = 0;
    int m_nStride = 0;
    unsigned char* m_pBand = nullptr;     // column 0 of the first row
    CTQArray<TQ_RECT, TQ_RECT&> m_rects;  // what the task found when finishing
    int m_nMinimumSize = 0;
    int m_nTopCount = 0;     // runs in the first row
    int m_nBottomCount = 0;  // runs in the last row
    tq::RunVector m_runs;
    int Run() override;
};

class CZFCCDeNoiseEx_Task final : public CTQIPLTaskBase {
public:
    int m_bLabel = 1;  // nonzero: label the band; 0: fill its small regions
    unsigned int m_nWidth = 0;
    unsigned int m_nFirstRow = 0;
    unsigned int m_nEndRow = 0;
    unsigned int m_nStride = 0;
    unsigned char* m_pBand = nullptr;  // column 0 of the first row
    unsigned int m_nThreshold = 0;
    int m_nTopCount = 0;
    int m_nBottomCount = 0;
    tq::RunVector m_runs;
    int Run() override;
};

namespace tq {
struct Seed {
    int x;
    int y;
};
}  // namespace tq

class CZFCCDeNoiseEx2_Task final : public CTQIPLTaskBase {
public:
    int m_bLabel = 1;  // nonzero: label the band; 0: as m_nMode says
    int m_nMode = 0;   // 0: fill the band's small regions; nonzero: collect seeds of the others
    unsigned int m_nWidth = 0;
    unsigned int m_nRows = 0;
    unsigned int m_nFirstRow = 0;
    unsigned int m_nStride = 0;
    unsigned char* m_pImage = nullptr;  // the whole image
    unsigned int m_nThreshold = 0;
    int m_nTopCount = 0;
    int m_nBottomCount = 0;
    tq::RunVector m_runs;
    std::vector<tq::Seed> m_seeds;
    int Run() override;
};

// Grows a mask from seeds, and empties their stack. Any number of these may work on one mask at a
// time: all its bytes are read and written atomically.
class CZSeedGrowth_Task final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    unsigned int m_nGuideStride = 0;
    unsigned char* m_pGuide = nullptr;
    unsigned int m_nMaskStride = 0;
    unsigned char* m_pMask = nullptr;
    std::vector<tq::Seed>* m_pSeeds = nullptr;
    int Run() override;
};
