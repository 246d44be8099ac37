#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

// Files, read whole or written whole. Every function throws HostError with the file's name and
// the system's reason.

namespace tqipl {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using InputFile = std::unique_ptr<std::FILE, CloseFile>;

// Opens a regular file, or a pipe, for reading.
InputFile OpenForReading(const std::filesystem::path& path);

// Reads a file that must have exactly `bytes` bytes; `what` says in the error line what needs them.
std::vector<uint8_t> ReadExactly(const std::filesystem::path& path, size_t bytes,
                                 const std::string& what);

// Writes the whole file or nothing: the bytes go to a temporary file in the same folder, which
// takes the target's name at the end and is removed on failure.
void WriteWhole(const std::filesystem::path& path, std::span<const uint8_t> bytes);

void MakeFolder(const std::filesystem::path& path);

}  // namespace tqipl
