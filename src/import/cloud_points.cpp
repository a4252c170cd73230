// All points of a cloud, or of another carrier.
#include "import/cloud_points.h"

#include <array>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

#include "core/file_source.h"
#include "core/files.h"
#include "core/held_streams.h"
#include "core/platform.h"
#include "core/text.h"
#include "import/cloud_columns.h"

namespace corvinade::import {

namespace {

constexpr std::int64_t kMostPoints = std::numeric_limits<std::int32_t>::max() - 1;

// Hands all points of a file on, with its unit not taken into account yet. Nothing where `goesOn` says no:
// the file seems to end there, and what that makes of it is no fault of the file.
std::optional<CloudFacts> ReadAll(const std::string& path, CloudWish wish,
                                  const std::function<bool()>& goesOn,
                                  const std::function<void(const CloudPoint&, std::int64_t number)>& take) {
    FileSource file(path);
    bool ended = false;
    CloudInput in(path, [&](char* to, std::size_t most) -> std::size_t {
        ended = ended || (goesOn && !goesOn());
        return ended ? 0 : file.Read(to, most);
    });
    CloudOutput out({});
    CloudTask task = {in, out, nullptr, {}, std::move(wish), {}, 1};
    task.Take = [&](const CloudPoint& point) {
        const std::int64_t number = task.Facts.Points + task.Facts.NotFinite + task.Facts.Disabled;
        if (number > kMostPoints) in.Fail("it has more points than a job has room for");
        take(point, number);
    };
    try {
        RunCloud(task);
    } catch (const PlatformError&) {
        if (!ended) throw;
    }
    if (ended) return std::nullopt;
    return task.Facts;
}

void ToMm(CloudSet& set, double usualUnitsPerMm) {
    const double perMm = set.Facts.Unit.empty() ? usualUnitsPerMm : UnitsPerMm(set.Facts.Unit);
    for (int i = 1; i <= set.Points.Count() && perMm != 1; ++i) {
        const Vec3 p = set.Points.Point(i);
        set.Points.SetPoint(i, p(1) / perMm, p(2) / perMm, p(3) / perMm);
    }
    for (std::vector<double>& axis : set.Sigmas.Of)
        for (double& sigma : axis) sigma /= perMm;
}

// Points are paired by their names, so two of one name leave it open which is meant.
class NamesOfCloud {
public:
    NamesOfCloud(std::string path, bool once) : path_(std::move(path)), once_(once) {}
    // The name of a point, its number where it has none.
    std::string Take(const std::string& name, std::int64_t number) {
        if (name.empty()) return std::to_string(number);
        const auto [place, isNew] = numbers_.emplace(name, number);
        if (!isNew && !once_) {
            if (++again_ == 1)
                first_ = "Its points " + std::to_string(place->second) + " and " + std::to_string(number) +
                         " have the same name \"" + Printable(name) + "\"";
            return name;
        }
        if (!isNew)
            throw PlatformError{"Cannot read \"" + path_ + "\": its points " + std::to_string(place->second) +
                                " and " + std::to_string(number) + " have the same name \"" +
                                Printable(name) +
                                "\"; --match coordinate or --match distance pairs them without names"};
        return name;
    }
    // Where names may stand twice: which do.
    void Tell(CloudFacts& facts) const {
        if (again_ > 0)
            facts.Notes.push_back({NoteCode::DuplicateName, NoteKindOf(NoteCode::DuplicateName).Weight,
                                   first_, path_, 0, again_});
    }

private:
    std::string path_, first_;
    bool once_;
    int again_ = 0;
    std::unordered_map<std::string, std::int64_t> numbers_;
};

}  // namespace

CloudKind KindOfFile(const std::string& path) {
    std::array<char, 4096> head{};
    std::size_t count = 0;
    try {
        if (HeldStream(path) != nullptr || !IsPipe(path))
            count = FileSource(path).Read(head.data(), head.size());
    } catch (const PlatformError&) {
        count = 0;  // whoever reads it says why
    }
    return CloudKindOf({head.data(), count}, path);
}

bool IsCarrier(CloudKind kind) {
    return kind != CloudKind::Text && kind != CloudKind::Xyz;
}

std::optional<CloudSet> ReadCloud(const std::string& path, CloudReading reading, bool isTarget) {
    CloudSet set;
    const bool other = isTarget && KindOfFile(path) == CloudKind::MapPoints;
    reading.Wish.Pairs = other;
    NamesOfCloud names(path, reading.NamesOnce);
    std::optional<CloudFacts> facts = ReadAll(
        path, std::move(reading.Wish), reading.GoesOn, [&](const CloudPoint& point, std::int64_t number) {
            const auto& at = other ? point.Other : point.At;
            set.Points.Add(names.Take(point.Name, number), at[0], at[1], at[2]);
        });
    if (!facts) return std::nullopt;
    set.Facts = std::move(*facts);
    names.Tell(set.Facts);
    ToMm(set, reading.UsualUnitsPerMm);
    return set;
}

CloudPairs ReadCloudPairs(const std::string& path, CloudReading reading) {
    CloudPairs pairs;
    CloudSet &start = pairs.Start, &target = pairs.Target;
    reading.Wish.Pairs = true;
    NamesOfCloud names(path, true);
    start.Facts =
        *ReadAll(path, std::move(reading.Wish), {}, [&](const CloudPoint& point, std::int64_t number) {
            const std::string name = names.Take(point.Name, number);
            start.Points.Add(name, point.At[0], point.At[1], point.At[2]);
            target.Points.Add(name, point.Other[0], point.Other[1], point.Other[2]);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                if (point.Sigma) start.Sigmas.Of[axis].push_back((*point.Sigma)[axis]);
                if (point.OtherSigma) target.Sigmas.Of[axis].push_back((*point.OtherSigma)[axis]);
            }
        });
    target.Facts = start.Facts;
    ToMm(start, reading.UsualUnitsPerMm);
    ToMm(target, reading.UsualUnitsPerMm);
    return pairs;
}

}  // namespace corvinade::import
