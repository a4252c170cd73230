// The window in which a picture is saved or copied at a size and resolution of its own: of a 3D window, a
// saved view, the chart or the trumpet plot.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::graphics {

enum class PictureSource : std::uint8_t { Screen, SavedView, Chart, Trumpet };
enum class PictureFormat : std::uint8_t { Png, Svg, Pdf };

inline constexpr double kLeastPicture_mm = 10, kLargestPicture_mm = 2000;
inline constexpr int kLeastDots = 30, kMostDots = 2400;  // an inch
inline constexpr double kMostPixels = 1e8;

// What is wanted. Letters and lines have the size that they have on a screen of 96 dots an inch.
struct PictureOrder {
    PictureSource Of = PictureSource::Screen;
    std::uint64_t Screen = 0;  // the Id of a graphics window
    int View = 0;              // the number of a saved view
    double Width_mm = 160, Height_mm = 100;
    int Dots = 300;  // of a PNG file, an inch
    bool Bar = true, Axes = true, White = true;
    bool operator==(const PictureOrder&) const = default;
};

// What a face does for pictures. Each gives the bytes of a file, or throws PlatformError.
struct PictureFaces {
    std::string (*File)(const PictureOrder& order, PictureFormat format) = nullptr;
    std::string (*Chart)(const PictureOrder& order, PictureFormat format) = nullptr;  // null: shows none
    bool (*Copy)(const std::string& png) = nullptr;  // onto the clipboard; false where that is refused
};
inline PictureFaces PictureBy;

struct FormPicture {
    WindowState Window{.Caption = "Save Picture"};

    Control LabelSource, ComboSource;
    Control LabelWidth, TextWidth;
    Control LabelHeight, TextHeight;
    Control LabelResolution, TextResolution;
    Control LabelPixels;
    Control CheckBar, CheckAxes, CheckWhite;
    Control LabelProblem;
    Control BtnSave, BtnCopy, BtnClose;

    std::vector<PictureOrder> Sources;  // one an entry of ComboSource, without size and look

    static void Form_Load();
    static void Form_Escape();
    static void ComboSource_Click();
    static void Choice_Change();
    static void BtnSave_Click();
    static void BtnCopy_Click();
    static void BtnClose_Click();
};
extern FormPicture PictureWindow;
extern const WindowEntry FormPicture_Entry;

// Size and look that were chosen last, for the next time that the window opens.
inline PictureOrder PictureWish;

// Other windows are open, or other views saved: the list of the open window follows.
void RenewPictureSources();

void MenuEditPicture_Click();

}  // namespace corvinade::graphics
