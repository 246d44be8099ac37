// Refused allocations in the morphology and the labelling.

#include "support/allocation_failure.h"

#if TQTEST_REPLACES_NEW

namespace {

TEST(AllocationFailure, LeavesMorphologyWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::MorphCalls());
}
TEST(AllocationFailure, LeavesLabellingWhole) {
    tqtest::ExpectEveryAllocationMayFail(tqtest::LabellingCalls());
}

}  // namespace

#endif
