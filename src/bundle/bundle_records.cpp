// The records of the bundle by name.
#include "bundle/bundle_records.h"

#include "bundle/network.h"

namespace corvinade::bundle {

namespace {

const RecordEntry kRecords[] = {
    {"BundleFilePath", &Bundle.BundleFilePath, Storage::Run},
    {"nStations", &Bundle.nStations, Storage::Run},
    {"nObjectPoints", &Bundle.nObjectPoints, Storage::Run},
    {"nDistances", &Bundle.nDistances, Storage::Run},
    {"StationName", &Bundle.StationName, Storage::Run},
    {"StationXYZ", &Bundle.Net.StationXYZ, Storage::Run},
    {"ObjectName", &Bundle.ObjectName, Storage::Run},
    {"ObjectXYZ", &Bundle.Net.ObjectXYZ, Storage::Run},
    {"DistancePair", TextTable{&Bundle.DistancePair[1], 2}, Storage::Run},
    {"DistancePair.1", &Bundle.DistancePair[1], Storage::Run},
    {"DistancePair.2", &Bundle.DistancePair[2], Storage::Run},
    {"DistanceValue", &Bundle.Net.DistanceValue, Storage::Run},
};

}  // namespace

std::span<const RecordEntry> BundleRecords() {
    return kRecords;
}

}  // namespace corvinade::bundle
