// SpaceMouse input on Linux through the spacenav daemon.
#include "rendering/SpaceMouse.h"

#include "rendering/ViewportLog.h"

#include <QSettings>
#include <QSocketNotifier>

#include <spnav.h>

namespace cad::rendering {

namespace {

// Motion stops when the device has been silent this long.
constexpr qint64 inputTimeoutMs = 100;
// libspnav holds one connection per process; the first SpaceMouse takes it and the
// next one may take it again once it is closed.
bool daemonTaken = false;
// A failed spnav_open keeps its connection state allocated and a later spnav_open
// allocates afresh, so without a daemon every further attempt would leak. Whether the
// daemon is there is therefore asked once per process.
bool daemonMissing = false;

} // namespace

SpaceMouse::SpaceMouse(QObject* parent) : QObject(parent) {
    reloadSettings();
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(8);
    connect(&timer_, &QTimer::timeout, this, &SpaceMouse::tick);

    if (daemonTaken || daemonMissing) return;
    if (spnav_open() == -1) {
        daemonMissing = true;
        qCDebug(viewportLog, "no spacenav daemon: SpaceMouse input is inactive");
        return;
    }
    opened_ = daemonTaken = true;
    notifier_ = new QSocketNotifier(spnav_fd(), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &SpaceMouse::readDaemon);
    qCDebug(viewportLog, "SpaceMouse connected through the spacenav daemon");
}

SpaceMouse::~SpaceMouse() {
    if (opened_) {
        delete notifier_;
        spnav_close();
        daemonTaken = false;
    }
}

bool SpaceMouse::isActive() const { return opened_; }

void SpaceMouse::reloadSettings() {
    QSettings settings;
    settings_.speed = spacemouse::clampSpeed(settings.value("prefs/spaceSpeed", 1.0).toDouble());
    settings_.invertPan = settings.value("prefs/spaceInvertPan", false).toBool();
    settings_.invertZoom = settings.value("prefs/spaceInvertZoom", false).toBool();
    settings_.invertTurn = settings.value("prefs/spaceInvertTurn", false).toBool();
    settings_.levelHorizon = settings.value("prefs/spaceLevelHorizon", false).toBool();
    settings_.dominant = settings.value("prefs/spaceDominant", false).toBool();
}

const spacemouse::Settings& SpaceMouse::settings() const { return settings_; }

void SpaceMouse::handleAxes(const spacemouse::Axes& axes) {
    // Preferences may have changed since the last burst of motion.
    if (!timer_.isActive()) reloadSettings();
    axes_ = axes;
    sinceInput_.start();
    if (!timer_.isActive()) timer_.start();
}

void SpaceMouse::handleButton(int button, bool pressed) {
    if (!pressed) return;
    if (button == 0)
        emit fitRequested();
    else if (button == 1)
        emit homeRequested();
}

void SpaceMouse::handleReport(const spacemouse::Report& report) {
    if (report.translation || report.rotation) {
        spacemouse::Axes axes = axes_;
        if (report.translation) axes.translation = *report.translation;
        if (report.rotation) axes.rotation = *report.rotation;
        handleAxes(axes);
    }
    if (report.buttons) {
        for (int button = 0; button < 2; ++button)
            if (*report.buttons & (1u << button)) handleButton(button, true);
    }
}

void SpaceMouse::readDaemon() {
    spnav_event event;
    while (spnav_poll_event(&event) != 0) {
        if (event.type == SPNAV_EVENT_MOTION) {
            // The daemon's frame is x right, y up, z into the screen; ours is HID's
            // (x right, y away from the user, z down).
            spacemouse::Axes axes;
            axes.translation = {event.motion.x, event.motion.z, -event.motion.y};
            axes.rotation = {event.motion.rx, event.motion.rz, -event.motion.ry};
            handleAxes(axes);
        } else if (event.type == SPNAV_EVENT_BUTTON) {
            handleButton(event.button.bnum, event.button.press != 0);
        }
    }
}

void SpaceMouse::tick() {
    if (!sinceInput_.isValid() || sinceInput_.elapsed() > inputTimeoutMs) {
        timer_.stop();
        return;
    }
    const spacemouse::Motion step = spacemouse::shapeMotion(axes_, settings_);
    if (step.isZero()) {
        timer_.stop();
        return;
    }
    emit motion(step);
}

} // namespace cad::rendering
