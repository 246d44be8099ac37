#pragma once

#include <tqipl/thread.h>

#include <climits>

// Band tasks of erosion and dilation. Run throws std::bad_alloc when memory is exhausted.

namespace tq {

// One band of IPL_Erosion or IPL_Dilation, from the image to a scratch image whose row distance is
// the image's width, or in place. A task writes the inner pixels of its band and nothing else: the
// margin is the caller's to clear. Windows reach across the band's edges.
class MarginMorphologyTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;  // rows of the band
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;  // the band's first row in the image
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;  // the band's first row in the scratch image
    int m_bFirst = 0;                 // the image begins with this band
    int m_bLast = 0;                  // the image ends with this band
    int m_nRadiusY = 0;
    int m_nRadiusX = 0;

    // Image rows above and below a band that is not the first or not the last. Where there are
    // fewer than m_nRadiusY the margin reaches into the band.
    int m_nRowsAbove = INT_MAX;
    int m_nRowsBelow = INT_MAX;

    // If not null, dense copies of the rows around the band's upper and lower edge, to be read
    // instead of the image's: the copy of the band's first row, and of the row after its last. Then
    // the destination may be the source.
    const unsigned char* m_pSeamAbove = nullptr;
    const unsigned char* m_pSeamBelow = nullptr;
};

// One band of IPL_FErosion or IPL_FDilation. The source may be the destination if one task has all
// rows, or if the tasks have copies of those at their seams.
class ClippedMorphologyTask : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;  // rows of the whole image
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;  // the whole image's first row
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;  // the band's first row
    int m_nFirstRow = 0;              // the band's first row, counted in the image
    int m_nRows = 0;                  // rows of the band
    int m_nRadiusY = 0;
    int m_nRadiusX = 0;

    // As above.
    const unsigned char* m_pSeamAbove = nullptr;
    const unsigned char* m_pSeamBelow = nullptr;
};

}  // namespace tq

class CMorph_ErosionTask final : public tq::MarginMorphologyTask {
public:
    int Run() override;
};

class CMorph_DilationTask final : public tq::MarginMorphologyTask {
public:
    int Run() override;
};

class CZFErosion_Task final : public tq::ClippedMorphologyTask {
public:
    int Run() override;
};

class CZFDilation_Task final : public tq::ClippedMorphologyTask {
public:
    int Run() override;
};
