#pragma once

#include <stdexcept>
#include <string>

namespace tqipl {

inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

// What ends a command: one line for the user and the exit code.
class HostError : public std::runtime_error {
public:
    explicit HostError(const std::string& line, int exitCode = kExitFailure)
        : std::runtime_error(line), m_exitCode(exitCode) {}
    int ExitCode() const { return m_exitCode; }

private:
    int m_exitCode;
};

// The user asked for something that does not exist or makes no sense.
class UsageError : public HostError {
public:
    explicit UsageError(const std::string& line) : HostError(line, kExitUsage) {}
};

}  // namespace tqipl
