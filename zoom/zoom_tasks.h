#pragma once

#include <tqipl/thread.h>

// Band tasks of the zoom methods.

namespace tq {
struct LinearColumns;
struct SuperColumns;
struct TFIScratch;

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

namespace tq {

// The fields that the tasks of the corrected zooms begin with, in this order. The luminance plane
// serves four channels only.
class CorrectTask : public CTQIPLTaskBase {
public:
    int m_nSrcWidth = 0;
    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nLumStride = 0;
    unsigned char* m_pLum = nullptr;
    int m_nDstWidth = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int m_nRowBegin = 0;
    int m_nRowEnd = 0;
    int m_nChannelMode = 0;  // 0: one channel, 1: four; at others Run does nothing

    // Memory for this task. Null: the task takes it itself.
    unsigned char* m_pScratch = nullptr;
};

}  // namespace tq

class CZLinearCorrectTask final : public tq::CorrectTask {
public:
    int Run() override;
};

class CZCubicCorrectTask final : public tq::CorrectTask {
public:
    int Run() override;
};

// Source rows of the cubic zooms. Weights are records as in weights.h, of six taps at most and
// below 2048 together in magnitude, as all tables have them. m_nDstStride counts bytes, or 32-bit
// values where the sums go to m_pIntermediate.
class CZCubicXTask final : public CTQIPLTaskBase {
public:
    int Run() override;

    int m_nSrcWidth = 0;  // not read
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nDstWidth = 0;
    int m_nDstStride = 0;
    int* m_pIntermediate = nullptr;
    unsigned char* m_pDst = nullptr;
    int m_nRowBegin = 0;
    int m_nRowEnd = 0;
    const int* m_pWeights = nullptr;
    int m_nChannelMode = 0;
    int m_bToIntermediate = 0;
};

// Destination columns of the cubic zooms, with weights as above. m_nSrcStride counts bytes, or
// 32-bit values where the samples come from m_pIntermediate.
class CZCubicYTask final : public CTQIPLTaskBase {
public:
    int Run() override;

    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    int* m_pIntermediate = nullptr;
    unsigned char* m_pSrc = nullptr;
    int m_bFromIntermediate = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int m_nColBegin = 0;
    int m_nColEnd = 0;
    const int* m_pWeights = nullptr;
    int m_nChannelMode = 0;
};

class CZoomSuperTask final : public CTQIPLTaskBase {
public:
    int Run() override;

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
    int m_nChannelMode = 0;

    // The columns to work on, which the tasks of one call share and only read, and memory for this
    // task. Null: all columns, and the task takes memory itself.
    const tq::SuperColumns* m_pColumns = nullptr;
    float* m_pScratch = nullptr;
};

// Windows of the variance map, from the one whose top row is m_pRows down; m_pMap is the map row of
// the same number.
class CZJBISigmaTask final : public CTQIPLTaskBase {
public:
    int Run() override;

    int m_nSrcWidth = 0;
    int m_nRows = 0;
    int m_nStride = 0;
    unsigned char* m_pRows = nullptr;
    int m_nMapStride = 0;
    float* m_pMap = nullptr;
};

class CZJBITask final : public CTQIPLTaskBase {
public:
    int Run() override;

    int m_nSrcWidth = 0;
    int m_nSrcHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nLumStride = 0;
    unsigned char* m_pLum = nullptr;
    int m_nMapStride = 0;
    float* m_pMap = nullptr;
    int m_nDstWidth = 0;
    int m_nDstHeight = 0;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int m_nGuideStride = 0;
    unsigned char* m_pGuide = nullptr;
    int m_nRowBegin = 0;
    int m_nRowEnd = 0;
    int m_nChannelMode = 0;

    // Memory for this task; if null, it takes its own.
    unsigned char* m_pScratch = nullptr;
};

class CZoomTFITask_8u_C1R final : public CTQIPLTaskBase {
public:
    int Run() override;

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

    // Memory for this task. Null: it takes memory itself.
    tq::TFIScratch* m_pScratch = nullptr;
};
