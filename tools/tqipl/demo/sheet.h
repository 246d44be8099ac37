#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "demo/exhibit.h"

namespace tqipl {

// The contact sheet: one HTML page that holds everything that it shows.
class Sheet {
public:
    void BeginPhotograph(const std::string& name, Size size);
    void BeginSection(const std::string& title, const std::string& introduction);
    // viewPng is the encoded view of the picture that `shown` holds.
    void Add(const Exhibit& exhibit, const Shown& shown, const std::string& fileName,
             const std::vector<uint8_t>& viewPng, Size viewSize);

    size_t Compared() const { return m_compared; }    // pictures made by both forms
    size_t Different() const { return m_different; }  // of these, with different bytes

    // The whole page. Nothing can be added afterwards.
    std::string Finish();

private:
    void EndSection();
    void EndPhotograph();

    std::string m_body;
    std::string m_links;
    size_t m_photographs = 0;
    size_t m_pictures = 0;
    size_t m_compared = 0;
    size_t m_different = 0;
    bool m_inSection = false;
};

}  // namespace tqipl
