// Feeds every file of a folder to a fuzzer's body: the inputs that once found something, in builds
// that have no fuzzing engine.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "fuzz_check.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <folder or file>\n", argv[0]);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    std::error_code error;
    if (std::filesystem::is_regular_file(argv[1], error)) {
        files.emplace_back(argv[1]);
    } else {
        std::filesystem::directory_iterator folder(argv[1], error);
        if (error) {
            std::fprintf(stderr, "%s: %s\n", argv[1], error.message().c_str());
            return 1;
        }
        for (const auto& entry : folder)
            if (entry.is_regular_file()) files.push_back(entry.path());
    }
    if (files.empty()) {
        std::fprintf(stderr, "%s: no inputs\n", argv[1]);
        return 1;
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        std::printf("%s\n", file.filename().string().c_str());
        std::fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        if (!stream) {
            std::fprintf(stderr, "cannot be read\n");
            return 1;
        }
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        // A copy that ends where the input ends.
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%d inputs\n", static_cast<int>(files.size()));
    return 0;
}
