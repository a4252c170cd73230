// The manual: it stands where the help entry looks for it, and what it says is so.
#include <QAction>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QRegularExpression>
#include <set>

#include "core/job.h"
#include "core/platform.h"
#include "graphics/bindings_overlay.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

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

    static QString ReadMe() {
        QFile file(QStringLiteral(CORVINADE_SOURCE_DIR "/README.md"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    }

    // All forms as they stand in their files.
    static QString Forms() {
        QString text;
        const QDir forms(QStringLiteral(":/forms"));
        for (const QString& name : forms.entryList()) {
            QFile file(forms.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << S(name);
            text += QString::fromUtf8(file.readAll());
        }
        return text;
    }

    // What a user can read on the windows: the texts of the forms, the items of lists, the headings of
    // tables.
    static std::set<QString> Captions() {
        std::set<QString> captions = {QStringLiteral("Yes"), QStringLiteral("No")};  // of every question
        const auto add = [&captions](QString text) {
            text = text.remove('&').section('\n', 0, 0).trimmed();
            captions.insert(text);
            if (text.endsWith(':')) captions.insert(text.chopped(1));
        };
        static const QRegularExpression kText(QStringLiteral("<string[^>]*>([^<]*)</string>"));
        for (auto all = kText.globalMatch(Forms()); all.hasNext();)
            add(all.next()
                    .captured(1)
                    .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
                    .replace(QStringLiteral("&amp;"), QStringLiteral("&")));
        for (const char* name :
             {"FormInputFiles", "FormTrafoBerechnung", "FormTrafoDetails", "FormMainSheet", "FormOptions",
              "FormUnits", "FormColorBar", "FormSaveView", "FormDistanceScale", "FormBündel",
              "FormGraphicsOptions", "FormBlackPlane"}) {
            const WindowEntry& window = *FindWindow(name);
            UserDid([&window] { ShowWindow(window.Name); });
            for (const ControlEntry& control : window.Controls) {
                add(Q(control.Place->Text));
                for (const std::string& item : control.Place->Items) add(Q(item));
                GridState& grid = control.Place->Grid;
                for (int col = 0; grid.FixedRows > 0 && col < grid.Cols; ++col)
                    add(Q(CellText(grid, 0, col)));
            }
            UserDid([&window] { UnloadWindow(window.Name); });
        }
        return captions;
    }

    // Calls `see` for each place of the manual that fits a pattern; returns how many there are.
    template <class See>
    static int ForEach(const char* pattern, const See& see) {
        const QRegularExpression expression(QString::fromUtf8(pattern));
        int count = 0;
        const QString text = Chapters();
        for (auto all = expression.globalMatch(text); all.hasNext(); ++count) see(all.next());
        return count;
    }
};

}  // namespace

TEST_F(Manual, StandsBesideTheProgram) {
    QFile file(Q(ProgramFolder() + "/manual Corvinade English 2.0.0.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
}

TEST_F(Manual, EveryPictureThatItShowsIsThereAndSaysWhatItShows) {
    const int count = ForEach("!\\[([^\\]]*)\\]\\(([^)]+)\\)", [](const QRegularExpressionMatch& picture) {
        EXPECT_FALSE(QImage(Folder().filePath(picture.captured(2))).isNull()) << S(picture.captured(2));
        EXPECT_GT(picture.captured(1).size(), 8) << S(picture.captured(2));
    });
    EXPECT_GT(count, 8);
}

TEST_F(Manual, EveryPictureIsShown) {
    const QString text = Chapters() + ReadMe();
    for (const QString& name : QDir(Folder().filePath(QStringLiteral("pictures"))).entryList(QDir::Files))
        EXPECT_TRUE(text.contains(QStringLiteral("pictures/") + name)) << S(name);
}

TEST_F(Manual, EveryLinkLeadsToAFile) {
    const int count = ForEach("[^!]\\[[^\\]]*\\]\\(([^)]+)\\)", [](const QRegularExpressionMatch& link) {
        EXPECT_TRUE(Folder().exists(link.captured(1))) << S(link.captured(1));
    });
    EXPECT_GT(count, 2);
}

TEST_F(Manual, EveryCaptionInBoldIsThatOfAControl) {
    Begin(CORVINADE_SOURCE_DIR "/examples/robot_cell.cvn");
    const std::set<QString> captions = Captions();
    static const QRegularExpression kKey(
        QStringLiteral("^((Ctrl|Alt|Shift)\\+)*([A-Z0-9]|F\\d+|Alt|Shift|Esc|Enter|Tab|space bar)$"));
    const int count = ForEach("\\*\\*((?:[^*\\\\]|\\\\.)+)\\*\\*", [&](const QRegularExpressionMatch& bold) {
        const QString text = bold.captured(1).remove('\\').replace(QRegularExpression(QStringLiteral("\\s+")),
                                                                   QStringLiteral(" "));
        if (kKey.match(text).hasMatch()) return;
        for (const QString& caption : text.split(QStringLiteral(" > ")))
            EXPECT_TRUE(captions.count(caption) != 0) << "no control is called \"" << S(caption) << "\"";
    });
    EXPECT_GT(count, 100);
}

TEST_F(Manual, EveryAltKeyIsTheUnderlinedLetterOfItsCaption) {
    const QString forms = Forms();
    const int count =
        ForEach("\\*\\*([^*]+)\\*\\* \\(\\*\\*Alt\\+(.)\\*\\*\\)", [&](const QRegularExpressionMatch& key) {
            const QString caption = key.captured(1);
            bool found = false;
            for (qsizetype at = 0; at < caption.size(); ++at)
                if (caption[at].toUpper() == key.captured(2)[0])
                    found |= forms.contains('>' + QString(caption).insert(at, QStringLiteral("&amp;")) + '<');
            EXPECT_TRUE(found) << S(key.captured(0));
        });
    EXPECT_GT(count, 4);
}

// Numbers in a message differ from case to case; the words around them stand in the sources.
TEST_F(Manual, EveryMessageThatItExplainsIsOneOfTheProgram) {
    QString sources;
    QDirIterator files(QStringLiteral(CORVINADE_SOURCE_DIR "/src"),
                       {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        sources += QString::fromUtf8(file.readAll());
    }
    sources.remove(QRegularExpression(QStringLiteral("\"\\s*\"")));  // texts over several lines
    QFile chapter(Folder().filePath(QStringLiteral("10-messages.md")));
    ASSERT_TRUE(chapter.open(QIODevice::ReadOnly));
    static const QRegularExpression kRow(QStringLiteral("\n\\| ([^|]+) \\|"));
    int count = 0;
    for (auto all = kRow.globalMatch(QString::fromUtf8(chapter.readAll())); all.hasNext();) {
        const QString message = all.next().captured(1);
        if (message == QLatin1String("Message")) continue;
        ++count;
        for (const QString& words : message.split(QRegularExpression(QStringLiteral("\\d{2,}"))))
            EXPECT_TRUE(sources.contains(words)) << S(words);
    }
    EXPECT_GT(count, 15);
}

// The text over the pictures and the table of the chapter tell the same.
TEST_F(Manual, ItsTableOfTheGraphicsWindowsHasEveryBinding) {
    QFile chapter(Folder().filePath(QStringLiteral("11-3d-windows.md")));
    ASSERT_TRUE(chapter.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(chapter.readAll());
    EXPECT_GT(ScreenBindings().size(), 10u);
    for (const Binding& binding : ScreenBindings())
        EXPECT_TRUE(text.contains("| " + QString::fromUtf8(binding.Keys) + " | ")) << binding.Keys;
}

TEST_F(Manual, EveryKeyThatItNamesForAMenuEntryIsTheKeyOfOne) {
    Begin();
    std::set<QString> keys;
    for (const QAction* action : Frame()->findChildren<QAction*>())
        keys.insert(action->shortcut().toString(QKeySequence::PortableText));
    for (const char* key : {"Ctrl+C", "Ctrl+Shift+C", "Ctrl+A", "Ctrl+F",
                            "Ctrl+W"})  // of every table, of every window in the frame
        keys.insert(QString::fromUtf8(key));
    static const QRegularExpression kKey(QStringLiteral("Ctrl\\+(Shift\\+)?[A-Z]\\b"));
    int count = 0;
    for (auto all = kKey.globalMatch(Chapters()); all.hasNext(); ++count) {
        const QString key = all.next().captured(0);
        EXPECT_TRUE(keys.count(key) != 0) << S(key);
    }
    EXPECT_GT(count, 0);
}

// The third section, by keys alone: the table is reached with Tab, its cells are marked and switched.
TEST_F(Manual, APointIsLeftOutAndTheFitRepeatedByKeysAlone) {
    Begin();
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", CORVINADE_SOURCE_DIR "/examples/robot_cell_measured.txt");
    Type("FormInputFiles.TextNameOCS", CORVINADE_SOURCE_DIR "/examples/robot_cell_nominal.txt");
    Click("FormInputFiles.BtnOK");
    ASSERT_EQ(Job.Pairs(), 14);
    Trigger("MenuTransformationCalculation");
    Frame()->activateWindow();
    QWidget* form = WidgetOf(*FindWindow("FormTrafoBerechnung"));
    form->setFocus();
    QTest::keyClick(form, Qt::Key_6, Qt::AltModifier);
    QTest::keyClick(form, Qt::Key_F5);
    const auto largest = [] {
        return S(qobject_cast<QLineEdit*>(Widget("FormTrafoBerechnung.TextMaxDevXYZPkt"))->text());
    };
    EXPECT_EQ(largest(), "F09");

    QWidget* table = Widget("FormTrafoBerechnung.Tabelle");
    Widget("FormTrafoBerechnung.BtnUseAllPts")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), table);
    QTest::keyClick(table, Qt::Key_Home, Qt::ControlModifier);
    for (int down = 0; down < 8; ++down) QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_End);
    for (int key = 0; key < 2; ++key) QTest::keyClick(table, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(table, Qt::Key_Space);
    const std::vector<std::int16_t> flags(Job.UseFlags.begin() + 25, Job.UseFlags.begin() + 28);
    EXPECT_EQ(flags, std::vector<std::int16_t>(3, 0));
    QTest::keyClick(table, Qt::Key_F5);
    EXPECT_NE(largest(), "F09");
}
