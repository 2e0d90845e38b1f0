// POSIX process plumbing: duplicated descriptors for the protocol stream and a
// self-pipe that turns termination signals into an orderly quit.
#include "mcp/ProcessSupport.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace cad::mcp {

namespace {

int signalPipe[2] = {-1, -1};

extern "C" void onTerminationSignal(int) {
    const char byte = 1;
    [[maybe_unused]] ssize_t written = ::write(signalPipe[1], &byte, 1);
}

} // namespace

std::FILE* claimStdoutForProtocol() {
    std::fflush(stdout);
    int protocol = ::dup(STDOUT_FILENO);
    if (protocol < 0) return stdout;
    ::fcntl(protocol, F_SETFD, FD_CLOEXEC);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    std::FILE* stream = ::fdopen(protocol, "w");
    return stream ? stream : stdout;
}

void quitOnTerminationSignals() {
    if (signalPipe[0] >= 0 || ::pipe(signalPipe) != 0) return;
    ::fcntl(signalPipe[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(signalPipe[1], F_SETFD, FD_CLOEXEC);
    auto* notifier =
        new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        char byte = 0;
        [[maybe_unused]] ssize_t got = ::read(signalPipe[0], &byte, 1);
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

void ignoreBrokenPipes() { std::signal(SIGPIPE, SIG_IGN); }

} // namespace cad::mcp
