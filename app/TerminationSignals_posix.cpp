// SIGTERM and SIGINT on POSIX systems: the handler only writes a byte to a pipe; the
// event loop reads it and closes the window on the GUI thread.
#include "app/TerminationSignals.h"

#include <QApplication>
#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace cad::app {

namespace {

constexpr int politeSignals[] = {SIGTERM, SIGINT};
int wakePipe[2] = {-1, -1};

void onPoliteSignal(int) {
    const int savedErrno = errno;
    const char byte = 1;
    // A full pipe already holds a request; losing this byte loses nothing.
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
    errno = savedErrno;
}

void setAction(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : politeSignals) ::sigaction(signal, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(QWidget& window) : window_(&window) {
    if (::pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        wakePipe[0] = wakePipe[1] = -1;
        return; // no pipe: the signals keep their default action and end the process
    }
    notifier_ = std::make_unique<QSocketNotifier>(wakePipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { closeWindow(); });
    setAction(onPoliteSignal);
}

TerminationSignals::~TerminationSignals() {
    if (wakePipe[0] < 0) return;
    setAction(SIG_DFL);
    notifier_.reset();
    ::close(wakePipe[0]);
    ::close(wakePipe[1]);
    wakePipe[0] = wakePipe[1] = -1;
}

void TerminationSignals::closeWindow() {
    char bytes[64];
    while (::read(wakePipe[0], bytes, sizeof bytes) > 0) {}
    // A second signal while the window still asks about unsaved changes changes nothing.
    if (closing_ || !window_) return;
    closing_ = true;
    windowClosed_ = window_->close();
    closing_ = false;
    if (!windowClosed_) return;
    // Message boxes and dialogs left open would keep the session alive.
    QApplication::closeAllWindows();
    QCoreApplication::quit();
}

} // namespace cad::app
