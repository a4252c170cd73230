// Files that an import leaves to rooms above it.
#include "import/readers_above.h"

#include <algorithm>

#include "fit/require.h"

namespace corvinade::import {

void ReadAbove(FileAbove kind, const TargetFile& file) {
    const std::span<const ReaderAbove> rows = AllReadersAbove();
    const auto row = std::ranges::find(rows, kind, &ReaderAbove::Kind);
    Require(row != rows.end());
    row->Read(file);
}

}  // namespace corvinade::import
