#pragma once

#include <tqipl/types.h>

#include "frame/band.h"

// Band tasks of HSV in bytes.

class CZBGRA2HSV_Ex final : public tq::PixelBandTask<unsigned char> {
public:
    // Whether other bands of the image hold the rows before and after this one: with dense rows a
    // byte behind a row may be theirs, and the band must not write it.
    bool m_bBandBefore = false;
    bool m_bBandAfter = false;
    int Run() override;
};

class CZHSV2BGRA_Ex final : public CTQIPLTaskBase {
public:
    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nSrcStride = 0;
    unsigned char* m_pSrc = nullptr;
    int m_nAlphaStride = 0;
    unsigned char* m_pAlpha = nullptr;
    int m_nDstStride = 0;
    unsigned char* m_pDst = nullptr;
    int Run() override;
};

class CYUYV2HSV final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 1: IPL_YUYV2HSV_8u_709, other: nothing
    int Run() override;
};

class CHSV2YUYV final : public tq::PixelBandTask<unsigned char> {
public:
    int m_nMode = 0;  // 1: IPL_HSV2YUYV_8u_709, other: nothing
    int Run() override;
};

class CYUV2HSV final : public tq::PixelBandTask<unsigned char> {
public:
    TQ_COLOR_FORMAT m_nFormat = {};  // TQ_COLOR_YUYV, other: UYVY
    TQ_COLOR_MATRIX m_nMatrix = {};
    int Run() override;
};

class CHSV2YUV final : public tq::PixelBandTask<unsigned char> {
public:
    TQ_COLOR_FORMAT m_nFormat = {};  // TQ_COLOR_YUYV, other: UYVY
    TQ_COLOR_MATRIX m_nMatrix = {};
    int Run() override;
};
