// Refused allocations in the zooms.

#include "support/allocation_failure.h"

#if TQTEST_REPLACES_NEW

namespace {

// Each method has a range of sizes of its own, and hands other calls on.
TEST(AllocationFailure, LeavesEnlargementsWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::ZoomCalls(), {24, 20, 53, 41, 1});
}
TEST(AllocationFailure, LeavesReductionsWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::ZoomCalls(), {24, 20, 15, 9, 2});
}

}  // namespace

#endif
