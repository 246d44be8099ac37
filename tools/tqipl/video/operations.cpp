// Finds operations by their names and puts them behind one another.

#include "video/operations.h"

#include "host_error.h"
#include "video/frame_conversion.h"

namespace tqipl {

namespace {

constexpr std::span<const OperationKind> (*kTables[])() = {
    GeometryOperations, FieldOperations, FilterOperations, MaskOperations, ColourOperations};

// The usage up to where arguments begin.
std::string NameOf(const OperationKind& kind) {
    const std::string usage = kind.usage;
    return usage.substr(0, usage.find_first_of("=["));
}

const OperationKind& FindOperation(const std::string& name) {
    std::string known;
    for (const auto table : kTables)
        for (const OperationKind& kind : table()) {
            if (NameOf(kind) == name) return kind;
            known += (known.empty() ? "" : ", ") + NameOf(kind);
        }
    throw UsageError("unknown operation '" + name + "'; known are: " + known);
}

}  // namespace

std::string OperationList() {
    std::string list = "Operations, each with --op, in the order in which they are given:";
    for (const auto table : kTables)
        for (const OperationKind& kind : table())
            list += "\n  " + std::string(kind.usage) + ": " + kind.what;
    return list;
}

void AddOperation(const std::string& text, Stream& stream, std::vector<OperationPointer>& chain) {
    const std::string name = Arguments::NameIn(text);
    const OperationKind& kind = FindOperation(name);
    Arguments arguments(text, kind.usage);
    if (kind.mask == MaskRule::kNeeds && !stream.hasMask)
        throw UsageError(name + " works on a mask; put --op threshold=LEVEL before it");
    if (kind.mask == MaskRule::kRefuses && stream.hasMask)
        throw UsageError(name +
                         " would part the frames from their mask; put it before threshold, "
                         "or behind key or mask");
    if (!kind.formats.empty())
        if (OperationPointer repacking = RepackFor(name, kind.formats, stream))
            chain.push_back(std::move(repacking));
    OperationPointer operation = kind.make(arguments, stream);
    arguments.CheckEmpty();
    if (operation) chain.push_back(std::move(operation));
}

}  // namespace tqipl
