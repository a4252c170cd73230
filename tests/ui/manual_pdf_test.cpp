// The manual's PDF: it holds all that the chapters say, and its contents, bookmarks and links lead where they
// say. Looked at with the programs of others that read such files.
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <set>
#include <utility>

#include "core/platform.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

struct Heading {
    QString Text;
    int Level = 1;
    int Page = 0;  // from 1; of the PDF alone
};

struct Outcome {
    bool Good = false;
    QByteArray Out;
    QString Errors;
};

Outcome RunOf(const QString& program, const QStringList& arguments, const QString& seed = {}) {
    QProcess process;
    if (!seed.isEmpty()) {
        QProcessEnvironment around = QProcessEnvironment::systemEnvironment();
        around.insert(QStringLiteral("PYTHONHASHSEED"), seed);
        process.setProcessEnvironment(around);
    }
    process.start(program, arguments);
    const bool ended = process.waitForFinished(-1);
    return {ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            process.readAllStandardOutput(), QString::fromUtf8(process.readAllStandardError())};
}

Outcome MakeOf(const QString& folder, const QString& file, const QString& seed = {}) {
    return RunOf(QStringLiteral(CORVINADE_SOURCE_DIR "/tools/manual/manual-pdf"),
                 {folder, file, QStringLiteral("1.2.3")}, seed);
}

class ManualPdf : public DesktopTest {
protected:
    static QString File() { return Q(ProgramFolder() + "/manual Corvinade English 2.0.0.pdf"); }
    static QDir Folder() { return QDir(QStringLiteral(CORVINADE_SOURCE_DIR "/docs/manual")); }
    static QStringList Files() {
        return Folder().entryList({QStringLiteral("*.md")}, QDir::Files, QDir::Name);
    }

    static QString Chapter(const QString& name) {
        QFile file(Folder().filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << S(name);
        return QString::fromUtf8(file.readAll());
    }

    static QByteArray Read(const QString& program, const QStringList& arguments) {
        const Outcome run = RunOf(program, arguments);
        EXPECT_TRUE(run.Good) << S(program) << ": " << S(run.Errors);
        return run.Out;
    }

    // The text of every page, from element 1.
    static QStringList Pages() {
        QStringList pages =
            QString::fromUtf8(Read(QStringLiteral("pdftotext"), {File(), QStringLiteral("-")}))
                .split(QChar::FormFeed);
        pages.removeLast();
        pages.prepend({});
        return pages;
    }

    static QJsonObject Json(const QString& key) {
        const QByteArray text =
            Read(QStringLiteral("qpdf"), {QStringLiteral("--json=2"), "--json-key=" + key, File()});
        return QJsonDocument::fromJson(text).object();
    }

    // Chapters and sections as the files have them.
    static QList<Heading> Headings() {
        static const QRegularExpression kHeading(QStringLiteral("^(##?) (.+)$"));
        QList<Heading> headings;
        for (const QString& name : Files()) {
            bool code = false;
            for (const QString& line : Chapter(name).split('\n')) {
                code ^= line.startsWith(QLatin1String("```"));
                const auto match = kHeading.match(line);
                if (!code && match.hasMatch())
                    headings.append({match.captured(2), static_cast<int>(match.captured(1).size())});
            }
        }
        return headings;
    }

    static QList<Heading> Bookmarks() {
        QList<Heading> bookmarks;
        for (const QJsonValue& chapter : Json(QStringLiteral("outlines"))["outlines"].toArray()) {
            const auto add = [&bookmarks](const QJsonValue& mark, int level) {
                bookmarks.append({mark["title"].toString(), level, mark["destpageposfrom1"].toInt()});
            };
            add(chapter, 1);
            for (const QJsonValue& section : chapter["kids"].toArray()) add(section, 2);
        }
        return bookmarks;
    }
};

QString Tight(QString text) {
    return text.remove(QRegularExpression(QStringLiteral("\\s+")));
}

// A folder with two chapters, which link each other, and a picture.
QDir SmallManual(const QString& path) {
    QDir folder(path);
    folder.mkpath(QStringLiteral("."));
    QImage picture(40, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    picture.save(folder.filePath(QStringLiteral("red.png")));
    const auto write = [&folder](const char* name, const char* text) {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
    };
    write("01-a.md",
          "# First\n\nSee [there](02-b.md), **bold**, *slanted*, `code`.\n\n![Red it is](red.png)\n");
    write("02-b.md", "# Second\n\n## Part\n\n| A | B |\n|---|---|\n| 1 | back to [first](01-a.md) |\n");
    return folder;
}

}  // namespace

// A viewer shows them beside the pages, from the first one.
TEST_F(ManualPdf, ThePdfHasABookmarkForEveryChapterAndSection) {
    const QList<Heading> headings = Headings(), bookmarks = Bookmarks();
    const QStringList pages = Pages();
    ASSERT_GT(headings.size(), Files().size() * 2);
    ASSERT_EQ(bookmarks.size(), headings.size());
    int chapters = 0;
    for (qsizetype i = 0; i < headings.size(); ++i) {
        EXPECT_EQ(S(bookmarks[i].Text), S(headings[i].Text));
        EXPECT_EQ(bookmarks[i].Level, headings[i].Level) << S(headings[i].Text);
        chapters += bookmarks[i].Level == 1;
        EXPECT_TRUE(pages.value(bookmarks[i].Page).split('\n').contains(headings[i].Text))
            << S(headings[i].Text) << " is not on page " << bookmarks[i].Page;
    }
    EXPECT_EQ(chapters, Files().size());
    EXPECT_TRUE(
        QJsonDocument(Json(QStringLiteral("qpdf"))).toJson().contains("\"/PageMode\": \"/UseOutlines\""));
}

// The number behind a heading in the contents is that of the page which has the heading, and that page says
// so.
TEST_F(ManualPdf, TheContentsTellThePageOfEveryHeading) {
    const QStringList pages = Pages();
    const int first = Bookmarks().value(0).Page;
    ASSERT_GT(first, 1);
    const QByteArray raw =
        Read(QStringLiteral("pdftotext"),
             {QStringLiteral("-raw"), QStringLiteral("-f"), QStringLiteral("2"), QStringLiteral("-l"),
              QString::number(first - 1), File(), QStringLiteral("-")});
    // The dots between come one by one.
    const QString contents =
        QString::fromUtf8(raw)
            .replace(QRegularExpression(QStringLiteral("(\\s*\\.\\s*){3,}")), QStringLiteral(" ... "))
            .simplified();
    qsizetype at = 0;
    for (const Heading& heading : Headings()) {
        const QString words = QRegularExpression::escape(heading.Text);
        const QRegularExpression line("(?<=\\d |Contents )" + words +
                                      QStringLiteral(" \\.\\.\\. (\\d+)(?= |$)"));
        const auto match = line.match(contents, at);
        ASSERT_TRUE(match.hasMatch()) << S(heading.Text);
        at = match.capturedEnd();
        const int page = match.captured(1).toInt();
        const QStringList lines = pages.value(page).trimmed().split('\n');
        EXPECT_TRUE(lines.contains(heading.Text)) << S(heading.Text) << " is not on page " << page;
        EXPECT_TRUE(lines.contains(QString::number(page))) << "page " << page << " has another number";
    }
}

TEST_F(ManualPdf, LinksLeadFromTheContentsAndBetweenTheChapters) {
    QMap<QString, int> pageOf;  // by object
    for (const QJsonValue& page : Json(QStringLiteral("pages"))["pages"].toArray())
        pageOf[page["object"].toString()] = page["pageposfrom1"].toInt();
    const QJsonObject objects = Json(QStringLiteral("qpdf"))["qpdf"].toArray().at(1).toObject();
    const auto value = [&objects](const QString& name) { return objects["obj:" + name]["value"]; };

    QMap<QString, std::pair<int, double>> places;  // page and height of a name
    for (const QString& name : objects.keys()) {
        const QJsonArray names = objects[name]["value"]["/Names"]["/Dests"]["/Names"].toArray();
        for (qsizetype i = 0; i + 1 < names.size(); i += 2)
            places[names[i].toString()] = {pageOf.value(names[i + 1][0].toString()),
                                           names[i + 1][3].toDouble()};
    }
    const QList<Heading> bookmarks = Bookmarks();
    QList<int> begins;  // pages on which chapters begin
    for (const Heading& mark : bookmarks)
        if (mark.Level == 1) begins.append(mark.Page);
    ASSERT_FALSE(begins.isEmpty());
    const auto chapterOf = [&begins](int page) {
        return std::upper_bound(begins.begin(), begins.end(), page) -
               begins.begin();  // from 1; 0 the contents
    };

    std::set<std::pair<int, int>> found;  // from chapter, to chapter
    std::set<std::pair<int, double>> fromContents;
    for (auto page = pageOf.begin(); page != pageOf.end(); ++page)
        for (const QJsonValue& link : value(page.key())["/Annots"].toArray()) {
            const QString name = value(link.toString())["/Dest"].toString();
            ASSERT_TRUE(places.contains(name)) << S(name) << " leads nowhere";
            const int from = chapterOf(page.value());
            if (from == 0) {
                fromContents.insert(places[name]);
                continue;
            }
            const int to = places[name].first;
            EXPECT_TRUE(begins.contains(to)) << S(name);
            found.insert({from, chapterOf(to)});
        }
    EXPECT_EQ(static_cast<qsizetype>(fromContents.size()), bookmarks.size());

    std::set<std::pair<int, int>> written;
    static const QRegularExpression kLink(QStringLiteral("[^!]\\[[^\\]]*\\]\\(([^)]+\\.md)\\)"));
    const QStringList files = Files();
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString chapter = Chapter(files[i]);
        for (auto all = kLink.globalMatch(chapter); all.hasNext();)
            written.insert({i + 1, files.indexOf(all.next().captured(1)) + 1});
    }
    EXPECT_GT(written.size(), 10u);
    EXPECT_EQ(found, written);
}

TEST_F(ManualPdf, EveryWordOfTheChaptersStandsInIt) {
    static const QRegularExpression kBlank(QStringLiteral("\\s+"));
    static const QRegularExpression kMarkup(QStringLiteral("[*`]|\\\\(?=[_|<>])"));
    static const QRegularExpression kRule(QStringLiteral("^([|#-]+|\\|(---\\|)+)$"));
    constexpr QChar kStar(0xe000);  // one that is no markup
    static const QRegularExpression kMark(QStringLiteral("!?\\[([^\\]]*)\\]\\([^)]*\\)"));
    const QString pages = Tight(Pages().join(QString()));
    int count = 0;
    for (const QString& name : Files())
        for (QString line : Chapter(name).split('\n')) {
            line.replace(kMark, QStringLiteral(" \\1 "));
            line.replace(QStringLiteral("\\*"), QString(kStar)).remove(kMarkup).replace(kStar, '*');
            for (const QString& word : line.split(kBlank, Qt::SkipEmptyParts)) {
                if (kRule.match(word).hasMatch()) continue;
                EXPECT_TRUE(pages.contains(word)) << S(word) << " of " << S(name);
                ++count;
            }
        }
    EXPECT_GT(count, 10000);
}

// With all pixels that it has.
TEST_F(ManualPdf, EveryPictureOfTheChaptersStandsInIt) {
    static const QRegularExpression kPicture(QStringLiteral("!\\[[^\\]]*\\]\\(([^)]+)\\)"));
    QSet<QString> shown;
    for (const QString& name : Files()) {
        const QString chapter = Chapter(name);
        for (auto all = kPicture.globalMatch(chapter); all.hasNext();) shown.insert(all.next().captured(1));
    }
    std::multiset<std::pair<int, int>> expected, found;
    for (const QString& name : shown) {
        if (name.endsWith(QStringLiteral(".svg"))) continue;  // drawn as lines
        const QImage picture(Folder().filePath(name));
        expected.insert({picture.width(), picture.height()});
    }
    static const QRegularExpression kRow(
        QStringLiteral("\\n +\\d+ +\\d+ +image +(\\d+) +(\\d+) .* (?:yes|no) +(\\d+) +\\d+ "));
    const QString list = Read(QStringLiteral("pdfimages"), {QStringLiteral("-list"), File()});
    QSet<QString> objects;
    for (auto all = kRow.globalMatch(list); all.hasNext();) {
        const auto row = all.next();
        if (objects.contains(row.captured(3))) continue;  // the same picture twice is one of the file
        objects.insert(row.captured(3));
        found.insert({row.captured(1).toInt(), row.captured(2).toInt()});
    }
    EXPECT_GT(expected.size(), 20u);
    EXPECT_EQ(found, expected);
}

// No reader needs them, and none of another kind has taken the place of one that this machine has not.
TEST_F(ManualPdf, ItsFontsAreThoseOfItsStyleAndInIt) {
    const QString list = Read(QStringLiteral("pdffonts"), {File()});
    const QStringList rows = list.trimmed().split('\n').mid(2);
    EXPECT_GE(rows.size(), 4);
    static const QRegularExpression kRow(
        QStringLiteral("^[A-Z]{6}\\+(Open-Sans|DejaVu-Sans-Mono)\\S* .* yes yes yes +\\d+ +0$"));
    for (const QString& row : rows) EXPECT_TRUE(kRow.match(row).hasMatch()) << S(row);
}

TEST_F(ManualPdf, TheSameChaptersGiveTheSameBytes) {
    QByteArray bytes[2];
    for (int i = 0; i < 2; ++i) {
        const QDir folder = SmallManual(Q(PathOf("manual " + std::to_string(i))));
        const QString pdf = folder.filePath(QStringLiteral("out.pdf"));
        const Outcome run = MakeOf(folder.path(), pdf, QString::number(i + 1));
        ASSERT_TRUE(run.Good) << S(run.Errors);
        QFile file(pdf);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        bytes[i] = file.readAll();
    }
    EXPECT_TRUE(bytes[0].startsWith("%PDF-"));
    EXPECT_EQ(bytes[0], bytes[1]);
}

TEST_F(ManualPdf, ChaptersThatDoNotHoldTogetherAreRefused) {
    struct Case {
        const char* Chapter;  // the second one
        const char* Said;
    };
    const Case cases[] = {
        {"# Second\n\nSee [there](03-c.md).\n", "a link leads to 03-c.md, which is no chapter"},
        {"# Second\n\nSee [there](01-a.md#part).\n", "a link leads to 01-a.md#part, which is no chapter"},
        {"# Second\n\n![Blue it is](blue.png)\n", "blue.png"},
        {"Second, without a heading.\n", "02-b.md does not begin with its heading"},
        {"See # First\n\n# Second\n", "02-b.md does not begin with its heading"},
        {"# Second\n\n# Third\n", "3 headings of chapters in 2 files"},
    };
    const QDir folder = SmallManual(Q(PathOf("manual")));
    const QString pdf = folder.filePath(QStringLiteral("out.pdf"));
    for (const Case& one : cases) {
        QFile file(folder.filePath(QStringLiteral("02-b.md")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(one.Chapter);
        file.close();
        const Outcome run = MakeOf(folder.path(), pdf);
        EXPECT_FALSE(run.Good) << one.Chapter;
        EXPECT_TRUE(run.Errors.contains(QString::fromUtf8(one.Said))) << one.Chapter << S(run.Errors);
        EXPECT_FALSE(QFile::exists(pdf)) << one.Chapter;
    }
    const Outcome empty = MakeOf(folder.filePath(QStringLiteral("nothing")), pdf);
    EXPECT_FALSE(empty.Good);
    EXPECT_TRUE(empty.Errors.contains(QStringLiteral("holds no chapter"))) << S(empty.Errors);
}
