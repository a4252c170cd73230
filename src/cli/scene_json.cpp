// The tables that all graphics windows share, as JSON.
#include "cli/scene_json.h"

#include <array>
#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "graphics/scene.h"

namespace corvinade::cli {

using nlohmann::json;

namespace {

// Columns, each with an element 0, as rows. A column that nobody has needed yet is all 0.
json RowsOf(std::span<const std::vector<float>> columns) {
    json rows = json::array();
    for (std::size_t row = 0; row <= static_cast<std::size_t>(Scene.Rows); ++row) {
        json values = json::array();
        for (const std::vector<float>& column : columns)
            values.push_back(row < column.size() ? column[row] : 0.0F);
        rows.push_back(std::move(values));
    }
    return rows;
}

struct SceneTable {
    const char* Name;
    json (*Read)();
};

const SceneTable kTables[] = {
    {"ScenePoints", [] { return RowsOf(Scene.Points); }},
    {"ScenePointName",
     [] {
         json names = json::array({""});
         for (int row = 1; row <= Scene.Rows; ++row) names.push_back(ScenePointName(row));
         return names;
     }},
    {"ViewPoints", [] { return RowsOf(Scene.View); }},
    {"ViewVectors", [] { return RowsOf(Scene.Vectors); }},
    {"PixelX", [] { return json(Scene.PixelX); }},
    {"PixelY", [] { return json(Scene.PixelY); }},
    {"PixelZ", [] { return json(Scene.PixelZ); }},
    {"VecPixelX", [] { return json(Scene.VecPixelX); }},
    {"VecPixelY", [] { return json(Scene.VecPixelY); }},
    {"RotCenter",
     [] {
         return json({0.0, Scene.RotCenter(1), Scene.RotCenter(2), Scene.RotCenter(3)});
     }},
    {"RotateAboutIndex", [] { return json(Scene.RotateAboutIndex); }},
    {"RotateAboutArmed", [] { return json(ToFlag(Scene.RotateAboutArmed)); }},
};

}  // namespace

bool SceneTableToJson(std::string_view name, json& table) {
    for (const SceneTable& entry : kTables)
        if (name == entry.Name) {
            table = entry.Read();
            return true;
        }
    return false;
}

}  // namespace corvinade::cli
