// What the panels need from the window: its way of running a command (which shows
// the toast and the log line), grouping for a user action that makes several, and
// deleting whole objects the way the window does.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace cad {
struct CommandRecord;
}

namespace cad::ui {

struct PanelHooks {
    // Runs one command through the window; true when it succeeded.
    std::function<bool(const CommandRecord&)> run;
    // Around the commands of one user action, so that they undo as one step.
    std::function<void()> beginGroup;
    std::function<void()> endGroup;
    // Deletes the objects, asking first when other objects use them.
    std::function<void(const std::vector<std::string>&)> deleteObjects;
};

} // namespace cad::ui
