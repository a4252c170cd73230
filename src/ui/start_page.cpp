// Pictures of jobs, as the start page shows them beside their names.
#include "ui/start_page.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPushButton>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/form_start.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/run.h"
#include "ui/qt_text.h"

namespace corvinade::ui {

namespace {

constexpr int kWidth = 256, kHeight = 160;  // four times what the buttons show
constexpr double kMargin = 14;
constexpr int kMostPoints = 3000;

// What the picture is of: points, result and place.
struct PictureKey {
    std::uint64_t Generation = 0;
    bool Result = false;
    double Shift = 0, Turn = 0;
    std::string Path;
    bool operator==(const PictureKey&) const = default;
};
PictureKey LastKept;

QString PictureOf(const std::string& path) {
    const QByteArray name =
        QCryptographicHash::hash(QByteArray::fromStdString(path), QCryptographicHash::Sha1);
    return QDir(Q(SettingsFolder()))
        .filePath(QStringLiteral("pictures/%1.png").arg(QString::fromLatin1(name.toHex().left(20))));
}

// Calculated, or as the job was opened with.
bool HasResult() {
    return IsTrue(Run.TrafoValid) || Main.MenueFileExport.Enabled;
}

struct Dot {
    double X, Y;
    double Deviation;  // below 0: it has none
};

// As the isometric view has them, X to the right and Y down.
Dot DotOf(const Vec3& p, double deviation) {
    constexpr double kCos30 = 0.8660254, kSin30 = 0.5;
    return {(p(1) - p(2)) * kCos30, (p(1) + p(2)) * kSin30 - p(3), deviation};
}

std::vector<Dot> DotsOfJob() {
    std::vector<Dot> dots;
    const int pairs = Job.Pairs(), all = Job.Target.Count();
    const int step = std::max(1, all / kMostPoints);
    const bool result = HasResult();
    for (int i = 1; i <= all; i += step) {
        double deviation = -1;
        if (result && i <= pairs && i <= Job.Transformed.Count()) {
            const Vec3 a = TransformedPoint(i), b = TargetPoint(i);
            deviation = std::hypot(a(1) - b(1), a(2) - b(2), a(3) - b(3));
        }
        const Dot dot = DotOf(TargetPoint(i), deviation);
        if (std::isfinite(dot.X) && std::isfinite(dot.Y)) dots.push_back(dot);
    }
    return dots;
}

// From green over yellow to red; a grey that stands on light and dark where there is no deviation.
QColor ColourOfShare(double share) {
    constexpr int kGreen = 120;
    if (!(share >= 0)) return {0x80, 0x88, 0x94};
    return QColor::fromHsv(static_cast<int>(kGreen * (1 - std::min(share, 1.0))), 215, 205);
}

QImage Picture() {
    QImage image(kWidth, kHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    std::vector<Dot> dots = DotsOfJob();
    if (dots.empty()) return image;
    const auto [left, right] =
        std::minmax_element(dots.begin(), dots.end(), [](const Dot& a, const Dot& b) { return a.X < b.X; });
    const auto [top, bottom] =
        std::minmax_element(dots.begin(), dots.end(), [](const Dot& a, const Dot& b) { return a.Y < b.Y; });
    const double width = right->X - left->X, height = bottom->Y - top->Y;
    const double midX = left->X + width / 2, midY = top->Y + height / 2;
    const double across = width > 0 ? (kWidth - 2 * kMargin) / width : 1e300;
    const double down = height > 0 ? (kHeight - 2 * kMargin) / height : 1e300;
    const double scale = width > 0 || height > 0 ? std::min(across, down) : 1;
    double largest = 0;
    for (const Dot& dot : dots) largest = std::max(largest, dot.Deviation);
    // The worst lie on top.
    std::stable_sort(dots.begin(), dots.end(),
                     [](const Dot& a, const Dot& b) { return a.Deviation < b.Deviation; });
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = dots.size() > 400 ? 3 : dots.size() > 60 ? 6 : 9;
    for (const Dot& dot : dots) {
        painter.setBrush(
            ColourOfShare(dot.Deviation < 0 || !(largest > 0) ? dot.Deviation : dot.Deviation / largest));
        painter.drawEllipse(
            QPointF(kWidth / 2.0 + (dot.X - midX) * scale, kHeight / 2.0 + (dot.Y - midY) * scale), radius,
            radius);
    }
    return image;
}

// Pictures of jobs that no list names any more.
void RemoveOthers(QDir folder, const QString& present) {
    QStringList kept = {QFileInfo(present).fileName()};
    for (std::size_t i = 1; i <= kRecentJobs; ++i) kept += QFileInfo(PictureOf(Run.LastFile[i])).fileName();
    const QStringList all = folder.entryList({QStringLiteral("*.png")}, QDir::Files);
    for (const QString& name : all)
        if (!kept.contains(name)) folder.remove(name);
}

}  // namespace

void AddJobPictures(QWidget& form) {
    ShowJobPictures(form);
}

void ShowJobPictures(const QWidget& form) {
    for (std::size_t i = 0; i < kRecentJobs; ++i) {
        auto* button = form.findChild<QPushButton*>(QStringLiteral("BtnRecent%1").arg(i + 1));
        const QString path = Q(StartPage.Recent[i]);
        if (button == nullptr || button->property("_shown").toString() == path) continue;
        button->setProperty("_shown", path);
        QPixmap picture(64, 40);
        picture.fill(Qt::transparent);  // names stand below each other with and without
        const QImage kept = path.isEmpty() ? QImage() : QImage(PictureOf(StartPage.Recent[i]));
        button->setIcon(kept.isNull() ? QIcon(picture) : QIcon(QPixmap::fromImage(kept)));
    }
}

// A picture that cannot be written is missing on the page, and nothing else.
void TendJobPicture() {
    if (!DesktopDefaults.StartPage || !IsTrue(Run.JobDataValid) || Run.JobFilePath == kDefaultJobPath ||
        Run.SettingsFilePath.empty())
        return;
    const PictureKey key = {Run.JobGeneration, HasResult(), Job.TraX, Job.RotXCopy, Run.JobFilePath};
    if (key == LastKept) return;
    LastKept = key;
    const QString path = PictureOf(key.Path);
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (Picture().save(&file, "PNG")) file.commit();
    RemoveOthers(QFileInfo(path).dir(), path);
}

}  // namespace corvinade::ui
