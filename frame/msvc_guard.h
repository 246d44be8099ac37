#pragma once

// What stands between a host of Microsoft's compiler and a function of the module that may throw:
// the host cannot catch what the module throws, nor can the two unwind one another's frames.

#include <exception>
#include <new>

#include "frame/msvc_bridge.h"

namespace tq {

template <class Function> using PointerTo = Function*;

template <auto function> struct MsvcGuard;

template <class Result, class... Arguments, Result (*function)(Arguments...)>
struct MsvcGuard<function> {
    static Result Call(Arguments... arguments) {
        BridgeResult result;
        try {
            return function(arguments...);
        } catch (const std::bad_alloc&) {
            result = BridgeResult::kNoMemory;
        } catch (...) {
            result = BridgeResult::kFailed;
        }
        HostThrow(result);
    }
};

}  // namespace tq

// Defines MsvcGuard<name>, which is called as the function of this type is. The name is any that no
// other guard has.
#define TQ_MSVC_GUARD(name, function, ...)                                            \
    extern "C" {                                                                      \
    extern void* const g_msvcGuard##name;                                             \
    void* const g_msvcGuard##name = reinterpret_cast<void*>(                          \
        tq::MsvcGuard<static_cast<tq::PointerTo<__VA_ARGS__>>(function)>::Call);      \
    [[gnu::naked]] void MsvcGuard##name() { asm("jmp *g_msvcGuard" #name "(%rip)"); } \
    }
