// Recovery copies on the desktop.
#include "ui/recovery_watch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>

#include "core/form_recovery.h"
#include "core/recovery.h"
#include "core/system_files.h"
#include "core/system_process.h"
#include "core/window.h"
#include "ui/desktop.h"

namespace corvinade::ui {

namespace {

constexpr int kTick_ms = 500;

double Now_s() {
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return static_cast<double>(clock.elapsed()) / 1000;
}

void SaveAndEnd() {
    const int signal = TakeEndingSignal();
    if (signal == 0) return;
    // Within an event the job may stand half way; what was copied before it is the user's last state.
    if (!IsInEvent()) {
        try {
            KeepRecoveryCopy();
        } catch (...) {  // it ends, whatever the disk says
        }
    }
    if (!Recovery.HasCopy) EndRecovery();  // nothing to leave behind
    RemoveFilesBesideNow();
    EndBySignal(signal);
}

void CatchSignals() {
    const int handle = KeepEndingSignals();
    if (handle < 0) return;
    auto* notifier = new QSocketNotifier(handle, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { SaveAndEnd(); });
}

}  // namespace

void WatchRecovery() {
    UserDid([] { Dispatch([] { BeginRecovery(); }); });
    CatchSignals();
    // The slices of a look come when nothing else waits.
    auto* slices = new QTimer(QCoreApplication::instance());
    QObject::connect(slices, &QTimer::timeout, slices, [slices] {
        bool more = false;
        const bool before = Recovery.Changed;
        if (!IsInEvent()) Dispatch([&more] { more = TendRecoverySlice(Now_s()); });
        if (!more) slices->stop();
        if (Recovery.Changed != before) ShowState();
    });
    auto* tick = new QTimer(QCoreApplication::instance());
    QObject::connect(tick, &QTimer::timeout, tick, [slices] {
        if (!IsInEvent() && Recovery.On && Recovery.Touched && !slices->isActive()) slices->start(0);
    });
    tick->start(kTick_ms);
}

// A long event must not begin with work behind it that no copy has.
void TendBeforeEvent() {
    if (Recovery.On) Dispatch([] { TendRecovery(Now_s()); });
}

void TendAfterEvent() {
    if (!Recovery.On) return;
    JobTouched();
    // What was opened is taken before anything can change it.
    if (Recovery.StandsNow) Dispatch([] { TendRecovery(Now_s()); });
}

}  // namespace corvinade::ui
