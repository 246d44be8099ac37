// The arguments of one operation on the command line.

#include "video/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "host_error.h"

namespace tqipl {

namespace {

std::string Short(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// The whole text, in the notation of the C locale.
template <class Number> bool Parse(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

std::string Arguments::NameIn(const std::string& text) { return text.substr(0, text.find('=')); }

Arguments::Arguments(const std::string& text, const std::string& usage)
    : m_name(NameIn(text)), m_usage(usage) {
    if (m_name.size() == text.size()) return;
    std::string rest = text.substr(m_name.size() + 1);
    for (;;) {
        const size_t colon = rest.find(':');
        m_fields.push_back(rest.substr(0, colon));
        if (colon == std::string::npos) return;
        rest.erase(0, colon + 1);
    }
}

void Arguments::Fail(const std::string& what) const {
    throw UsageError(m_name + ": " + what + "; write --op " + m_usage);
}

std::string Arguments::Text(const char* what) {
    if (m_fields.empty()) Fail(std::string(what) + " is missing");
    std::string text = m_fields.front();
    m_fields.erase(m_fields.begin());
    return text;
}

Size Arguments::ReadSize() {
    const std::string text = Text("the size");
    try {
        return ParseSize(text);
    } catch (const HostError& error) {
        throw UsageError(m_name + ": " + error.what());
    }
}

int Arguments::Number(const char* what, int low, int high) {
    const std::string text = Text(what);
    int number = 0;
    if (!Parse(text, number) || number < low || number > high)
        Fail(std::string(what) + " is a whole number from " + std::to_string(low) + " to " +
             std::to_string(high) + ", not '" + text + "'");
    return number;
}

double Arguments::Real(const char* what, double low, double high) {
    const std::string text = Text(what);
    double number = 0;
    if (!Parse(text, number) || !(number >= low && number <= high))
        Fail(std::string(what) + " is a number from " + Short(low) + " to " + Short(high) +
             ", not '" + text + "'");
    return number;
}

std::string Arguments::Choice(std::initializer_list<const char*> words) {
    for (const char* word : words) {
        const auto found = std::ranges::find(m_fields, std::string(word));
        if (found == m_fields.end()) continue;
        m_fields.erase(found);
        return word;
    }
    return *words.begin();
}

void Arguments::CheckEmpty() const {
    if (!m_fields.empty()) Fail("'" + m_fields.front() + "' is not understood");
}

}  // namespace tqipl
