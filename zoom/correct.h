#pragma once

// The corrected zooms at a single pixel. Each row points at the first of four pixels, of which the
// middle two of the middle two rows bound the cell; fx and fy, in 0 to 1, are the place in it.

namespace tq {

// The corrected place.
void IPL_CorrectWeights(const unsigned char* row0, const unsigned char* row1,
                        const unsigned char* row2, const unsigned char* row3, float fx, float fy,
                        float* outX, float* outY);

// The pixel that the linear correct zoom has there.
void IPL_CorrectPixel(const unsigned char* row0, const unsigned char* row1,
                      const unsigned char* row2, const unsigned char* row3, float fx, float fy,
                      unsigned char* dst);

}  // namespace tq
