// Long work over the pairs of points: it serves the events that wait, shows how far it has come, and can be
// cancelled.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "analysis/distance_pairs.h"
#include "core/arrays.h"
#include "core/form_progress_bar.h"
#include "core/rooms.h"

namespace corvinade::analysis {

// So many steps, of a few nanoseconds each, are done before anybody waits for them.
inline constexpr std::int64_t kQuickSteps = 50'000'000;

class PairProgress {
public:
    // Work of fewer steps than that neither yields nor shows anything. A stop that was asked of other work
    // stays for that; one that came to this work ends with it.
    PairProgress(const std::string& caption, std::int64_t steps);
    ~PairProgress();
    PairProgress(const PairProgress&) = delete;
    PairProgress& operator=(const PairProgress&) = delete;

    // Yields. False when the user has cancelled the work.
    bool GoesOn(double share);

private:
    bool shown_ = false, own_ = false;
    Flag stopBefore_ = kFalse;
};

}  // namespace corvinade::analysis
