// The tests of the desktop, on a screen that nobody sees.
#include <gtest/gtest.h>

#include <QApplication>

#include "ui/theme.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    ApplyTheme(Theme::Light);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
