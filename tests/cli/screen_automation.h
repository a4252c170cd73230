// A small job in a graphics window, by names alone. Its numbers can be worked out by hand: four pairs at the
// corners of a plate of 100 by 50 mm, seen from above, where x runs right and y runs up.
#pragma once

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "cli/automation.h"
#include "core/numbers.h"

using namespace corvinade;

class ScreenByNames : public Automated {
protected:
    // Starts the program with graphics windows of this size and takes the plate in.
    void Start(int width = 800, int height = 600) {
        AutomationOptions options;
        options.ScreenWidth = width;
        options.ScreenHeight = height;
        StartAutomation(options);
        Click("FormMain.MenuFileInputFiles");
        Set("FormInputFiles.TextNameMCS",
            Write("start.txt", "A;0;0;0.3\nB;100;0.4;0\nC;0;50;0\nD;100;50;0\n"));
        Set("FormInputFiles.TextNameOCS", Write("target.txt", "A;0;0;0\nB;100;0;0\nC;0;50;0\nD;100;50;0\n"));
        Click("FormInputFiles.BtnOK");
    }
    void StartWithScreen() {
        Start();
        Click("FormMain.MenueGraphics");
    }

    static json Click(const std::string& at) { return Good({{"do", "click"}, {"at", at}}); }
    static json Set(const std::string& at, const json& value) {
        return Good({{"do", "set"}, {"at", at}, {"value", value}});
    }
    static json Get(const std::string& at) { return Good({{"do", "get"}, {"at", at}}); }
    static json Field(const std::string& name) { return Get("Screen#1." + name)["value"]; }
    static double Number(const std::string& name) { return Field(name).get<double>(); }
    static json Record(const std::string& name) { return Good({{"do", "record"}, {"name", name}})["value"]; }
    static json SetRecord(const std::string& name, const json& value) {
        return Good({{"do", "record"}, {"name", name}, {"value", value}});
    }
    static json Key(const std::string& key, const std::string& event = "press") {
        return Good({{"do", "key"}, {"at", "Screen#1.ScreenPixel"}, {"key", key}, {"event", event}});
    }
    static json Answer(const std::string& kind, const json& value) {
        return Good({{"do", "answer"}, {"kind", kind}, {"value", value}});
    }
    static json Close(const std::string& at) { return Good({{"do", "close"}, {"at", at}}); }
    static json Mouse(const std::string& event, double x, double y, json more = json::object()) {
        more.update({{"do", "mouse"}, {"at", "Screen#1"}, {"event", event}, {"x", x}, {"y", y}});
        return Good(more);
    }
    static std::string ErrorOf(const json& request) {
        const json reply = Ask(request);
        EXPECT_EQ(reply["ok"], false) << request.dump();
        return reply.value("error", "");
    }

    struct Pixel {
        double X, Y;
    };
    static Pixel PixelOf(std::size_t row) {
        return {Record("PixelX")[row].get<double>(), Record("PixelY")[row].get<double>()};
    }

    // The fit leaves a twentieth of the picture on both sides: 0.9 * 800 / 100 pixels to the millimetre, the
    // middle of the plate in the middle of the picture.
    static constexpr double kFaktor = 7.2;
    static constexpr double kLeft = 400 - 50 * kFaktor, kRight = 400 + 50 * kFaktor;
    // C and D stand at y = 50, B's start point at 0.4, all others at 0.
    static constexpr double kLower = 300 + 25 * kFaktor, kUpper = 300 - 25 * kFaktor;
    static constexpr double kNear = 2e-3;  // pixels; the offsets are 32-bit numbers of some thousands
};
