// The trumpet plot in the automation.
#include "cli/automate_trumpet.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "analysis/form_distance_scale.h"
#include "analysis/form_trompete.h"
#include "cli/automate_screens.h"
#include "cli/request.h"
#include "cli/short_float.h"
#include "core/arrays.h"
#include "core/files.h"
#include "paint/trumpet_file.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

// Points in one reply; further ones follow by "first".
constexpr std::int64_t kMostPoints = 100'000;

void RefuseUnlessReachable() {
    if (!Trumpet.Window.Loaded) Refuse("FormTrompete is not open");
    RefuseWhileAnotherIsWaitedFor(FormTrompete_Entry.Name);
}

// The number of the first pair that is wanted, from 1.
std::int64_t FirstPair(const json& request) {
    const auto first = request.find("first");
    if (first == request.end()) return 1;
    if (!first->is_number_integer() || *first < 1) Refuse("\"first\" is the number of a pair, from 1");
    return first->get<std::int64_t>();
}

json PointsFrom(const DistancePoints& points, std::int64_t first) {
    json list = json::array();
    const int n = points.Count();
    std::int64_t number = 0;  // of the pairs before those of point i
    for (int i = 1; i < n && list.size() < kMostPoints; number += n - i, ++i) {
        const std::int64_t skipped = std::max<std::int64_t>(0, first - 1 - number);
        for (std::int64_t j = i + 1 + skipped; j <= n && list.size() < kMostPoints; ++j) {
            const TrumpetPair pair = PairOfPoints(points, i, static_cast<int>(j));
            list.push_back({ShortFloat(pair.ToDistance), ShortFloat(pair.DeltaS)});
        }
    }
    return list;
}

double PlaceMember(const json& request, const char* name) {
    const json& value = Member(request, name);
    if (!value.is_number()) Refuse(std::string("the member \"") + name + "\" must be a number");
    return value.get<double>();
}

}  // namespace

bool IsTrumpetPlace(std::string_view at) {
    return at == "FormTrompete.Trumpet";
}

void AddTrumpet(const json& request, json& state) {
    const std::int64_t first = FirstPair(request);
    const bool open = Trumpet.Window.Loaded;
    const DistancePoints& points = *DistanceScale.Points;
    state["pairs"] = open ? points.Pairs() : 0;
    state["points"] = open ? PointsFrom(points, first) : json::array();
    state["xMin"] = 0.0;
    state["xMax"] = ShortFloat(Trumpet.Range.XMax);
    state["yMin"] = ShortFloat(Trumpet.Range.YMin);
    state["yMax"] = ShortFloat(Trumpet.Range.YMax);
    state["width"] = Trumpet.Place.Width;
    state["height"] = Trumpet.Place.Height;
    const TrumpetPlot plot = PlotOf(Trumpet.Range, Trumpet.Place);
    state["frame"] = {{"left", plot.X(plot.Axes.XLow)},
                      {"top", plot.Y(plot.Axes.YHigh)},
                      {"right", plot.X(plot.Axes.XHigh)},
                      {"bottom", plot.Y(plot.Axes.YLow)}};
    state["axes"] = {{"xLow", plot.Axes.XLow},
                     {"xHigh", plot.Axes.XHigh},
                     {"yLow", plot.Axes.YLow},
                     {"yHigh", plot.Axes.YHigh}};
    const auto ticks = [](const std::vector<TrumpetTick>& all) {
        json list = json::array();
        for (const TrumpetTick& tick : all) list.push_back({{"at", tick.Place}, {"text", tick.Text}});
        return list;
    };
    state["xTicks"] = ticks(plot.XTicks);
    state["yTicks"] = ticks(plot.YTicks);
    state["pair"] = json::array({Trumpet.Under.From, Trumpet.Under.To});
}

json TrumpetMouse(const json& request) {
    RefuseUnlessReachable();
    if (TextMember(request, "event") != "move") Refuse("the trumpet plot takes the mouse's moves alone");
    const double x = PlaceMember(request, "x"), y = PlaceMember(request, "y");
    Dispatch([x, y] {
        Trumpet_Draw();
        Trumpet_MouseMove(x, y);
    });
    return json::object();
}

json TrumpetPicture(const json& request) {
    RefuseUnlessReachable();
    const std::string file = TextMember(request, "file");
    if (const std::string wrong = CheckTrumpetFile(file); !wrong.empty()) Refuse(wrong);
    Dispatch([&file] {
        const DistancePoints& points = *DistanceScale.Points;
        WriteTrumpetPicture(file, points, TrumpetTitle(points, IsTrue(DistanceScale.WithCal)),
                            PlotOf(Trumpet.Range, Trumpet.Place), Trumpet.RangeCut);
    });
    return json::object();
}

json TrumpetResize(const json& request) {
    RefuseUnlessReachable();
    TrumpetPlace place = Trumpet.Place;
    place.Width = WholeMember(request, "width", 1, kLargestScreenSide);
    place.Height = WholeMember(request, "height", 1, kLargestScreenSide);
    if (const std::string wrong = CheckScreenSize(place.Width, place.Height); !wrong.empty()) Refuse(wrong);
    Trumpet_Resize(place);
    return json::object();
}

}  // namespace corvinade::cli
