// The contact sheet.

#include "demo/sheet.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <span>
#include <string_view>

#include "demo/sheet_style.h"
#include "machine.h"
#include "text.h"

namespace tqipl {

namespace {

std::string Escape(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

void AppendBase64(std::string& text, std::span<const uint8_t> bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    text.reserve(text.size() + (bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(bytes.size() - i, 3);
        uint32_t word = static_cast<uint32_t>(bytes[i]) << 16;
        if (count > 1) word |= static_cast<uint32_t>(bytes[i + 1]) << 8;
        if (count > 2) word |= bytes[i + 2];
        for (size_t digit = 0; digit < 4; ++digit)
            text += digit <= count ? kDigits[word >> (18 - 6 * digit) & 63] : '=';
    }
}

std::string Join(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) text += part;
    return text;
}

std::string ToMarkup(Size size) {
    return Join({std::to_string(size.width), " &times; ", std::to_string(size.height)});
}

std::string Fixed(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string TimeRow(const char* name, const char* bar, double ms, double longestMs) {
    const double share = longestMs > 0 ? ms / longestMs * 100 : 0;
    return Join({"<span>", name, "</span><span class=\"", bar, "\" style=\"width:",
                 Fixed("%.1f", share), "%\"></span><b>", Milliseconds(ms), "</b>\n"});
}

std::string TimeRows(const Timing& timing) {
    if (timing.byHost)
        return Join({"<span>Host</span><span></span><b>", Milliseconds(timing.plainMs), "</b>\n"});
    if (timing.onlyMultiThread)
        return TimeRow("MultiThread", "bar multi", timing.plainMs, timing.plainMs);
    const double multiThreadMs = timing.multiThreadMs.value_or(0);
    const double longestMs = std::max(timing.plainMs, multiThreadMs);
    std::string rows = TimeRow("Plain", "bar", timing.plainMs, longestMs);
    if (timing.multiThreadMs) rows += TimeRow("MultiThread", "bar multi", multiThreadMs, longestMs);
    return rows;
}

std::string Verdict(const Timing& timing) {
    if (timing.byHost) return "<span>No routine of the library</span>";
    if (timing.onlyMultiThread) return "<span>No plain form</span>";
    if (timing.notCompared != nullptr) return Join({"<span>", timing.notCompared, "</span>"});
    if (!timing.multiThreadMs) return "<span>No MultiThread form</span>";
    if (!timing.sameBytes) return "<span class=\"different\">DIFFERENT bytes</span>";
    return "<span class=\"same\">Same bytes</span>";
}

std::string Fact(const char* name, const std::string& value) {
    return Join({"<div><dt>", name, "</dt><dd>", Escape(value), "</dd></div>\n"});
}

}  // namespace

void Sheet::EndSection() {
    if (m_inSection) m_body += "</div>\n";
    m_inSection = false;
}

void Sheet::EndPhotograph() {
    EndSection();
    if (m_photographs > 0) m_body += "</section>\n";
}

void Sheet::BeginPhotograph(const std::string& name, Size size) {
    EndPhotograph();
    ++m_photographs;
    const std::string id = Join({"photograph-", std::to_string(m_photographs)});
    m_links += Join({"<li><a href=\"#", id, "\">", Escape(name), "</a></li>\n"});
    m_body += Join({"<section class=\"photograph\" id=\"", id, "\">\n<h2>", Escape(name),
                    " <small>", ToMarkup(size), "</small></h2>\n"});
}

void Sheet::BeginSection(const std::string& title, const std::string& introduction) {
    EndSection();
    m_inSection = true;
    m_body += Join({"<h3>", Escape(title), "</h3>\n<p class=\"introduction\">",
                    Escape(introduction), "</p>\n<div class=\"grid\">\n"});
}

void Sheet::Add(const Exhibit& exhibit, const Shown& shown, const std::string& fileName,
                const std::vector<uint8_t>& viewPng, Size viewSize) {
    ++m_pictures;
    if (shown.timing.multiThreadMs && shown.timing.notCompared == nullptr) {
        ++m_compared;
        if (!shown.timing.sameBytes) ++m_different;
    }
    const std::string title = Escape(exhibit.title);
    m_body +=
        Join({"<figure>\n<button class=\"view", exhibit.view == View::kDetail ? " detail" : "",
              "\" type=\"button\" aria-label=\"Enlarge: ", title, "\"><img alt=\"", title,
              "\" width=\"", std::to_string(viewSize.width), "\" height=\"",
              std::to_string(viewSize.height), "\" src=\"data:image/png;base64,"});
    AppendBase64(m_body, viewPng);
    m_body +=
        Join({"\"></button>\n<figcaption>\n<h4>", title, "</h4>\n<p>", Escape(exhibit.caption),
              shown.remark.empty() ? "" : " ", Escape(shown.remark), "</p>\n"});
    if (!exhibit.routine.empty()) m_body += Join({"<code>", Escape(exhibit.routine), "</code>\n"});
    m_body +=
        Join({"<div class=\"times\">\n", TimeRows(shown.timing), "</div>\n<div class=\"last\">",
              Verdict(shown.timing), "<span class=\"file\">", Escape(fileName), ", ",
              ToMarkup(shown.picture.size), "</span></div>\n</figcaption>\n</figure>\n"});
}

std::string Sheet::Finish() {
    EndPhotograph();
    const std::string compared = std::to_string(m_compared);
    const std::string verdict =
        m_different == 0
            ? Join({"<p class=\"total same\">Plain and MultiThread forms gave the same bytes in "
                    "all ",
                    compared, " comparisons.</p>\n"})
            : Join({"<p class=\"total different\">Plain and MultiThread forms gave DIFFERENT bytes "
                    "in ",
                    std::to_string(m_different), " of ", compared, " comparisons.</p>\n"});
    return Join(
        {"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
         "<title>TQIPLBaseLibU contact sheet</title>\n<style>",
         kSheetStyle,
         "</style>\n</head>\n<body>\n<header>\n<h1>TQIPLBaseLibU contact sheet</h1>\n"
         "<p class=\"lede\">Photographs through the library's routines: the plain form of each, on "
         "the caller's thread, against the MultiThread form, on the library's pool. Times are "
         "medians of ",
         std::to_string(kMinRuns),
         " to ",
         std::to_string(kMaxRuns),
         " runs and count the library's work only.</p>\n<dl class=\"facts\">\n",
         Fact("Version", Version()),
         Fact("Processors", std::to_string(Processors())),
         Fact("Instruction-set level", LevelInUse()),
         Fact("Photographs", std::to_string(m_photographs)),
         Fact("Pictures", std::to_string(m_pictures)),
         "</dl>\n",
         verdict,
         "</header>\n<nav aria-label=\"Photographs\"><ul>\n",
         m_links,
         "</ul></nav>\n<main>\n",
         m_body,
         "</main>\n<footer>Written by tqipl. The page holds reduced pictures and details; the "
         "files "
         "named under them lie beside it in full size.</footer>\n"
         "<dialog id=\"large\" aria-label=\"Enlarged picture\"></dialog>\n<script>",
         kSheetScript,
         "</script>\n</body>\n</html>\n"});
}

}  // namespace tqipl
