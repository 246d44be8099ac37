// Erosion and dilation by rows of bits: each source row becomes bits and is spread over the
// window's columns, and the window's rows are united.

#include "morph/window_pass.h"

#include <algorithm>
#include <cstring>

#include "frame/isa.h"
#include "frame/scratch.h"

namespace {

using tq::WindowPass;

constexpr const tq::MorphologyKernels* kKernels[] = TQ_KERNELS_BY_LEVEL(morphologyKernels);

constexpr int64_t kWordBits = 64;

// The rows of bits that a pass works with. Row i of the block is row i of the window of some result
// at first; see Run.
class Pass {
public:
    explicit Pass(const WindowPass& pass)
        : m_pass(pass),
          m_kernels(tq::SelectKernels(kKernels)),
          m_rule(m_kernels.*pass.rule),
          m_windowRows(2 * pass.radiusY + 1),
          m_windowColumns(2 * pass.radiusX + 1),
          m_words((pass.dstColumns + kWordBits * tq::kMaskWords - 1) /
                  (kWordBits * tq::kMaskWords) * tq::kMaskWords),
          m_packedWords(m_words + m_windowColumns / kWordBits + tq::kMaskWords),
          m_memory(8 * ((m_windowRows + 1) * m_words + m_packedWords)),
          m_block(reinterpret_cast<uint64_t*>(m_memory.Data())),
          m_begun(m_block + m_windowRows * m_words),
          m_packed(m_begun + m_words) {
        std::fill_n(m_packed, m_packedWords, 0);
    }

    // The window rows of all results are one sequence, cut in blocks of as many rows as the window
    // has. A window is the end of one block and the beginning of the next. So a full block is
    // united from its end upwards, each row with all behind it; and while the results that begin in
    // it are written, the rows of the next take the places that are done with, and their union so
    // far is kept beside.
    void Run() {
        for (int64_t i = 0; i < m_windowRows; ++i) LoadRow(m_pass.dstRows.begin + i, Row(i));
        const int64_t rows = m_pass.dstRows.end - m_pass.dstRows.begin;
        for (int64_t begin = 0; begin < rows; begin += m_windowRows)
            WriteBlock(begin, std::min(begin + m_windowRows, rows), rows);
    }

private:
    uint64_t* Row(int64_t i) { return m_block + i * m_words; }

    void WriteBlock(int64_t begin, int64_t end, int64_t rows) {
        for (int64_t i = m_windowRows - 1; i > 0; --i) m_kernels.unite(Row(i - 1), Row(i), m_words);
        std::fill_n(m_begun, m_words, 0);
        for (int64_t y = begin; y < end; ++y) {
            uint64_t* row = Row(y - begin);
            m_rule.unpack(row, m_begun, m_pass.dst + y * m_pass.dstStride, m_pass.dstColumns);
            if (y + 1 == rows) return;
            LoadRow(m_pass.dstRows.begin + y + m_windowRows, row);
            m_kernels.unite(m_begun, row, m_words);
        }
    }

    // The bits of the source row that is radiusY above row y, spread over the columns.
    void LoadRow(int64_t y, uint64_t* bits) {
        const int64_t row = y - m_pass.radiusY;
        if (!m_pass.rows.Has(row) || m_pass.leftOut.Has(row)) {
            std::fill_n(bits, m_words, 0);
            return;
        }
        m_rule.pack(Source(row), m_pass.srcColumns, static_cast<int>(m_pass.outside % kWordBits),
                    m_packed + m_pass.outside / kWordBits);
        m_kernels.spread(m_packed, m_words, m_windowColumns, bits);
    }

    const unsigned char* Source(int64_t row) const {
        if (m_pass.above != nullptr && row < m_pass.band.begin)
            return m_pass.above + (row - m_pass.band.begin) * m_pass.srcColumns;
        if (m_pass.below != nullptr && row >= m_pass.band.end)
            return m_pass.below + (row - m_pass.band.end) * m_pass.srcColumns;
        return m_pass.src + row * m_pass.srcStride;
    }

    const WindowPass& m_pass;
    const tq::MorphologyKernels& m_kernels;
    const tq::MaskRule& m_rule;
    const int64_t m_windowRows;
    const ptrdiff_t m_windowColumns;
    const ptrdiff_t m_words;
    const ptrdiff_t m_packedWords;
    tq::Scratch m_memory;
    uint64_t* const m_block;   // m_windowRows rows
    uint64_t* const m_begun;   // of the block that is being loaded
    uint64_t* const m_packed;  // a source row before it is spread; 0 around its pixels
};

}  // namespace

void tq::RunWindowPass(const WindowPass& pass) {
    if (pass.dstColumns < 1 || pass.dstRows.begin >= pass.dstRows.end) return;
    Pass(pass).Run();
}
