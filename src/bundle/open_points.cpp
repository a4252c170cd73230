// What an adjusted network says of the coordinates that its distances leave open.
#include "bundle/open_points.h"

#include <string>
#include <utility>
#include <vector>

#include "core/notes.h"
#include "core/text.h"

namespace corvinade::bundle {

namespace {

constexpr std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Names in quotation marks; of many the first ones.
std::string Named(const std::vector<std::string>& names) {
    constexpr std::size_t kMost = 12;
    std::string text;
    for (std::size_t i = 0; i < names.size() && i < kMost; ++i)
        text += (i == 0 ? "\"" : ", \"") + Printable(names[i]) + "\"";
    return names.size() <= kMost ? text : text + " and " + std::to_string(names.size() - kMost) + " more";
}

}  // namespace

void NoteOpenPoints(const BundleRecord& network, const BundleWork& work) {
    std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::NetworkOpen; });
    std::vector<std::string> stations, objects;
    for (int column = 1; column + 2 < static_cast<int>(work.Open.size()); column += 3) {
        if (!work.Open[At(column)] && !work.Open[At(column + 1)] && !work.Open[At(column + 2)]) continue;
        const int point = (column - 1) / 3 + 1;
        if (point <= network.nStations) {
            stations.push_back(network.StationName[At(point)]);
        } else {
            objects.push_back(network.ObjectName[At(work.UsedObject[At(point - network.nStations)])]);
        }
    }
    if (stations.empty() && objects.empty()) return;
    std::string text = "The distances do not determine ";
    if (!stations.empty()) text += (stations.size() == 1 ? "station " : "stations ") + Named(stations);
    if (!stations.empty() && !objects.empty()) text += " and ";
    if (!objects.empty()) text += (objects.size() == 1 ? "object point " : "object points ") + Named(objects);
    text += "; what is shown for them is arbitrary";
    AddNote(NoteCode::NetworkOpen, std::move(text), network.BundleFilePath, 0,
            static_cast<int>(stations.size() + objects.size()));
}

}  // namespace corvinade::bundle
