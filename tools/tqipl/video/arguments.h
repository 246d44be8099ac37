#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "picture.h"

namespace tqipl {

// What stands behind an operation's name, parted by colons. Throws UsageError, which says how the
// operation is written.
class Arguments {
public:
    // "name=first:second"; `usage` is the operation as the help writes it.
    Arguments(const std::string& text, const std::string& usage);

    static std::string NameIn(const std::string& text);

    const std::string& Name() const { return m_name; }
    bool IsEmpty() const { return m_fields.empty(); }

    // Each takes the next one.
    std::string Text(const char* what);
    Size ReadSize();
    int Number(const char* what, int low, int high);
    double Real(const char* what, double low, double high);

    // Takes one of these words wherever it stands; the first if none is there.
    std::string Choice(std::initializer_list<const char*> words);

    // Whatever is left was not meant to be there.
    void CheckEmpty() const;

    [[noreturn]] void Fail(const std::string& what) const;

private:
    std::string m_name;
    std::string m_usage;
    std::vector<std::string> m_fields;
};

}  // namespace tqipl
