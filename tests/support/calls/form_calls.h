#pragma once

// Every exported form that works on images, with a maker of calls of it.

#include <cxxabi.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

#include "support/calls/call_frame.h"

namespace tqtest {

using Call = std::function<void()>;

struct FormCall {
    std::string name;  // as the export's name reads: "IPL_Erosion(int, int, int, ...)"
    // Takes its images from the frame, which must outlive the call.
    std::function<Call(CallFrame&)> prepare;
    // The place in the table of the plain form whose bytes this one gives; its own place if there
    // is none.
    size_t like;

    bool IsThreaded() const {
        return name.find("MultiThread") != std::string::npos ||
               name.find("MutiThread") != std::string::npos;
    }
};

// The arguments of a function as the demangler writes them.
template <class Form> std::string ArgumentsOf(Form) {
    char* text = abi::__cxa_demangle(typeid(Form).name(), nullptr, nullptr, nullptr);
    const std::string type = text;
    std::free(text);
    return type.substr(type.find("(*)") + 3);
}

// Calls with what they are made by. A maker turns a form into FormCall::prepare.
class FormCalls {
public:
    template <class Form, class Maker> void Add(const char* name, Form form, Maker maker) {
        m_calls.push_back({name + ArgumentsOf(form), maker(form), m_calls.size()});
    }
    // Two forms that give the same bytes at any number of processors.
    template <class Form, class Maker>
    void AddPair(const char* name, Form form, const char* threadedName, Form threaded,
                 Maker maker) {
        Add(name, form, maker);
        Add(threadedName, threaded, maker);
        --m_calls.back().like;
    }
    // Tables one after the other.
    void Append(const FormCalls& other) {
        const size_t first = m_calls.size();
        for (FormCall call : other.m_calls) {
            call.like += first;
            m_calls.push_back(call);
        }
    }
    const std::vector<FormCall>& All() const { return m_calls; }

private:
    std::vector<FormCall> m_calls;
};

FormCalls ColorCalls();
FormCalls DeepCalls();
FormCalls HsvCalls();
FormCalls PlaneCalls();
FormCalls ImageMemoryCalls();
FormCalls ZoomCalls();
FormCalls MorphCalls();
FormCalls LabellingCalls();
FormCalls FilterCalls();
FormCalls WaveletCalls();

// All of these.
const std::vector<FormCall>& AllFormCalls();

}  // namespace tqtest
