// Every command of the frame can be reached by the mouse, and its action is connected.
#include <QAction>
#include <QComboBox>
#include <QMetaMethod>

#include "core/form_main.h"
#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/qt_text.h"

using namespace corvinade;

namespace {

// Tells what the toolkit keeps to an object itself.
struct Connections : QObject {
    template <class Sender, class Signal>
    static bool Has(const Sender& sender, Signal signal) {
        constexpr auto connected = &Connections::isSignalConnected;
        return (sender.*connected)(QMetaMethod::fromSignal(signal));
    }
};

bool IsParent(const ControlEntry& entry) {
    for (const ControlEntry& other : FormMain_Entry.Controls)
        if (other.Parent != nullptr && std::string_view(other.Parent) == entry.Name) return true;
    return false;
}

}  // namespace

TEST_F(DesktopTest, EveryCommandOfTheFrameStandsInAMenuOrAToolBarAndIsConnected) {
    Begin();
    int commands = 0;
    for (const ControlEntry& entry : FormMain_Entry.Controls) {
        const ControlKind kind = entry.Place->Kind;
        if ((kind != ControlKind::Menu && kind != ControlKind::ToolButton) || IsParent(entry)) continue;
        if (entry.Place == &Main.MenuPicture) continue;  // it pops up alone, with entries of other menus
        ++commands;
        const QAction* action = Action(entry.Name);
        ASSERT_NE(action, nullptr) << entry.Name;
        EXPECT_TRUE(Connections::Has(*action, &QAction::triggered)) << entry.Name;
        EXPECT_FALSE(action->associatedObjects().isEmpty()) << entry.Name;
        if (kind == ControlKind::ToolButton) {
            EXPECT_FALSE(action->icon().isNull()) << entry.Name;
            EXPECT_FALSE(action->toolTip().isEmpty()) << entry.Name;
        } else {
            EXPECT_FALSE(S(action->text()).empty()) << entry.Name;
        }
    }
    EXPECT_GE(commands, 80);
    const auto* views = Frame()->findChild<QComboBox*>(QStringLiteral("ComboSaveView"));
    ASSERT_NE(views, nullptr);
    EXPECT_TRUE(Connections::Has(*views, &QComboBox::activated));
}
