// Following the desktop: a portal that is asked at the start and tells when it changes its mind.
#include "ui/portal.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QPalette>
#include <QThread>
#include <QTimer>
#include <atomic>

#include "ui/desktop.h"
#include "ui/desktop_fixture.h"
#include "ui/frame.h"
#include "ui/theme.h"

using namespace corvinade;

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kInterface = "org.freedesktop.portal.Settings";

bool IsDark() {
    const QPalette palette = QApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

// A portal in a thread of its own, for the program waits for its answers.
class Portal : public QDBusVirtualObject {
public:
    std::atomic<uint> Scheme{0};        // 1: dark
    std::atomic<bool> Silent{false};    // answers when nobody waits any more
    std::atomic<bool> Answered{false};  // one that was silent has
    std::atomic<bool> Wrapped{true};    // answers with the value wrapped twice, as "Read" does
    std::atomic<int> Introspections{0};

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() == QLatin1String("Introspect")) ++Introspections;
        if (Silent) {
            constexpr int kLate_ms = 20000;
            QTimer::singleShot(kLate_ms, this, [this, message, bus] {
                Answered = true;
                bus.send(message.createReply(QVariant::fromValue(QDBusVariant(1U))));
            });
            return true;
        }
        const bool known = message.member() == QLatin1String("Read") && message.arguments().size() == 2 &&
                           message.arguments()[0] == QLatin1String("org.freedesktop.appearance") &&
                           message.arguments()[1] == QLatin1String("color-scheme");
        if (!known) return false;
        const QVariant once = QVariant::fromValue(QDBusVariant(QVariant::fromValue(Scheme.load())));
        bus.send(message.createReply(Wrapped ? QVariant::fromValue(QDBusVariant(once)) : once));
        return true;
    }
};

class FollowsDesktop : public DesktopTest {
protected:
    void SetUp() override {
        if (!QDBusConnection::sessionBus().isConnected()) GTEST_SKIP() << "there is no dbus-daemon";
        ::qunsetenv("CORVINADE_THEME");
        portal_.moveToThread(&thread_);
        thread_.start();
    }
    void TearDown() override {
        bus_.unregisterService(QLatin1String(kService));
        bus_.unregisterObject(QLatin1String(kPath));
        thread_.quit();
        thread_.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        ApplyTheme(Theme::Light);
    }

    void OpenPortal() {
        ASSERT_TRUE(bus_.registerVirtualObject(QLatin1String(kPath), &portal_));
        ASSERT_TRUE(bus_.registerService(QLatin1String(kService)));
    }

    void ChangeMind(uint scheme) {
        portal_.Scheme = scheme;
        QDBusMessage told = QDBusMessage::createSignal(QLatin1String(kPath), QLatin1String(kInterface),
                                                       QStringLiteral("SettingChanged"));
        told << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme")
             << QVariant::fromValue(QDBusVariant(QVariant::fromValue(scheme)));
        bus_.send(told);
    }

    Portal portal_;
    QThread thread_;
    QDBusConnection bus_ = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                                         QStringLiteral("portal"));
};

}  // namespace

TEST_F(FollowsDesktop, IsLightWhereNobodyAnswers) {
    EXPECT_FALSE(DesktopIsDark());
}

TEST_F(FollowsDesktop, IsDarkWhereTheDesktopWishesIt) {
    OpenPortal();
    for (const bool wrapped : {true, false}) {
        portal_.Wrapped = wrapped;
        for (const auto& [scheme, dark] : {std::pair{0u, false}, {1u, true}, {2u, false}, {7u, false}}) {
            portal_.Scheme = scheme;
            EXPECT_EQ(DesktopIsDark(), dark) << scheme;
        }
    }
    EXPECT_EQ(portal_.Introspections, 0);
}

TEST_F(FollowsDesktop, APortalThatDoesNotAnswerHoldsUpNoStart) {
    OpenPortal();
    portal_.Silent = true;
    EXPECT_FALSE(DesktopIsDark());
    EXPECT_FALSE(portal_.Answered) << "the start has waited for it";
}

TEST_F(FollowsDesktop, AChangeOfTheDesktopIsFollowedWithoutARestart) {
    OpenPortal();
    Begin();
    ShowStoredTheme();
    ASSERT_TRUE(Action("_ThemeDesktop")->isChecked());
    ASSERT_FALSE(IsDark());
    ChangeMind(1);
    EXPECT_TRUE(QTest::qWaitFor(IsDark, kPatience_ms));
    EXPECT_TRUE(Action("_ThemeDesktop")->isChecked());
    ChangeMind(2);
    EXPECT_TRUE(QTest::qWaitFor([] { return !IsDark(); }, kPatience_ms));
}

TEST_F(FollowsDesktop, AChoiceOfTheSettingsMenuStandsAgainstTheDesktop) {
    OpenPortal();
    Begin();
    Trigger("_ThemeLight");
    ChangeMind(1);
    QTest::qWait(200);
    EXPECT_FALSE(IsDark());
    Trigger("_ThemeDesktop");
    EXPECT_TRUE(IsDark()) << "asked at once";
}
