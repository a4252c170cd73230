// The window that tells how a table is read: its first lines with a role above each column, what was found as
// controls, and how many rows are good and bad.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/files.h"
#include "core/rooms.h"
#include "core/window.h"
#include "import/input_tables.h"
#include "import/table_preview.h"

namespace corvinade::import {

// So many columns have a role to choose; those behind them keep the one that was found.
inline constexpr std::size_t kRoleCombos = 24;

// A file whose table is looked at. It stays as long as somebody counts its rows.
struct OpenTable {
    FileBytes Bytes;
    std::optional<TableEncoding> Wanted;  // that of Text, where the user has said it
    std::unique_ptr<TableText> Text;
    std::string NoText;  // why the bytes are no text
};

// Its rows, counted.
struct TableCount {
    bool Done = false;
    std::int64_t Good = 0, Bad = 0;
    TableRefusal Refusal, FirstBad;
    std::vector<Note> Notes;
};

struct FormTable {
    WindowState Window{.Caption = "Import table"};

    Control LabelFile;
    Control ComboDelimiter;
    Control ComboDecimal;
    Control ComboEncoding;
    Control ComboUnit;
    Control TextSkip;
    Control TextComment;
    Control CheckStrict;
    std::array<Control, kRoleCombos> ComboRole;  // ComboRole1...
    Control GridPreview;
    Control LabelCount;
    Control LabelProblem;
    Control BtnAuto;
    Control BtnPlain;
    Control BtnOK;
    Control BtnCancel;

    TableSide Side = TableSide::Start;
    std::string Path;
    std::shared_ptr<OpenTable> File;
    TableOptions Decided;      // what the user has said
    std::string WrongSkip;     // what is typed for the lines to skip, where it is no number of lines
    TablePreview Preview;      // what is shown
    TableCount Count;          // of all rows; not done while it goes on
    std::uint64_t Change = 0;  // counts the user's changes: what is counted for an old one ends

    static void Form_Load();
    static void Form_Unload();
    static void Form_Escape();
    static void ComboDelimiter_Click();
    static void ComboDecimal_Click();
    static void ComboEncoding_Click();
    static void ComboUnit_Click();
    static void TextSkip_Change();
    static void TextComment_Change();
    static void CheckStrict_Click();
    static void ComboRole_Click();
    static void BtnAuto_Click();
    static void BtnPlain_Click();
    static void BtnOK_Click();
    static void BtnCancel_Click();
};
extern FormTable TableWindow;
extern const WindowEntry FormTable_Entry;

// Grounds of cells, RGB with red in the low byte.
inline constexpr std::int32_t kBadCellGround = 0x9C9CFF;     // what its column cannot hold
inline constexpr std::int32_t kPassedOverGround = 0xE6E6E6;  // a line that is no row of the table

}  // namespace corvinade::import
