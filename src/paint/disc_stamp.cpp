// Discs as rows of pixels.
#include "paint/disc_stamp.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <unordered_map>

namespace corvinade::paint {

namespace {

constexpr double kStepsOfRadius = 4;  // radii that differ less share a disc

DiscRow RowOf(const QRgb* line, int size, int middle) {
    DiscRow row;
    int first = 0, end = size;
    while (first < size && qAlpha(line[first]) == 0) ++first;
    while (end > first && qAlpha(line[end - 1]) == 0) --end;
    row.First = first - middle;
    for (int i = first; i < end; ++i) row.Strength.push_back(static_cast<std::uint8_t>(qAlpha(line[i])));
    const auto solid = [](std::uint8_t strength) { return strength == 255; };
    const auto begin = std::find_if(row.Strength.begin(), row.Strength.end(), solid);
    row.SolidFirst = static_cast<int>(begin - row.Strength.begin());
    row.SolidEnd =
        static_cast<int>(std::find_if_not(begin, row.Strength.end(), solid) - row.Strength.begin());
    return row;
}

DiscStamp DrawStamp(double radius, double scale) {
    const int middle = static_cast<int>(std::ceil(radius + scale)) + 2, size = 2 * middle + 1;
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    if (scale != 1) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0.5, 0.5);
    }
    painter.setPen(QPen(Qt::black, scale));
    painter.setBrush(Qt::black);
    painter.drawEllipse(QPointF(middle, middle), radius, radius);
    painter.end();
    DiscStamp stamp;
    stamp.Top = -middle;
    for (int row = 0; row < size; ++row)
        stamp.Rows.push_back(RowOf(reinterpret_cast<const QRgb*>(image.constScanLine(row)), size, middle));
    return stamp;
}

std::uint32_t Mixed(std::uint32_t below, std::uint32_t above, unsigned strength) {
    const auto part = [=](unsigned shift) {
        const unsigned sum =
            (below >> shift & 0xffU) * (255 - strength) + (above >> shift & 0xffU) * strength;
        return (sum + 127) / 255 << shift;
    };
    return 0xff000000U | part(16) | part(8) | part(0);
}

}  // namespace

const DiscStamp& DiscStampOf(double radius, double scale) {
    static std::unordered_map<long long, DiscStamp> stamps;
    const long long step = std::llround(radius * kStepsOfRadius);
    const long long key = step * 1000 + std::llround(scale * 100);
    const auto found = stamps.find(key);
    if (found != stamps.end()) return found->second;
    return stamps.emplace(key, DrawStamp(static_cast<double>(step) / kStepsOfRadius, scale)).first->second;
}

void PutStamp(Surface& screen, const DiscStamp& stamp, int column, int row, std::uint32_t colour) {
    const int count = static_cast<int>(stamp.Rows.size());
    const int first = std::max(0, -(row + stamp.Top)),
              end = std::min(count, screen.PixelHeight - row - stamp.Top);
    for (int i = first; i < end; ++i) {
        const DiscRow& part = stamp.Rows[static_cast<std::size_t>(i)];
        std::uint32_t* line = screen.Pixels + (row + stamp.Top + i) * screen.Stride;
        const int left = column + part.First;
        const int begin = std::max(0, -left);
        const int stop = std::min(static_cast<int>(part.Strength.size()), screen.PixelWidth - left);
        const int solidBegin = std::clamp(part.SolidFirst, begin, std::max(begin, stop));
        const int solidStop = std::clamp(part.SolidEnd, solidBegin, std::max(solidBegin, stop));
        const auto mix = [&](int from, int to) {
            for (int k = from; k < to; ++k)
                line[left + k] = Mixed(line[left + k], colour, part.Strength[static_cast<std::size_t>(k)]);
        };
        mix(begin, std::min(solidBegin, stop));
        if (solidStop > solidBegin) std::fill(line + left + solidBegin, line + left + solidStop, colour);
        mix(solidStop, stop);
    }
}

}  // namespace corvinade::paint
