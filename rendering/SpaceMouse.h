// The 3Dconnexion SpaceMouse: reads the device through the spacenav daemon (libspnav),
// shapes its axes with the user's preferences and reports camera motion every 8 ms
// while input keeps arriving. Without a daemon it is simply inactive; the daemon is
// looked for once per process, so one started later counts from the next start.
#pragma once

#include "rendering/SpaceMouseInput.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QSocketNotifier;

namespace cad::rendering {

class SpaceMouse : public QObject {
    Q_OBJECT
public:
    explicit SpaceMouse(QObject* parent = nullptr);
    ~SpaceMouse() override;

    // True while connected to the spacenav daemon.
    bool isActive() const;
    // Reads "prefs/spaceSpeed", "prefs/spaceInvertPan", "prefs/spaceInvertZoom",
    // "prefs/spaceInvertTurn", "prefs/spaceLevelHorizon" and "prefs/spaceDominant".
    void reloadSettings();
    const spacemouse::Settings& settings() const;

    // Device input, in the HID convention; the daemon's events arrive here too.
    void handleAxes(const spacemouse::Axes& axes);
    void handleButton(int button, bool pressed);
    void handleReport(const spacemouse::Report& report);

signals:
    // One step of motion, already shaped and scaled by the speed.
    void motion(const cad::rendering::spacemouse::Motion& motion);
    // The two main buttons.
    void fitRequested();
    void homeRequested();

private:
    void readDaemon();
    void tick();

    spacemouse::Settings settings_;
    spacemouse::Axes axes_;
    QTimer timer_;
    QElapsedTimer sinceInput_;
    QSocketNotifier* notifier_ = nullptr;
    bool opened_ = false;
};

} // namespace cad::rendering
