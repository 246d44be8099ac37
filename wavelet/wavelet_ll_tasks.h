#pragma once

#include <tqipl/thread.h>

// Either pass of the low-band forms. Row results are dense rows of m_nWidth >> 1 values, which are
// 16-bit (signed) where samples are bytes and 32-bit where they are 16-bit.
//
// A row pass takes m_nHeight rows of m_nWidth samples from m_pSrc to m_pRows. A column pass takes
// m_nWidth columns of m_nHeight values from m_pCols, whose rows are m_nSrcStride values apart, to
// m_pDst. Neither takes memory.
class CZDWT53_LL final : public CTQIPLTaskBase {
public:
    unsigned int m_nWidth = 0;
    unsigned int m_nHeight = 0;
    unsigned int m_nSrcStride = 0;  // in bytes for a row pass, in values for a column pass
    const unsigned char* m_pSrc = nullptr;
    unsigned int m_nDstStride = 0;
    void* m_pRows = nullptr;
    const void* m_pCols = nullptr;
    unsigned char* m_pDst = nullptr;
    unsigned char m_nLow8 = 0;
    unsigned char m_nHigh8 = 255;
    unsigned short m_nLow16 = 0;
    unsigned short m_nHigh16 = 0;
    int m_nMode =
        0;  // 1: rows, 2: columns of bytes; 3: rows, 4: columns of 16 bits; other: nothing
    int Run() override;
};
