// What the deviations of a job are held against.
#include "core/job_tolerance.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace corvinade::core {

double ToleranceFromText(std::string_view value) {
    double number = 0;
    const char* const last = value.data() + value.size();
    const auto [stop, wrong] = std::from_chars(value.data(), last, number);
    return wrong == std::errc() && stop == last && std::isfinite(number) && number > 0 ? number : 0;
}

double ToleranceOf(const JobRecord& job) {
    for (const auto& [name, value] : job.OtherMembers)
        if (name == kTolerance) return ToleranceFromText(value);
    return 0;
}

void PutTolerance(double tolerance_mm, JobRecord& job) {
    const auto found = std::find_if(job.OtherMembers.begin(), job.OtherMembers.end(),
                                    [](const auto& member) { return member.first == kTolerance; });
    if (!(tolerance_mm > 0) || !std::isfinite(tolerance_mm)) {
        if (found != job.OtherMembers.end()) job.OtherMembers.erase(found);
        return;
    }
    std::array<char, 40> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), tolerance_mm).ptr;
    const std::string text(buffer.data(), end);
    if (found != job.OtherMembers.end())
        found->second = text;
    else
        job.OtherMembers.emplace_back(kTolerance, text);
}

}  // namespace corvinade::core
