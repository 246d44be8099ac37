// Refused allocations in the colour and plane conversions and the image memory routines.

#include "support/allocation_failure.h"

#if TQTEST_REPLACES_NEW

namespace {

using tqtest::ExpectEveryAllocationMayFail;

TEST(AllocationFailure, LeavesColourConversionsWhole) {
    ExpectEveryAllocationMayFail(tqtest::ColorCalls());
}
TEST(AllocationFailure, LeavesDeepConversionsWhole) {
    ExpectEveryAllocationMayFail(tqtest::DeepCalls());
}
TEST(AllocationFailure, LeavesHsvConversionsWhole) {
    ExpectEveryAllocationMayFail(tqtest::HsvCalls());
}
TEST(AllocationFailure, LeavesPlaneConversionsWhole) {
    ExpectEveryAllocationMayFail(tqtest::PlaneCalls());
}
TEST(AllocationFailure, LeavesImageMemoryWhole) {
    ExpectEveryAllocationMayFail(tqtest::ImageMemoryCalls());
}

}  // namespace

#endif
