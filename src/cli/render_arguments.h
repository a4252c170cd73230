// The options of `corvinade-cli render`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <tuple>

#include "cli/render.h"
#include "core/rooms.h"

namespace corvinade::cli {

// A check by a procedure that fills a value as well.
template <class... Values>
CLI::Validator Written(std::string (*take)(const std::string&, Values&...)) {
    return CLI::Validator(
        [take](const std::string& text) {
            std::tuple<Values...> values;
            return std::apply([&](auto&... each) { return take(text, each...); }, values);
        },
        "");
}

struct RenderSwitches {
    RenderOptions Options;
    std::string Size = "1600x1000", Vectors, Background = "black", Limits, Decimal;
    const CLI::Option* VectorsOption = nullptr;
    bool Yes = false, No = false;
};

CLI::App* AddRender(CLI::App& app, RenderSwitches& s);
void TakeRenderSwitches(RenderSwitches& s);

}  // namespace corvinade::cli
