// The platform with a screen.
#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFont>
#include <QFontDialog>
#include <QGridLayout>
#include <QIcon>
#include <QInputDialog>
#include <QLocale>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "core/files.h"
#include "core/platform.h"
#include "core/window.h"
#include "fit/require.h"
#include "ui/colours.h"
#include "ui/desktop.h"
#include "ui/plain_text.h"
#include "ui/qt_text.h"
#include "ui/screen_windows.h"
#include "ui/start_screen.h"

namespace corvinade::core {

namespace {

// Waiting events are served no more often than this, so that work that yields at every step stays quick.
constexpr qint64 kBetweenYields_ms = 10;
constexpr qint64 kBetweenRounds_ms = 40;

// The busy pointer does not stand over a question.
class PlainPointer {
public:
    PlainPointer() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~PlainPointer() { QApplication::restoreOverrideCursor(); }
    PlainPointer(const PlainPointer&) = delete;
    PlainPointer& operator=(const PlainPointer&) = delete;
};

// "name|pattern|name|pattern" as the toolkit has it; names hold their pattern in brackets already, or get it.
// A pattern alone is its own name.
QString FilterOf(const std::string& filter) {
    QStringList parts = Q(filter).split('|', Qt::SkipEmptyParts);
    if (parts.size() == 1) parts += parts.front();
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString name = parts[i].section('(', 0, 0).trimmed();
        QString patterns = parts[i + 1];
        if (patterns == QLatin1String("*.*")) patterns = QStringLiteral("*");
        filters += name + " (" + patterns.replace(';', ' ') + ')';
    }
    return filters.join(QStringLiteral(";;"));
}

// The extension that a typed name gets, which belongs into the question whether to overwrite: that of the
// filter's first pattern.
QString SuffixOf(const std::string& filter) {
    const QString all = Q(filter);
    const QString pattern = all.contains('|') ? all.section('|', 1, 1) : all;
    return pattern.startsWith(QLatin1String("*.")) && pattern != QLatin1String("*.*") ? pattern.mid(2)
                                                                                      : QString();
}

QString BeginAt(const FileQuestion& question) {
    const std::string& name = question.Name;
    return Q(name.find_first_of("/\\") != std::string::npos ? name : JoinPath(question.Folder, name));
}

std::optional<std::string> Chosen(const QString& path) {
    if (path.isEmpty()) return std::nullopt;
    return S(path);
}

}  // namespace

std::string AskMessage(const std::string& text, const std::string& title,
                       const std::vector<std::string>& buttons) {
    ShowState();
    const PlainPointer pointer;
    QMessageBox box(DialogParent());
    box.setWindowTitle(Q(title));
    box.setText(Q(text));
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.setIcon(buttons.size() > 1 ? QMessageBox::Question : QMessageBox::Information);
    std::vector<QPushButton*> all;
    all.reserve(buttons.size() + 1);
    for (const std::string& button : buttons)
        all.push_back(box.addButton(Q(button), QMessageBox::ActionRole));
    if (all.empty()) all.push_back(box.addButton(QMessageBox::Ok));
    box.setDefaultButton(all.front());
    // Esc is the last button. A question of Yes and No waits for its answer: "No" to whether a job shall be
    // saved throws the work away.
    const bool yesNo = buttons == std::vector<std::string>{"Yes", "No"};
    if (!yesNo) box.setEscapeButton(all.back());
    box.exec();
    for (std::size_t i = 0; i < buttons.size(); ++i)
        if (box.clickedButton() == all[i]) return buttons[i];
    return buttons.empty() ? "" : buttons.back();
}

std::optional<std::string> AskInput(const std::string& text, const std::string& title,
                                    const std::string& preset) {
    ShowState();
    const PlainPointer pointer;
    bool taken = false;
    const QString answer = QInputDialog::getText(DialogParent(), Q(title), PlainWhereGuessed(Q(text)),
                                                 QLineEdit::Normal, Q(preset), &taken);
    if (!taken) return std::nullopt;
    return S(answer);
}

std::optional<std::string> AskOpenFile(const FileQuestion& question) {
    ShowState();
    const PlainPointer pointer;
    return Chosen(QFileDialog::getOpenFileName(DialogParent(), Q(question.Title), BeginAt(question),
                                               FilterOf(question.Filter)));
}

std::optional<std::string> AskSaveFile(const FileQuestion& question) {
    ShowState();
    const PlainPointer pointer;
    QFileDialog dialog(DialogParent(), Q(question.Title), BeginAt(question), FilterOf(question.Filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(SuffixOf(question.Filter));
    dialog.setOption(QFileDialog::DontConfirmOverwrite, question.AsksBeforeReplacing);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return Chosen(dialog.selectedFiles().constFirst());
}

std::optional<std::int32_t> AskColour(std::int32_t preset) {
    ShowState();
    const PlainPointer pointer;
    const QColor chosen = QColorDialog::getColor(ColourOf(preset), DialogParent());
    if (!chosen.isValid()) return std::nullopt;
    return chosen.red() | chosen.green() << 8 | chosen.blue() << 16;
}

std::optional<TextFont> AskFont(const TextFont& preset, std::int32_t* colour) {
    ShowState();
    const PlainPointer pointer;
    QFont font(preset.Name.empty() ? QStringLiteral("DejaVu Sans") : Q(preset.Name));
    font.setPointSizeF(std::clamp(preset.Size, kLeastFontSize, kLargestFontSize));
    font.setBold(preset.Bold);
    font.setItalic(preset.Italic);
    font.setUnderline(preset.Underline);
    font.setStrikeOut(preset.Strikethrough);
    QFontDialog dialog(font, DialogParent());
    QColor letters = ColourOf(colour != nullptr ? *colour : 0);
    QPushButton button(QStringLiteral("C&olor..."), &dialog);
    button.setAutoDefault(false);
    const auto show = [&button, &letters] {
        QPixmap sample(16, 16);
        sample.fill(letters);
        button.setIcon(QIcon(sample));
    };
    show();
    QObject::connect(&button, &QPushButton::clicked, &dialog, [&] {
        const QColor chosen = QColorDialog::getColor(letters, &dialog);
        if (chosen.isValid()) letters = chosen;
        show();
    });
    // The system's own dialog has no room for the colour.
    if (colour != nullptr) dialog.setOption(QFontDialog::DontUseNativeDialog);
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (colour != nullptr && grid != nullptr)
        grid->addWidget(&button, grid->rowCount(), 0, 1, 2, Qt::AlignLeft);
    else
        button.hide();
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    if (colour != nullptr) *colour = letters.red() | letters.green() << 8 | letters.blue() << 16;
    const QFont chosen = dialog.selectedFont();
    const auto size = static_cast<float>(chosen.pointSizeF());
    return TextFont{S(chosen.family()), std::clamp(size, kLeastFontSize, kLargestFontSize),
                    chosen.bold(),      chosen.italic(),
                    chosen.underline(), chosen.strikeOut()};
}

void WaitForWindow(const std::string& name) {
    Require(IsLoaded(name));
    ShowState();
    const PlainPointer pointer;
    // Whatever closes the window, its own event ends the wait.
    while (IsLoaded(name)) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ShowState();
    }
}

void YieldToEvents() {
    static QElapsedTimer last;
    // A picture that runs by itself runs as fast as the eye follows, on every machine.
    if (TakeRoundShown() && last.isValid() && last.elapsed() < kBetweenRounds_ms) {
        Pause(static_cast<int>(kBetweenRounds_ms - last.elapsed()));
        last.start();
        return;
    }
    if (last.isValid() && last.elapsed() < kBetweenYields_ms) return;
    ShowState(true);
    QApplication::processEvents();
    last.start();
}

void Pause(int milliseconds) {
    ShowState();
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(milliseconds);
    loop.exec();
}

void StartFile(const std::string& verb, const std::string& path) {
    const bool byDesktop = verb == "Open" || verb == "explore";
    // The desktop takes every name, and says nothing of one that leads nowhere.
    if (byDesktop && !File_Exist(path) && !Directory_Exist(path))
        throw PlatformError{"\"" + path + "\" could not be opened: there is no such file or folder."};
    const bool started = byDesktop ? QDesktopServices::openUrl(QUrl::fromLocalFile(Q(path)))
                                   : QProcess::startDetached(Q(verb), {Q(path)});
    if (!started) throw PlatformError{"\"" + path + "\" could not be opened with \"" + verb + "\"."};
}

void ShowStartScreen() {
    ShowStartScreenFor(kStartScreen_ms);
}

std::string OperatingSystemName() {
    return "Windows Vista or LATER";  // what every system with a settings folder for each user is called
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string UserSettingsFolder() {
    if (const auto configured = EnvironmentVariable("XDG_CONFIG_HOME"); configured && !configured->empty())
        return *configured;
    return EnvironmentVariable("HOME").value_or("") + "/.config";
}

std::string ProgramFolder() {
    return S(QApplication::applicationDirPath());
}

char SystemDecimal() {
    static const char decimal = QLocale::system().decimalPoint() == QLatin1String(",") ? ',' : '.';
    return decimal;
}

}  // namespace corvinade::core
