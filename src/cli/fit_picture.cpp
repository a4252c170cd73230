// The picture of the fitted points in the page of a fit.
#include "cli/fit_picture.h"

#include <array>

#include "cli/fit_output.h"
#include "cli/fit_parameters.h"
#include "cli/job_picture.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/window.h"
#include "paint/svg_element.h"

namespace corvinade::cli {

namespace {

constexpr int kWidth = 770, kHeight = 480;  // as wide as the page's column
constexpr int kMostDrawn = 400;             // pairs that are drawn as lines and discs; more are set as pixels
constexpr int kMostNamed = 40;

std::string Base64(const std::string& bytes) {
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::array<unsigned int, 3> b{};
        for (std::size_t k = 0; k < 3 && i + k < bytes.size(); ++k)
            b[k] = static_cast<unsigned char>(bytes[i + k]);
        const unsigned int all = b[0] << 16U | b[1] << 8U | b[2];
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : kDigits[all >> (18 - 6 * k) & 63U];
    }
    return text;
}

std::string ColourScale(const PictureFacts& facts) {
    std::string html = "<p class=\"scale\"><span>0</span>";
    for (const Colour colour : facts.Colours)
        html += "<i style=\"background:" + SvgColour(PixelOf(colour)) + "\"></i>";
    return html + "<span>" + EscapeMarkup(ShownLength(facts.Largest_mm) + " " + Job.LengthUnitName) +
           " and more</span></p>\n";
}

}  // namespace

std::string FitPictureSection(const FitOptions& options) {
    if (options.RDist || options.Tool || !options.Poses.empty()) return "";
    PictureWish wish;
    wish.Width = kWidth;
    wish.Height = kHeight;
    wish.Background = QbColor(15);
    wish.Vectors = true;
    wish.AxisLabels = true;
    wish.PairsAlone = true;
    wish.Names = Job.Pairs() <= kMostNamed;
    const bool drawn = Job.Pairs() <= kMostDrawn;
    PictureFacts facts;
    const std::string picture =
        JobPicture(wish, drawn ? PictureForm::SvgInPage : PictureForm::SharpPng, {}, facts);
    const std::string lines = facts.Magnification == 1
                                  ? "the line from it is the deviation in its true length."
                                  : "the line from it is the deviation, " + PlainText(facts.Magnification) +
                                        " times as long as it is.";
    return "<h2>Where the deviations are</h2>\n<p class=\"quiet\">The identical points where the transformation "
           "puts them, seen from above one corner of " +
           EscapeMarkup(TargetSystem()) + ". The colour tells the length of a deviation; " + lines +
           "</p>\n<div class=\"scene\">\n" +
           (drawn ? picture
                  : "<img alt=\"Deviations of the points\" src=\"data:image/png;base64," + Base64(picture) +
                        "\"/>\n") +
           "</div>\n" + ColourScale(facts);
}

}  // namespace corvinade::cli
