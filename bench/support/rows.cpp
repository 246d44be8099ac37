// Rows of the report: registration, checks, and the memcpy that each is measured against.

#include "bench/support/rows.h"

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "frame/isa.h"
#include "support/settings.h"

namespace tqbench {

namespace {

int g_wrongRows = 0;

const char* LevelSuffix(tq::IsaLevel level) {
#if defined(__x86_64__)
    if (level == tq::IsaLevel::kAvx2) return "/avx2";
    if (level == tq::IsaLevel::kSse41) return "/sse41";
#endif
    (void)level;
    return "/base";
}

// Seconds by the clock that the row's own time comes from.
double Now(bool threaded) {
    timespec now;
    clock_gettime(threaded ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The mean time of a memcpy of that many bytes, as the rows' own times are means.
double MemcpySeconds(int64_t bytes, bool threaded) {
    const Frames& frames = GetFrames();
    for (int calls = 1;; calls *= 2) {
        const double start = Now(threaded);
        for (int i = 0; i < calls; ++i) {
            std::memcpy(frames.dst, frames.picture, static_cast<size_t>(bytes));
            benchmark::ClobberMemory();
        }
        const double elapsed = Now(threaded) - start;
        if (elapsed >= 0.02) return elapsed / calls;
    }
}

void RunRow(const Row& row, std::optional<std::string>& verdict, benchmark::State& state) {
    tqtest::Settings restored;
    if (!verdict) {
        verdict = row.check ? row.check() : std::string();
        if (!verdict->empty()) ++g_wrongRows;
    }
    if (!verdict->empty()) {
        state.SkipWithError(verdict->c_str());
        return;
    }
    // A memcpy of half the bytes reads and writes as many as the row does.
    const double memcpySeconds = row.bytes != 0 ? MemcpySeconds(row.bytes / 2, row.threaded) : 0;
    if (row.prepare) row.prepare();
    row.call();
    const double start = Now(row.threaded);
    for (auto _ : state) {
        row.call();
        benchmark::ClobberMemory();
    }
    const double seconds = (Now(row.threaded) - start) / static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations() * row.items);
    if (row.bytes == 0) return;
    state.SetBytesProcessed(state.iterations() * row.bytes);
    state.counters["vs_memcpy"] = seconds / memcpySeconds;
}

std::string Difference(const char* what, const uint8_t* actual, const uint8_t* expected,
                       int64_t bytes) {
    const int64_t i = std::mismatch(actual, actual + bytes, expected).first - actual;
    if (i == bytes) return "";
    return what + std::string(": byte ") + std::to_string(i) + " is " + std::to_string(actual[i]) +
           ", not " + std::to_string(expected[i]);
}

// The base level against the reference, then `call` at `level` against the base level. What lies
// behind the destination image is compared too.
std::string CheckForm(const Form& form, const Call& call, tq::IsaLevel level) {
    const Frames& frames = GetFrames();
    const int64_t bytes =
        std::min(kFrameRoom, std::max(6 * form.dstSize.Pixels(), form.dstBytes) + 4096);
    const auto size = static_cast<size_t>(bytes);

    std::memcpy(frames.expected, frames.ground, size);
    form.reference(frames.hostile, frames.expected);

    tq::SetIsaLevel(tq::IsaLevel::kBase);
    std::memcpy(frames.dst, frames.ground, size);
    form.plain(frames.hostile, frames.dst);
    std::string wrong = Difference("base level and reference", frames.dst, frames.expected, bytes);
    if (!wrong.empty()) return wrong;

    tq::SetIsaLevel(level);
    std::memcpy(frames.dst, frames.ground, size);
    call(frames.hostile, frames.dst);
    return Difference("this row and base level", frames.dst, frames.expected, bytes);
}

void AddFormRow(const Form& form, bool threaded, tq::IsaLevel level) {
    const std::string& name = threaded ? form.multiThreadName : form.name;
    const Call& call = threaded ? form.multiThread : form.plain;
    Form checked = form;
    if (threaded && form.multiThreadReference) {
        checked.plain = form.multiThread;
        checked.reference = form.multiThreadReference;
    }
    AddRow({.name = name + "/" + form.size + (form.hasKernels ? LevelSuffix(level) : ""),
            .items = form.dstSize.Pixels(),
            .bytes = form.srcBytes + form.dstBytes,
            .threaded = threaded,
            .check = [=] { return CheckForm(checked, call, level); },
            .prepare =
                [=] {
                    tq::SetIsaLevel(level);
                    if (form.fill) form.fill(GetFrames().dst);
                },
            .call = [=] { call(GetFrames().picture, GetFrames().dst); }});
}

}  // namespace

void AddRow(Row row) {
    const auto shared = std::make_shared<const Row>(std::move(row));
    const auto verdict = std::make_shared<std::optional<std::string>>();
    auto* registered = benchmark::RegisterBenchmark(
        shared->name.c_str(), [=](benchmark::State& state) { RunRow(*shared, *verdict, state); });
    registered->Unit(benchmark::kMicrosecond);
    if (shared->threaded) registered->UseRealTime();
}

int WrongRows() { return g_wrongRows; }

void AddForm(const Form& form) {
    const tq::IsaLevel highest = tq::DetectIsaLevel();
    if (form.name.empty()) {
        AddFormRow(form, true, highest);
        return;
    }
    if (form.hasKernels) {
        for (tq::IsaLevel level : tqtest::RunnableIsaLevels()) AddFormRow(form, false, level);
    } else {
        AddFormRow(form, false, highest);
    }
    if (!form.multiThreadName.empty()) AddFormRow(form, true, highest);
    AddPeerRows(form);
}

}  // namespace tqbench
