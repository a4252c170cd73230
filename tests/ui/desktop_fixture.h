// What the tests of the desktop stand on: the real frame, its windows and dialogs, on a screen that nobody
// sees.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QMainWindow>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "core/window.h"

using namespace corvinade;

// What a test waits for comes at once, or never: how long until that is said is of no account.
inline constexpr int kPatience_ms = 120000;

class DesktopTest : public testing::Test {
protected:
    DesktopTest();
    ~DesktopTest() override;

    // The start as `main` does it, with a job or without.
    static void Begin(const std::string& job = "");

    std::string PathOf(const std::string& name) const;
    std::string Write(const std::string& name, const std::string& content) const;

    // The widget of a control, "FormUnits.BtnOK"; fails the test where there is none.
    static QWidget* Widget(const std::string& at);
    static QAction* Action(const std::string& name);
    static void Trigger(const std::string& action);
    static void Click(const std::string& at);
    static void Type(const std::string& at, const std::string& text);
    static bool IsOpen(const std::string& window);

    // Presses a button of the next message box; its text is kept in messages_.
    void AnswerNext(const std::string& button);
    // Types a path into the next file dialog, or cancels it.
    void ChooseNext(const std::string& path);

    std::string folder_;
    std::vector<std::string> messages_;
};
