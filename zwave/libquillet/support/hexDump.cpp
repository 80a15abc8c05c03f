// SPDX-License-Identifier: Apache-2.0
#include "zwave/libquillet/support/hexDump.h"

#include "platform/libtransport/printOctet.h"
#include "transport/displayRow.h"

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <locale>
#include <sstream>

namespace zorv {

void hexDump(StringVecVec& rows, std::vector<unsigned char> const& bytes) {
    constexpr std::size_t bytesPerRow = 8;
    auto const* label = "Data:";
    std::size_t offset = 0;
    do {
        std::ostringstream line;
        line.imbue(std::locale::classic()); // no grouping in long offsets
        line << std::setw(2) << std::setfill('0') << offset << ':';
        auto const end = std::min(offset + bytesPerRow, bytes.size());
        for (; offset < end; ++offset) { printOctet(line << ' ', bytes[offset]); }
        displayRow(rows, label, line.str());
        label = "";
    } while (offset < bytes.size());
}

} // namespace zorv
