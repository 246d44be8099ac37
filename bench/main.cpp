// The benchmark program: all families in one process, with memcpy rows in every run.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/families.h"
#include "bench/support/rows.h"
#include "frame/isa.h"
#include "frame/module.h"

namespace {

// The filter that was asked for, and the memcpy rows; a filter that excludes is left as it is.
std::string WithMemcpyRows(const std::string& filter) {
    if (filter.empty() || filter == "all" || filter[0] == '-') return filter;
    return "^memcpy/|" + filter;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::AddCustomContext("highest level", tq::IsaLevelName(tq::DetectIsaLevel()));
    benchmark::AddCustomContext("processors", std::to_string(g_IPLProcessorCount));

    tqbench::AddMemcpy();
    tqbench::AddLuminance();
    tqbench::AddPacked422();
    tqbench::AddPlanar422();
    tqbench::AddDeep();
    tqbench::AddHsv();
    tqbench::AddPlanes();
    tqbench::AddImageMemory();
    tqbench::AddMorph();
    tqbench::AddLabelling();
    tqbench::AddFilter();
    tqbench::AddWavelet();
    tqbench::AddZoom();
    tqbench::AddPool();

    benchmark::RunSpecifiedBenchmarks(WithMemcpyRows(benchmark::GetBenchmarkFilter()));
    benchmark::Shutdown();
    return tqbench::WrongRows() == 0 ? 0 : 1;
}
