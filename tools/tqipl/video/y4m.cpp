// The header line of Y4M streams.

#include "video/y4m.h"

#include <algorithm>
#include <sstream>

#include "host_error.h"

namespace tqipl {

namespace {

constexpr char kMagic[] = "YUV4MPEG2";
constexpr char kAdvice[] = "convert it first, for example with ffmpeg -pix_fmt yuv422p";

std::string Y4mNames() {
    std::string names;
    for (const FrameKind& kind : FrameKinds())
        if (kind.y4m != nullptr) names += (names.empty() ? "C" : ", C") + std::string(kind.y4m);
    return names;
}

FrameFormat ParseColour(const std::string& name, const std::string& value) {
    for (const FrameKind& kind : FrameKinds())
        if (kind.y4m != nullptr && value == kind.y4m) return kind.format;
    if (value.starts_with("420"))
        throw HostError(name + ": the frames are 4:2:0 (C" + value +
                        "), which the library does "
                        "not have; " +
                        kAdvice);
    throw HostError(name + ": the frames are C" + value + ", which is not known; known are " +
                    Y4mNames() + "; " + kAdvice);
}

int ParseSide(const std::string& name, const std::string& field) {
    const std::string digits = field.substr(1);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
        throw HostError(name + ": the Y4M header says '" + field + "', which is no size");
    // More digits than an int has are too large anyway.
    return digits.size() > 9 ? INT32_MAX : std::stoi(digits);
}

Ratio ParseRatioField(const std::string& name, const std::string& field) {
    Ratio ratio;
    if (field.find(':') == std::string::npos || !ParseRatio(field.substr(1), ratio))
        throw HostError(name + ": the Y4M header says '" + field + "', which is no ratio");
    return ratio;
}

char ParseInterlace(const std::string& name, const std::string& field) {
    if (field.size() != 2 || std::string("?ptbm").find(field[1]) == std::string::npos)
        throw HostError(name + ": the Y4M header says '" + field +
                        "', which is no interlacing; known are I?, Ip, It, Ib, Im");
    return field[1];
}

std::string ValueOf(char letter, const Stream& stream) {
    const auto text = [](Ratio ratio) {
        return std::to_string(ratio.over) + ":" + std::to_string(ratio.under);
    };
    switch (letter) {
        case 'W':
            return std::to_string(stream.size.width);
        case 'H':
            return std::to_string(stream.size.height);
        case 'F':
            return text(stream.rate);
        case 'I':
            return {stream.interlace};
        case 'A':
            return text(stream.aspect);
        default:
            return KindOf(stream.format).y4m;
    }
}

std::string FieldOf(char letter, const Stream& stream) {
    std::string field(1, letter);
    field += ValueOf(letter, stream);
    return field;
}

bool IsSame(char letter, const Stream& first, const Stream& second) {
    return ValueOf(letter, first) == ValueOf(letter, second);
}

constexpr char kLetters[] = "WHFIAC";

}  // namespace

Y4mHeader ParseY4mHeader(const std::string& name, const std::string& line) {
    Y4mHeader header;
    header.line = line;
    std::istringstream words(line);
    std::string field;
    std::getline(words, field, ' ');
    if (field != kMagic)
        throw HostError(name + ": no Y4M stream: it does not begin with " + kMagic);
    std::string seen;
    std::string colour;
    while (std::getline(words, field, ' ')) {
        if (field.empty()) continue;
        const char letter = field[0];
        header.fields.push_back(field);
        if (letter == 'X') {
            if (field == "XCOLORRANGE=FULL") header.stream.fullRange = true;
            continue;
        }
        if (std::string(kLetters).find(letter) == std::string::npos)
            throw HostError(name + ": the Y4M header says '" + field + "', which is not known");
        if (seen.find(letter) != std::string::npos)
            throw HostError(name + ": the Y4M header has two fields " + letter);
        seen += letter;
        if (letter == 'W') header.stream.size.width = ParseSide(name, field);
        if (letter == 'H') header.stream.size.height = ParseSide(name, field);
        if (letter == 'F') header.stream.rate = ParseRatioField(name, field);
        if (letter == 'A') header.stream.aspect = ParseRatioField(name, field);
        if (letter == 'I') header.stream.interlace = ParseInterlace(name, field);
        if (letter == 'C') colour = field.substr(1);
    }
    for (const char letter : {'W', 'H'})
        if (seen.find(letter) == std::string::npos)
            throw HostError(name + ": the Y4M header has no field " + letter);
    if (seen.find('C') == std::string::npos)
        throw HostError(name +
                        ": the Y4M header has no field C, so the frames are 4:2:0, which "
                        "the library does not have; " +
                        kAdvice);
    header.stream.format = ParseColour(name, colour);
    try {
        CheckSize(header.stream.size);
        CheckFrameWidth(header.stream.format, header.stream.size);
    } catch (const HostError& error) {
        throw HostError(name + ": " + error.what());
    }
    return header;
}

std::string Y4mHeaderLine(const Stream& stream, const Y4mHeader* input) {
    const std::string letters = kLetters;
    std::string line = kMagic;
    const auto add = [&](const std::string& field) { line.append(1, ' ').append(field); };
    if (input == nullptr) {
        for (const char letter : letters) add(FieldOf(letter, stream));
        return line;
    }
    const auto isTrue = [&](char letter) { return IsSame(letter, stream, input->stream); };
    if (std::ranges::all_of(letters, isTrue)) return input->line;

    std::string written;
    for (const std::string& field : input->fields) {
        const char letter = field[0];
        // XYSCSS is another name for the kind of frames.
        if (letter == 'X' && (isTrue('C') || !field.starts_with("XYSCSS="))) add(field);
        if (letter == 'X') continue;
        written += letter;
        add(isTrue(letter) ? field : FieldOf(letter, stream));
    }
    for (const char letter : letters)
        if (written.find(letter) == std::string::npos && !isTrue(letter))
            add(FieldOf(letter, stream));
    return line;
}

}  // namespace tqipl
