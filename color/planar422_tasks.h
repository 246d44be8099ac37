#pragma once

#include "frame/band.h"

// Band tasks of planar 4:2:2 and ARGB. The three planes have a pointer and a stride each, so that a
// band can start anywhere; Run converts the rows that the fields describe.

class CYUVP_4222ARGBTask final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nYStride = 0;
    unsigned char* m_pY = nullptr;
    int m_nUStride = 0;
    unsigned char* m_pU = nullptr;
    int m_nVStride = 0;
    unsigned char* m_pV = nullptr;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int Run() override;
};

class CZYUVP422_To_ARGBTask final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nYStride = 0;
    unsigned char* m_pY = nullptr;
    int m_nUStride = 0;
    unsigned char* m_pU = nullptr;
    int m_nVStride = 0;
    unsigned char* m_pV = nullptr;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int m_nMode = 0;  // 0: 601, 1: 709, other: nothing
    int Run() override;
};

class CZARGB_To_YUVP422Task final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nYStride = 0;
    unsigned char* m_pY = nullptr;
    int m_nUStride = 0;
    unsigned char* m_pU = nullptr;
    int m_nVStride = 0;
    unsigned char* m_pV = nullptr;
    int m_nMode = 0;  // 0: 601, 1: 709, other: nothing
    int Run() override;
};
