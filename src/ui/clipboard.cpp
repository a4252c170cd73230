// The system's clipboard.
#include "ui/clipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QImage>
#include <optional>

#include "core/platform.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr qint64 kBetweenCopies_ms = 100;

struct ClipboardRecord {
    std::optional<std::string> Waiting;
    std::string Put;     // what was handed over last
    QElapsedTimer Last;  // since then
    bool Watched = false;
};
ClipboardRecord Copies;

// A newer copy of somebody else is not overwritten by an older one of ours.
void Watch() {
    if (Copies.Watched) return;
    Copies.Watched = true;
    QObject::connect(QApplication::clipboard(), &QClipboard::dataChanged, QApplication::instance(), [] {
        if (Copies.Waiting && S(QApplication::clipboard()->text()) != Copies.Put) Copies.Waiting.reset();
    });
}

}  // namespace

void PutClipboard(bool insideWork) {
    if (!Copies.Waiting) return;
    if (insideWork && Copies.Last.isValid() && Copies.Last.elapsed() < kBetweenCopies_ms) return;
    Copies.Put = *std::exchange(Copies.Waiting, std::nullopt);
    Copies.Last.start();
    QApplication::clipboard()->setText(Q(Copies.Put));
}

}  // namespace corvinade::ui

namespace corvinade::core {

std::string ClipboardText() {
    return Copies.Waiting ? *Copies.Waiting : S(QApplication::clipboard()->text());
}

bool SetClipboardText(const std::string& text) {
    Watch();
    Copies.Waiting = text;
    PutClipboard(true);
    return true;
}

bool SetClipboardPicture(int width, int height, const std::uint32_t* pixels, std::ptrdiff_t stride) {
    if (width < 1 || height < 1 || pixels == nullptr) return false;
    // The clipboard keeps the picture longer than the window lives.
    const QImage picture =
        QImage(reinterpret_cast<const uchar*>(pixels), width, height,
               stride * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t)), QImage::Format_RGB32)
            .copy();
    if (picture.isNull()) return false;
    Copies.Waiting.reset();
    QApplication::clipboard()->setImage(picture);
    return true;
}

}  // namespace corvinade::core
