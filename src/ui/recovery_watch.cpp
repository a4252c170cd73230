// Recovery copies on the desktop.
#include "ui/recovery_watch.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <cerrno>
#include <csignal>

#include "core/form_recovery.h"
#include "core/recovery.h"
#include "core/system_files.h"
#include "core/window.h"
#include "ui/desktop.h"

namespace corvinade::ui {

namespace {

constexpr int kTick_ms = 500;

std::array<int, 2> Pipe{-1, -1};

extern "C" void TellOfSignal(int signal) {
    const int kept = errno;
    const auto number = static_cast<unsigned char>(signal);
    if (write(Pipe[1], &number, 1) != 1) _exit(1);
    errno = kept;
}

double Now_s() {
    static const QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return static_cast<double>(clock.elapsed()) / 1000;
}

void EndBySignal() {
    unsigned char number = 0;
    if (read(Pipe[0], &number, 1) != 1) return;
    // Within an event the job may stand half way; what was copied before it is the user's last state.
    if (!IsInEvent()) {
        try {
            KeepRecoveryCopy();
        } catch (...) {  // it ends, whatever the disk says
        }
    }
    if (!Recovery.HasCopy) EndRecovery();  // nothing to leave behind
    RemoveFilesBesideNow();
    std::signal(number, SIG_DFL);
    raise(number);
}

void CatchSignals() {
    if (pipe(Pipe.data()) != 0) return;
    for (const int end : Pipe) fcntl(end, F_SETFD, FD_CLOEXEC);
    auto* notifier = new QSocketNotifier(Pipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [] { EndBySignal(); });
    struct sigaction action {};
    action.sa_handler = TellOfSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGHUP}) {
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
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
