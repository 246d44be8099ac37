#pragma once

// The JBI zoom's own functions at a single value.

namespace tq {

// Half the variance of the 5 x 5 samples whose rows begin at row0 to row4, about the mean that
// `sum`, the sum of the 25, gives.
void IPL_JBISigma(const unsigned char* row0, const unsigned char* row1, const unsigned char* row2,
                  const unsigned char* row3, const unsigned char* row4, float* out, int sum);

// exp(e): by the tables from just above 0 down to -64.0156, by the runtime's exp beyond on both
// sides.
float FastExponential(float e);

}  // namespace tq
