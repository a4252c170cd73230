// What paints for all faces is made with Qt, which the program for Windows is built without: in its place
// stands who says so.
#include "core/platform.h"
#include "paint/page_surface.h"
#include "paint/picture.h"
#include "paint/picture_file.h"
#include "paint/report_pdf.h"

namespace corvinade::paint {

namespace {

[[noreturn]] void Refuse() {
    throw PlatformError{
        "This program for Windows has no pictures yet, and no reports as PDF: it is built without the toolkit that "
        "paints them. All else that it writes does not need them."};
}

}  // namespace

void FillSurfaceWithPicture(Surface&) {
    Refuse();
}
double FontTextWidth(const TextFont&, const std::string&) {
    Refuse();
}
double FontTextHeight(const TextFont&) {
    Refuse();
}
std::string PictureBytes(const ScreenWindow&) {
    Refuse();
}
std::string PictureBytes(const Surface&, const std::string&) {
    Refuse();
}
bool WritePicture(const ScreenWindow&, const std::string&) {
    Refuse();
}
std::string ReportPdf(const Report&) {
    Refuse();
}
void FillSurfaceWithPage(Surface&) {
    Refuse();
}
std::string PageOfWindow(const ScreenWindow&, double, double, const std::string&) {
    Refuse();
}
std::string PageOfPlot(const Surface&, double, double, const std::string&) {
    Refuse();
}
std::string PictureFileOf(const PictureOrder&, PictureFormat) {
    Refuse();
}
bool CopyPicture(const std::string&) {
    Refuse();
}

}  // namespace corvinade::paint
