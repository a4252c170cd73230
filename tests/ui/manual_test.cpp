// The manual: it stands where the help entry looks for it, and what it says is so.
#include <QAction>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <set>

#include "core/platform.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

namespace {

class Manual : public DesktopTest {
protected:
    static QDir Folder() { return QDir(QStringLiteral(CORVINADE_SOURCE_DIR "/docs/manual")); }

    static QString Chapters() {
        QString text;
        for (const QString& name : Folder().entryList({QStringLiteral("*.md")})) {
            QFile file(Folder().filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << S(name);
            text += QString::fromUtf8(file.readAll());
        }
        return text;
    }
};

}  // namespace

TEST_F(Manual, StandsBesideTheProgram) {
    QFile file(Q(ProgramFolder() + "/manual Corvinade English 2.0.0.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
}

TEST_F(Manual, EveryPictureThatItShowsIsThere) {
    static const QRegularExpression kPicture(QStringLiteral("\\]\\((pictures/[^)]+)\\)"));
    int count = 0;
    for (auto all = kPicture.globalMatch(Chapters()); all.hasNext(); ++count) {
        const QString name = all.next().captured(1);
        EXPECT_FALSE(QImage(Folder().filePath(name)).isNull()) << S(name);
    }
    EXPECT_GT(count, 0);
}

TEST_F(Manual, EveryKeyThatItNamesForAMenuEntryIsTheKeyOfOne) {
    Begin();
    std::set<QString> keys;
    for (const QAction* action : Frame()->findChildren<QAction*>())
        keys.insert(action->shortcut().toString(QKeySequence::PortableText));
    keys.insert(QStringLiteral("Ctrl+C"));  // of every table
    static const QRegularExpression kKey(QStringLiteral("Ctrl\\+(Shift\\+)?[A-Z]\\b"));
    int count = 0;
    for (auto all = kKey.globalMatch(Chapters()); all.hasNext(); ++count) {
        const QString key = all.next().captured(0);
        EXPECT_TRUE(keys.count(key) != 0) << S(key);
    }
    EXPECT_GT(count, 0);
}
