// Text between the logic, which holds UTF-8, and the toolkit.
#pragma once

#include <QString>
#include <string>

#include "core/rooms.h"

namespace corvinade::ui {

inline QString Q(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline QString Q(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string S(const QString& text) {
    return text.toStdString();
}

// Places of windows are kept in twips, 15 to the logical pixel.
inline constexpr int kTwips = 15;

}  // namespace corvinade::ui
