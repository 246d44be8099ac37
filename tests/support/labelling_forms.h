#pragma once

// The labelling forms with what they are compared by.

#include <gtest/gtest.h>
#include <tqipl/labelling.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "reference/labelling_reference.h"
#include "support/mask_pictures.h"
#include "support/settings.h"

namespace tqtest {

using RectList = std::vector<TQ_RECT>;

struct LabelForm {
    const char* name;
    void (*function)(int width, int height, int stride, unsigned char* mask,
                     CTQArray<TQ_RECT, TQ_RECT&>* rects, int minimumSize);
    bool inBands;
};
inline constexpr LabelForm kLists = {"IPL_FCCLabeling", IPL_FCCLabeling, false};
inline constexpr LabelForm kUnion = {"IPL_FCCLabeling2", IPL_FCCLabeling2, false};
inline constexpr LabelForm kBands = {"IPL_FCCLabeling_MultiThread", IPL_FCCLabeling_MultiThread,
                                     true};
inline constexpr LabelForm kPlainForms[] = {kLists, kUnion};
inline constexpr LabelForm kLabelForms[] = {kLists, kUnion, kBands};

// What a call lists; the picture becomes what the call leaves.
inline RectList LabelPicture(const LabelForm& form, Picture& picture, int minimum) {
    RectArray rects;
    form.function(picture.width, picture.height, picture.width, picture.pixels.data(), &rects,
                  minimum);
    return Rects(rects);
}

// What a form is to list and to leave.
inline RectList ExpectedLabels(const LabelForm& form, int processors, Picture& picture,
                               int minimum) {
    if (!form.inBands) return tqref::Label(picture.View(), minimum);
    if (processors == 1) return {};
    return tqref::LabelInBands(picture.View(), minimum, processors);
}

inline testing::AssertionResult EqualsLists(const LabelForm& form, int processors,
                                            const Picture& picture, int minimum) {
    Picture expected = picture, actual = picture;
    const RectList rects = ExpectedLabels(form, processors, expected, minimum);
    const RectList listed = LabelPicture(form, actual, minimum);
    if (listed == rects && actual == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << form.name << " at " << processors << " processors, minimum " << minimum << ", of\n"
           << testing::PrintToString(picture) << "lists " << testing::PrintToString(listed)
           << "\nand not " << testing::PrintToString(rects) << "\nand leaves\n"
           << testing::PrintToString(actual) << "and not\n"
           << testing::PrintToString(expected);
}

inline RectList Sorted(RectList rects) {
    std::sort(rects.begin(), rects.end(), [](const TQ_RECT& a, const TQ_RECT& b) {
        return std::tie(a.top, a.left, a.bottom, a.right) <
               std::tie(b.top, b.left, b.bottom, b.right);
    });
    return rects;
}

// A filled array with a growth step of its own, for calls that are to find nothing.
class FilledArray {
public:
    FilledArray() {
        m_rects.m_nGrowBy = 7;
        m_rects.SetSize(3);
    }
    RectArray* Get() { return &m_rects; }
    bool EmptyWithItsStep() const {
        return m_rects.m_pData == nullptr && m_rects.m_nSize == 0 && m_rects.m_nMaxSize == 0 &&
               m_rects.m_nGrowBy == 7;
    }

private:
    RectArray m_rects;
};

}  // namespace tqtest
