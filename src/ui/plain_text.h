// Texts of files where the toolkit would take one for markup, which may name files to load.
#pragma once

#include <QString>
#include <QTextDocument>

#include "core/rooms.h"

namespace corvinade::ui {

// For what always takes markup, as the titles of charts.
inline QString PlainAsMarkup(const QString& text) {
    return text.toHtmlEscaped();
}

// For what looks at a text and takes it for markup when it looks like it, as tool tips do.
inline QString PlainWhereGuessed(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<p style='white-space:pre-wrap'>") + text.toHtmlEscaped() + QStringLiteral("</p>");
}

}  // namespace corvinade::ui
