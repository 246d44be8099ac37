#pragma once

namespace tq {

// How far the bytes of a window lie from their mean, for widths and heights of 1 or more (0 for
// others): the variance in single precision, bytes added up row by row, and the standard deviation
// of whole numbers, mean and mean square truncated.
float IPL_TFIVariance(int width, int height, int stride, const unsigned char* window);
float IPL_TFIDeviation(int width, int height, int stride, const unsigned char* window);

}  // namespace tq
