// The table of calls: no form is left out, and forms that give the same bytes are paired right.

#include "support/calls/form_calls.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "exported_names.h"
#include "support/settings.h"

namespace {

using tqtest::CallFrame;
using tqtest::FormCall;
using Names = std::set<std::string>;

std::string Demangled(const char* name) {
    char* text = abi::__cxa_demangle(name, nullptr, nullptr, nullptr);
    const std::string result = text != nullptr ? text : name;
    std::free(text);
    return result;
}

// Those that work on no image, and the memory and pixel ratio routines, which have tests of their
// own.
bool IsNoImageForm(const std::string& name) {
    for (const char* start : {"IPL_DeletMemoryManager(", "IPL_Free(", "IPL_GetMemoryManager(",
                              "IPL_HSV2RGB_32f_8u(", "IPL_Malloc(", "IPL_PixelRatio(",
                              "IPL_PixelRatioEx(", "IPL_RGB2HSV_32f_32f(", "IPL_RGB2HSV_8u_32f("})
        if (name.rfind(start, 0) == 0) return true;
    return false;
}

TEST(FormCalls, HaveEveryExportedImageForm) {
    Names exported, listed;
    for (const char* mangled : kExportedNames) {
        const std::string name = Demangled(mangled);
        if (name.rfind("IPL_", 0) == 0 && !IsNoImageForm(name)) exported.insert(name);
    }
    for (const FormCall& form : tqtest::AllFormCalls())
        EXPECT_TRUE(listed.insert(form.name).second) << form.name << " is listed twice";
    EXPECT_EQ(listed, exported);
    EXPECT_GT(exported.size(), 200u);
}

TEST(FormCalls, ChangeSomething) {
    for (const FormCall& form : tqtest::AllFormCalls()) {
        if (form.name.rfind("IPL_Wavelet_BSpline_C1(", 0) == 0) continue;
        tqtest::Settings settings;
        settings.UseProcessors(3);
        bool changed = false;
        for (uint32_t seed = 1; seed <= 8; ++seed) {
            tqtest::CallShape shape;
            shape.seed = seed;
            CallFrame frame(shape);
            const tqtest::Call call = form.prepare(frame);
            frame.Refill();
            const std::vector<uint8_t> before = frame.Contents();
            frame.Refill();
            call();
            changed = changed || frame.Contents() != before;
        }
        EXPECT_TRUE(changed) << form.name;
    }
}

TEST(FormCalls, GiveTheBytesOfTheFormThatTheyAreLike) {
    const std::vector<FormCall>& forms = tqtest::AllFormCalls();
    for (const FormCall& form : forms)
        for (unsigned processors : {1u, 3u, 8u}) {
            tqtest::Settings settings;
            settings.UseProcessors(processors);
            for (uint32_t seed = 1; seed <= 8; ++seed) {
                tqtest::CallShape shape;
                shape.width += static_cast<int>(seed) % 3;
                shape.seed = seed;
                CallFrame one(shape), other(shape);
                const tqtest::Call call = form.prepare(one);
                const tqtest::Call likeCall = forms[form.like].prepare(other);
                one.Refill();
                call();
                other.Refill();
                likeCall();
                ASSERT_EQ(one.Contents() == other.Contents(), true)
                    << form.name << ", seed " << seed << ", " << processors << " processors";
            }
        }
}

}  // namespace
