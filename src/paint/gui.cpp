// Qt without a screen, for programs that draw pictures and show none.
#include "paint/gui.h"

#include <QGuiApplication>
#include <QtGlobal>
#include <array>
#include <clocale>
#include <string>

namespace corvinade::paint {

namespace {

void SayNothing(QtMsgType, const QMessageLogContext&, const QString&) {}

}  // namespace

void EnsureGui() {
    if (QCoreApplication::instance() != nullptr) return;
    static std::array<char, 10> program{"corvinade"}, option{"-platform"}, platform{"offscreen"};
    static std::array<char*, 4> arguments{program.data(), option.data(), platform.data(), nullptr};
    static int count = 3;
    const char* numbers = std::setlocale(LC_NUMERIC, nullptr);
    const std::string kept = numbers == nullptr ? "C" : numbers;
    const QtMessageHandler handler = qInstallMessageHandler(SayNothing);
    // It lives to the end of the program: nothing of Qt may outlive it, and tables of fonts and images do.
    static const auto* const gui = new QGuiApplication(count, arguments.data());
    static_cast<void>(gui);
    qInstallMessageHandler(handler);
    std::setlocale(LC_NUMERIC, kept.c_str());
}

}  // namespace corvinade::paint
