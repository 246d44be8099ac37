#pragma once

// The records and enumerations that cross the interface.

// A half-open rectangle: columns left up to but not including right, rows top up to but not
// including bottom. A routine that takes one clamps it to its image first; see image_memory.h. The
// rectangles that labelling lists are the exception: all four of their fields are inclusive.
struct TQ_RECT {
    int left;    // the first column
    int top;     // the first row
    int right;   // the first column behind
    int bottom;  // the first row below
};

// Pixel layouts, one bit each. Bytes are named in rising address order. Values that are not listed
// may be passed too: each routine says what it does with "any other" format.
enum TQ_COLOR_FORMAT : int {
    TQ_COLOR_ARGB = 1,            // four bytes a pixel: blue, green, red, alpha
    TQ_COLOR_BGR24 = 4,           // three bytes a pixel: blue, green, red
    TQ_COLOR_AYUV = 32,           // four bytes a pixel: V, U, Y, alpha
    TQ_COLOR_YUYV = 64,           // four bytes for two pixels: Y0, U, Y1, V
    TQ_COLOR_UYVY = 128,          // four bytes for two pixels: U, Y0, V, Y1
    TQ_COLOR_PACKED32 = 256,      // four bytes a pixel of any meaning
    TQ_COLOR_YUVP_422 = 512,      // planar 4:2:2 in one block of width * height * 2 bytes
    TQ_COLOR_BGR10B = 0x4000,     // a 32-bit word: red in bits 31-22, green 21-12, blue 11-2
    TQ_COLOR_V216 = 0x20000,      // 16-bit U, Y0, V, Y1: four bytes a pixel
    TQ_COLOR_V210 = 0x40000,      // rows of ((width + 47) / 48) * 128 bytes
    TQ_COLOR_BGR16B = 0x200000,   // six bytes a pixel: 16-bit blue, green, red
    TQ_COLOR_GRAY8 = 0x20000000,  // one byte a pixel
};

// Accepted where a signature has it, and not interpreted: those routines have a fixed matrix.
enum TQ_COLOR_MATRIX : int {
    TQ_COLOR_MATRIX_601 = 0,   // ITU-R BT.601
    TQ_COLOR_MATRIX_709 = 1,   // ITU-R BT.709
    TQ_COLOR_MATRIX_2020 = 2,  // ITU-R BT.2020
};

// A thread pool's numbers at one moment; see CTQIPLThreadPool::GetThreadStats.
struct TQ_THREAD_STATS {
    unsigned int m_nMaxThreads;   // the limit
    unsigned int m_nThreadCount;  // workers that exist
    unsigned int m_nBusyThreads;  // of these, at work or lent out
    unsigned int m_nIdleThreads;  // of these, waiting for work
};
