// The point table by names alone, as a script of a cell's commissioning drives it.
#include <nlohmann/json.hpp>

#include "cli/automate.h"
#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "engine/fit_job.h"
#include "support/fixture.h"

using namespace corvinade;

using nlohmann::json;

class GridsByName : public Program {
protected:
    GridsByName() {
        StartAutomation({});
        BeginFit();
        for (int i = 0; i < 4; ++i) AddPair({i * 10.0, i * i * 1.0, 0}, {i * 10.0, i * i * 1.0 + i, 1});
        Job.ParamText[1] = "";
        ProgrammLogik();
        Ask({{"do", "click"}, {"at", "FormMain.MenuTransformationCalculation"}});
    }
    static json Ask(const json& request) {
        bool quit = false;
        return json::parse(AnswerLine(request.dump(), quit));
    }
    static json Table(json request) {
        request["at"] = "FormTrafoBerechnung.Tabelle";
        return Ask(request);
    }
    static json Get() { return Table({{"do", "get"}}); }
    static json Flags() { return Ask({{"do", "record"}, {"name", "UseFlags"}})["value"]; }
};

TEST_F(GridsByName, AGridShowsItsCellsColoursAndWidths) {
    const json grid = Get();
    EXPECT_EQ(grid["ok"], true);
    EXPECT_EQ(grid["kind"], "grid");
    EXPECT_EQ(grid["rows"], 5);
    EXPECT_EQ(grid["cols"], 9);
    EXPECT_EQ(grid["cells"][0],
              json({"", "Pt.ID", "dev.x", "dev.y", "dev.z", "use.x", "use.y", "use.z", ""}));
    EXPECT_EQ(grid["cells"][2], json({"", "P2", "0.000", "-1.000", "-1.000", "X", "X", "X", "2"}));
    EXPECT_EQ(grid["backColors"][1][1], 0x00FF00);
    EXPECT_EQ(grid["backColors"][1][5], 0xFFFFFF);
    EXPECT_EQ(grid["colWidths"].size(), 9);
    EXPECT_EQ(grid["hiddenCols"], json({8}));
    EXPECT_EQ(grid["current"], json({{"row", 1}, {"col", 1}}));
    EXPECT_EQ(grid["toolTip"],
              "Green Fields indicate Seed Points for Raw Solution; Change Seeds with double Click");
}

TEST_F(GridsByName, CellsAreClickedSelectedAndTurnedOver) {
    EXPECT_EQ(Table({{"do", "dblclick"}, {"row", 2}, {"col", 5}})["ok"], true);
    EXPECT_EQ(Flags(), json({0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(Get()["cells"][2][5], "");
    EXPECT_EQ(Get()["backColors"][2][5], 0x00FFFF);
    EXPECT_EQ(Table({{"do", "select"}, {"row", 3}, {"col", 6}, {"row2", 4}, {"col2", 7}})["ok"], true);
    EXPECT_EQ(Get()["selection"], json({{"row", 3}, {"col", 6}, {"row2", 4}, {"col2", 7}}));
    EXPECT_EQ(Table({{"do", "key"}, {"key", "Space"}, {"event", "up"}})["ok"], true);
    EXPECT_EQ(Table({{"do", "key"}, {"key", "Space"}})["ok"], true);
    EXPECT_EQ(Flags(), json({0, 1, 1, 1, 0, 1, 1, 1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(Table({{"do", "click"}, {"row", 1}, {"col", 1}})["ok"], true);
    EXPECT_EQ(Table({{"do", "click"}, {"row", 2}, {"col", 3}, {"shift", true}})["ok"], true);
    EXPECT_EQ(Table({{"do", "key"}, {"key", "Ctrl+C"}, {"event", "press"}})["ok"], true);
    EXPECT_EQ(Headless.Clipboard, "P1\t0.000\t0.000\r\nP2\t0.000\t-1.000");
}

TEST_F(GridsByName, HeadingsSortAndTheMenuCopies) {
    EXPECT_EQ(Table({{"do", "click"}, {"row", 0}, {"col", 3}})["ok"], true);
    EXPECT_EQ(Get()["cells"][1][1], "P4");
    const json menu = {{"do", "click"}, {"at", "FormTrafoBerechnung.MenuTabelleCopy"}};
    EXPECT_EQ(Ask(menu)["ok"], false);
    EXPECT_EQ(Table({{"do", "click"}, {"row", 1}, {"col", 3}, {"button", "right"}})["ok"], true);
    EXPECT_EQ(Ask({{"do", "record"}, {"name", "GraphValues"}})["value"], json({0.0, -3.0, -2.0, -1.0, 0.0}));
    EXPECT_EQ(Ask(menu)["ok"], true);
    EXPECT_EQ(Headless.Clipboard, "-3.000\r\n-2.000\r\n-1.000\r\n0.000");
}

TEST_F(GridsByName, WhatNoUserCouldClickIsRefused) {
    for (const char* what : {"click", "dblclick"}) {
        EXPECT_EQ(Table({{"do", what}})["ok"], false);
        EXPECT_EQ(Table({{"do", what}, {"row", 5}, {"col", 1}})["ok"], false);
        EXPECT_EQ(Table({{"do", what}, {"row", -1}, {"col", 1}})["ok"], false);
        EXPECT_EQ(Table({{"do", what}, {"row", 1}, {"col", 9}})["ok"], false);
        EXPECT_EQ(Table({{"do", what}, {"row", 1}, {"col", 8}})["error"], "column 8 is hidden");
        EXPECT_EQ(Table({{"do", what}, {"row", 1.5}, {"col", 1}})["ok"], false);
        EXPECT_EQ(Table({{"do", what}, {"row", 1e99}, {"col", 1}})["ok"], false);
    }
    EXPECT_EQ(Table({{"do", "click"}, {"row", 1}, {"col", 1}, {"button", "middle"}})["ok"], false);
    EXPECT_EQ(Table({{"do", "click"}, {"row", 1}, {"col", 1}, {"shift", 1}})["ok"], false);
    EXPECT_EQ(Table({{"do", "select"}, {"row", 1}, {"col", 1}, {"row2", 1}})["ok"], false);
    EXPECT_EQ(Table({{"do", "key"}, {"key", "a"}, {"event", "long"}})["ok"], false);
    EXPECT_EQ(Table({{"do", "set"}, {"value", "a"}})["ok"], false);
    EXPECT_EQ(Ask({{"do", "select"},
                   {"at", "FormTrafoBerechnung.BtnCalculate"},
                   {"row", 1},
                   {"col", 1},
                   {"row2", 1},
                   {"col2", 1}})["ok"],
              false);
    EXPECT_EQ(Flags(), json({0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
}
