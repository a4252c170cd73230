// The a-priori standard deviations of a job's coordinates.
#include "core/measurement_sigmas.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>
#include <utility>

#include "core/numbers.h"
#include "core/units.h"

namespace corvinade::core {

namespace {

const std::string* TextOf(const JobRecord& job, std::string_view member) {
    for (const auto& [name, value] : job.OtherMembers)
        if (name == member) return &value;
    return nullptr;
}

// The sigmas of many points are a text of megabytes, which is read once.
SharedAccuracies KnownAccuracies(const std::string& text) {
    struct Known {
        std::string Text;
        SharedAccuracies Read;
    };
    thread_local std::array<Known, 2> known;  // users of the library read jobs in threads
    for (const Known& each : known)
        if (each.Text == text) return each.Read;
    std::swap(known[0], known[1]);
    known[0] = {text, AccuraciesFromText(text)};
    return known[0].Read;
}

void ReadSide(const JobRecord& job, std::string_view member, std::optional<SideAccuracy>& ofAll,
              SharedAccuracies& ofEach) {
    const std::string* const text = TextOf(job, member);
    if (text == nullptr) return;
    ofAll = SideFromText(*text);
    if (!ofAll) ofEach = KnownAccuracies(*text);
}

void AddNumber(double number, std::string& text) {
    std::array<char, 32> digits{};
    const auto [end, wrong] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), end);
}

void AddTriple(const SideAccuracy& sigmas, std::string& text) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        text += axis == 0 ? '[' : ',';
        AddNumber(sigmas[axis], text);
    }
    text += ']';
}

void PutSide(std::string_view member, const std::optional<SideAccuracy>& ofAll,
             const SharedAccuracies& ofEach, JobRecord& job) {
    std::erase_if(job.OtherMembers, [member](const auto& other) { return other.first == member; });
    if (!ofAll && ofEach == nullptr) return;
    std::string text;
    if (ofEach != nullptr) {
        for (std::size_t i = 0; i < ofEach->Count(); ++i) {
            text += i == 0 ? '[' : ',';
            AddTriple({ofEach->Of[0][i], ofEach->Of[1][i], ofEach->Of[2][i]}, text);
        }
        text += ']';
    } else {
        AddTriple(*ofAll, text);
    }
    job.OtherMembers.emplace_back(member, std::move(text));
}

// Walks over JSON text without looking behind its end.
class Walk {
public:
    explicit Walk(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}
    bool Take(char wanted) {
        Blanks();
        if (at_ == end_ || *at_ != wanted) return false;
        ++at_;
        return true;
    }
    bool TakeSigma(double& sigma) {
        Blanks();
        const auto [stop, wrong] = std::from_chars(at_, end_, sigma);
        at_ = stop;
        return wrong == std::errc() && sigma >= 0 && std::isfinite(sigma);
    }
    bool TakeTriple(SideAccuracy& sigmas) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            if (!Take(axis == 0 ? '[' : ',') || !TakeSigma(sigmas[axis])) return false;
        return Take(']');
    }
    bool AtEnd() {
        Blanks();
        return at_ == end_;
    }

private:
    void Blanks() {
        while (at_ != end_ && (*at_ == ' ' || *at_ == '\t' || *at_ == '\n' || *at_ == '\r')) ++at_;
    }
    const char *at_, *end_;
};

}  // namespace

MeasurementSigmas SigmasOf(const JobRecord& job) {
    MeasurementSigmas sigmas;
    ReadSide(job, kStartSigmas, sigmas.Start, sigmas.StartOfEach);
    ReadSide(job, kTargetSigmas, sigmas.Target, sigmas.TargetOfEach);
    return sigmas;
}

void PutSigmas(const MeasurementSigmas& sigmas, JobRecord& job) {
    PutSide(kStartSigmas, sigmas.Start, sigmas.StartOfEach, job);
    PutSide(kTargetSigmas, sigmas.Target, sigmas.TargetOfEach, job);
}

MeasurementSigmas Swapped(const MeasurementSigmas& sigmas) {
    return {sigmas.Target, sigmas.Start, sigmas.TargetOfEach, sigmas.StartOfEach};
}

void SwapSigmas(JobRecord& job) {
    const MeasurementSigmas sigmas = SigmasOf(job);
    if (sigmas.Any()) PutSigmas(Swapped(sigmas), job);
}

void ReachNewPoints(JobRecord& job) {
    MeasurementSigmas sigmas = SigmasOf(job);
    const auto reach = [](SharedAccuracies& ofEach, int points) {
        if (ofEach == nullptr || static_cast<int>(ofEach->Count()) >= points) return;
        auto longer = std::make_shared<PointAccuracies>(*ofEach);
        for (std::vector<double>& axis : longer->Of) axis.resize(static_cast<std::size_t>(points), 0);
        ofEach = std::move(longer);
    };
    reach(sigmas.StartOfEach, job.Start.Count());
    reach(sigmas.TargetOfEach, job.Target.Count());
    if (sigmas.Any()) PutSigmas(sigmas, job);
}

std::string SigmasInWords(const std::optional<SideAccuracy>& side, const SharedAccuracies& ofEach) {
    const auto shown = [](double sigma) { return PlainText(sigma * Units.LengthFactor); };
    std::string text;
    if (ofEach != nullptr) {
        for (const std::vector<double>& axis : ofEach->Of) {
            const auto [least, most] = std::minmax_element(axis.begin(), axis.end());
            text += (text.empty() ? "" : ", ") + shown(*least);
            if (*least != *most) text += " to " + shown(*most);
        }
        return text + " (of each point)";
    }
    if (!side) return "free of errors";
    for (const double sigma : *side) text += (text.empty() ? "" : ", ") + shown(sigma);
    return text;
}

std::optional<SideAccuracy> SideFromText(std::string_view value) {
    SideAccuracy side{};
    Walk walk(value);
    if (!walk.TakeTriple(side) || !walk.AtEnd()) return std::nullopt;
    return side;
}

SharedAccuracies AccuraciesFromText(std::string_view value) {
    auto read = std::make_shared<PointAccuracies>();
    SideAccuracy point{};
    Walk walk(value);
    if (!walk.Take('[')) return nullptr;
    do {
        if (!walk.TakeTriple(point)) return nullptr;
        for (std::size_t axis = 0; axis < 3; ++axis) read->Of[axis].push_back(point[axis]);
    } while (walk.Take(','));
    if (!walk.Take(']') || !walk.AtEnd()) return nullptr;
    return read;
}

bool AreSigmasOf(std::string_view value, int points) {
    if (SideFromText(value)) return true;
    const SharedAccuracies read = AccuraciesFromText(value);
    return read != nullptr && static_cast<int>(read->Count()) == points;
}

}  // namespace corvinade::core
