#pragma once

// Runs a form and its reference on equal blocks of memory and compares all of it, for forms that
// touch more than one source and one destination. Each block holds one image or plane.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "reference/image_memory_reference.h"
#include "support/guarded_buffer.h"

namespace tqtest {

class BlockStage {
public:
    // `room` bytes a block: as far as an image may reach.
    BlockStage(int blocks, int64_t room, uint32_t seed)
        : m_room(room), m_inside(blocks, std::vector<uint8_t>(room + kSlack)) {
        for (int i = 0; i < blocks; ++i) {
            m_end.push_back(std::make_unique<GuardedBuffer>(room, GuardedBuffer::kEnd));
            m_start.push_back(std::make_unique<GuardedBuffer>(room, GuardedBuffer::kStart));
            std::vector<uint8_t> ground(3 * room), other;
            FillHostile(ground.data(), ground.size(), seed + i);
            // Whatever is written differs from one of the two grounds.
            for (uint8_t byte : ground) other.push_back(static_cast<uint8_t>(~byte));
            m_grounds[0].push_back(ground);
            m_grounds[1].push_back(other);
        }
    }

    // reference(tqref::Bytes* images) does to the blocks what a form is to do.
    template <class Reference> void Model(Reference reference) {
        for (int ground : {0, 1}) {
            m_models[ground] = m_grounds[ground];
            std::vector<tqref::Bytes> images;
            for (std::vector<uint8_t>& block : m_models[ground])
                images.emplace_back(block.data() + Origin());
            reference(images.data());
            m_reach = images;
            for (const tqref::Bytes& image : images)
                if (image.End() - image.Begin() > m_room)
                    ADD_FAILURE() << "the image does not fit the stage";
        }
    }

    // form(uint8_t* const* images) gets the images' first bytes. What the reference did not touch
    // stands behind pages that fault, on one side and on the other.
    template <class Form> testing::AssertionResult Check(Form form) {
        testing::AssertionResult result = CheckAtGuards(form);
        if (result) result = RunInside(0, form);
        if (result) result = RunInside(1, form);
        return result;
    }

    // The same without misaligned images amid their memory.
    template <class Form> testing::AssertionResult CheckAtGuards(Form form) {
        testing::AssertionResult result = Run("at the end of its memory", 0, m_end, form);
        if (result) result = Run("at the start of its memory", 1, m_start, form);
        return result;
    }

private:
    static constexpr int64_t kSlack = 64;
    using Guards = std::vector<std::unique_ptr<GuardedBuffer>>;

    // m_room bytes, and where in them the image's first byte stands.
    struct Block {
        uint8_t* data;
        int64_t first;
    };

    int64_t Origin() const { return 3 * m_room / 2; }

    template <class Form>
    testing::AssertionResult Run(const char* place, int ground, const Guards& guards, Form form) {
        std::vector<Block> blocks;
        for (size_t i = 0; i < guards.size(); ++i)
            blocks.push_back({guards[i]->data(),
                              &guards == &m_end ? m_room - m_reach[i].End() : -m_reach[i].Begin()});
        return RunOn(place, ground, blocks, form);
    }

    template <class Form> testing::AssertionResult RunInside(int ground, Form form) {
        std::vector<Block> blocks;
        for (size_t i = 0; i < m_inside.size(); ++i) {
            m_misalignment = (m_misalignment + 5) % 32;
            blocks.push_back({m_inside[i].data() + m_misalignment,
                              (m_room - m_reach[i].End() - m_reach[i].Begin()) / 2});
        }
        return RunOn("amid its memory", ground, blocks, form);
    }

    template <class Form>
    testing::AssertionResult RunOn(const char* place, int ground, const std::vector<Block>& blocks,
                                   Form form) {
        std::vector<uint8_t*> images;
        for (size_t i = 0; i < blocks.size(); ++i) {
            const uint8_t* from = m_grounds[ground][i].data() + Origin() - blocks[i].first;
            std::memcpy(blocks[i].data, from, m_room);
            images.push_back(blocks[i].data + blocks[i].first);
        }
        form(images.data());
        for (size_t i = 0; i < blocks.size(); ++i) {
            const uint8_t* actual = blocks[i].data;
            const uint8_t* expected = m_models[ground][i].data() + Origin() - blocks[i].first;
            if (std::memcmp(actual, expected, m_room) == 0) continue;
            int64_t at = 0;
            while (actual[at] == expected[at]) ++at;
            return testing::AssertionFailure()
                   << place << ", block " << i << ", byte " << at - blocks[i].first << " is "
                   << int{actual[at]} << " and not " << int{expected[at]};
        }
        return testing::AssertionSuccess();
    }

    int64_t m_room;
    std::vector<std::vector<uint8_t>> m_inside;
    Guards m_end, m_start;
    std::vector<std::vector<uint8_t>> m_grounds[2], m_models[2];
    std::vector<tqref::Bytes> m_reach;
    int64_t m_misalignment = 0;
};

}  // namespace tqtest
