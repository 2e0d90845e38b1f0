// A polite end on SIGTERM and SIGINT: the main window is closed as if the user had
// closed it, so a desktop logout saves or asks as usual and the agent socket goes away.
#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class QSocketNotifier;

namespace cad::app {

// While it lives, SIGTERM and SIGINT ask the window to close (it may refuse, for
// example when the user cancels the question about unsaved changes); once it has
// closed, any message box still open goes too and the application quits.
// Destruction restores the default actions. One at a time per process.
class TerminationSignals {
public:
    explicit TerminationSignals(QWidget& window);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // True once a signal closed the window. A close during start-up (while a message
    // box waits, before the event loop runs) means the event loop must not start.
    bool windowClosed() const { return windowClosed_; }

private:
    void closeWindow();

    QPointer<QWidget> window_;
    std::unique_ptr<QSocketNotifier> notifier_;
    bool closing_ = false;
    bool windowClosed_ = false;
};

} // namespace cad::app
