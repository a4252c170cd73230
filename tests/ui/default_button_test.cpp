// Enter in a field of a dialog presses the button that its form names for it.
#include <QLineEdit>

#include "core/job.h"
#include "ui/desktop_fixture.h"

using namespace corvinade;

namespace {

class DefaultButton : public DesktopTest {};

}  // namespace

TEST_F(DefaultButton, EnterInAFieldOfTheInputFilesBringsThePointsIn) {
    Begin();
    Trigger("MenuFileInputFiles");
    Type("FormInputFiles.TextNameMCS", Write("start.txt", "A;0;0;0\nB;1;0;0\nC;0;1;0\n"));
    Type("FormInputFiles.TextNameOCS", Write("target.txt", "A;5;0;0\nB;6;0;0\nC;5;1;0\n"));
    QTest::keyClick(Widget("FormInputFiles.TextNameOCS"), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_FALSE(IsOpen("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 3);
}
