// Refused allocations in the filters and the wavelets.

#include "support/allocation_failure.h"

#if TQTEST_REPLACES_NEW

namespace {

TEST(AllocationFailure, LeavesFiltersWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::FilterCalls());
}
TEST(AllocationFailure, LeavesWaveletsWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::WaveletCalls());
}

}  // namespace

#endif
