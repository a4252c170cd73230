// Points of a fit from clouds and other carriers.
#include "cli/fit_cloud.h"

#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

#include "cli/transform_cloud.h"
#include "core/file_source.h"
#include "core/platform.h"
#include "core/text.h"
#include "core/units.h"
#include "import/cloud_columns.h"

namespace corvinade::cli {

namespace {

constexpr std::int64_t kMostPoints = std::numeric_limits<std::int32_t>::max() - 1;

// Hands all points of a file on, with its unit not taken into account yet.
CloudFacts ReadAll(const std::string& path, CloudWish wish,
                   const std::function<void(const CloudPoint&, std::int64_t number)>& take) {
    FileSource file(path);
    CloudInput in(path, [&file](char* to, std::size_t most) { return file.Read(to, most); });
    CloudOutput out({});
    CloudTask task = {in, out, nullptr, {}, std::move(wish), {}, 1};
    task.Take = [&](const CloudPoint& point) {
        const std::int64_t number = task.Facts.Points + task.Facts.NotFinite;
        if (number > kMostPoints) in.Fail("it has more points than a job has room for");
        take(point, number);
    };
    RunCloud(task);
    return task.Facts;
}

// From the unit of the file, or that in use, to mm.
void ToMm(CloudSet& set) {
    const double perMm = set.Facts.Unit.empty() ? Units.LengthFactor : UnitsPerMm(set.Facts.Unit);
    for (int i = 1; i <= set.Points.Count() && perMm != 1; ++i) {
        const Vec3 p = set.Points.Point(i);
        set.Points.SetPoint(i, p(1) / perMm, p(2) / perMm, p(3) / perMm);
    }
    for (std::vector<double>& axis : set.Sigmas.Of)
        for (double& sigma : axis) sigma /= perMm;
}

// Points are paired by their names, so two of one name leave it open which is meant.
class NamesOnce {
public:
    explicit NamesOnce(std::string path, bool wanted) : path_(std::move(path)), wanted_(wanted) {}
    void Take(const std::string& name, std::int64_t number) {
        if (!wanted_) return;
        const auto [place, isNew] = numbers_.emplace(name, number);
        if (!isNew)
            throw PlatformError{"Cannot read \"" + path_ + "\": its points " + std::to_string(place->second) +
                                " and " + std::to_string(number) + " have the same name \"" +
                                Printable(name) +
                                "\"; --match coordinate or --match distance pairs them without names"};
    }

private:
    std::string path_;
    bool wanted_;
    std::unordered_map<std::string, std::int64_t> numbers_;
};

}  // namespace

std::string ReadCloudSet(const FitOptions& options, bool isTarget, CloudSet& set) {
    const std::string& path = isTarget ? options.Target : options.Start;
    if (isTarget && options.TargetKind != "points") return "";
    const CloudKind kind = KindOfFile(path);
    if (kind == CloudKind::Text) return "";
    CloudWish wish;
    wish.Decimal = options.Decimal;
    if (!options.Delimiter.empty()) wish.Delimiter = options.Delimiter.front();
    const bool takesOther = isTarget && kind == CloudKind::MapPoints;
    wish.Pairs = takesOther;
    try {
        NamesOnce names(path, options.Match == "id");
        set.Facts = ReadAll(path, wish, [&](const CloudPoint& point, std::int64_t number) {
            const std::string name = point.Name.empty() ? std::to_string(number) : point.Name;
            if (!point.Name.empty()) names.Take(name, number);
            const auto& at = takesOther ? point.Other : point.At;
            set.Points.Add(name, at[0], at[1], at[2]);
        });
    } catch (const PlatformError& error) {
        return error.What;
    }
    ToMm(set);
    set.Read = true;
    return "";
}

std::string ReadCloudPairs(const FitOptions& options, CloudSet& start, CloudSet& target) {
    CloudWish wish;
    wish.Pairs = true;
    wish.Decimal = options.Decimal;
    if (!options.Delimiter.empty()) wish.Delimiter = options.Delimiter.front();
    std::string why;
    if (!options.PairColumns.empty())
        wish.Columns = ColumnsFromText(options.PairColumns, why).value_or(std::vector<PointColumn>{});
    try {
        NamesOnce names(options.Pairs, true);
        start.Facts = ReadAll(options.Pairs, wish, [&](const CloudPoint& point, std::int64_t number) {
            const std::string name = point.Name.empty() ? std::to_string(number) : point.Name;
            if (!point.Name.empty()) names.Take(name, number);
            start.Points.Add(name, point.At[0], point.At[1], point.At[2]);
            target.Points.Add(name, point.Other[0], point.Other[1], point.Other[2]);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                if (point.Sigma) start.Sigmas.Of[axis].push_back((*point.Sigma)[axis]);
                if (point.OtherSigma) target.Sigmas.Of[axis].push_back((*point.OtherSigma)[axis]);
            }
        });
    } catch (const PlatformError& error) {
        return error.What;
    }
    target.Facts.Unit = start.Facts.Unit;
    ToMm(start);
    ToMm(target);
    start.Read = target.Read = true;
    return "";
}

}  // namespace corvinade::cli
