// The window that shows how far long work has come and lets the user stop it.
#pragma once

#include "core/rooms.h"
#include "core/window.h"

namespace corvinade::core {

struct FormProgressBar {
    WindowState Window;

    Control ProgressBar1;
    Control BtnCancel;

    static void BtnCancel_Click();
};
extern FormProgressBar Progress;
extern const WindowEntry FormProgressBar_Entry;

// Keeps the progress window open for as long as the object lives.
class ProgressWindow {
public:
    explicit ProgressWindow(const std::string& caption);
    ~ProgressWindow();
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;
};

}  // namespace corvinade::core
