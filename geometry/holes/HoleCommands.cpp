// Registers the hole and thread commands with their catalogue descriptions.
#include "geometry/holes/HoleCommands.h"

#include "core/CommandRegistry.h"
#include "geometry/holes/HoleCommand.h"
#include "geometry/holes/ThreadCommand.h"

namespace cad {

void registerHoleCommands(CommandRegistry& registry) {
    registry.add("hole",
                 "Drill holes at a sketch's points (or circle centers) into a body: simple, "
                 "counterbore or countersink; blind or through; sized by a thread standard and fit "
                 "(M6 tapped, M6 close clearance, 1/4-20 UNC tapped) or a diameter. Tapped holes "
                 "get a cosmetic thread, or a modeled one with modeled=true. Sketch on the face, "
                 "add points, then hole.",
                 HoleCommand::arguments(), &HoleCommand::create);
    registry.add("edit_hole", "Change a hole feature's options; only those given change.",
                 EditHoleCommand::arguments(), &EditHoleCommand::create);
    registry.add("thread",
                 "Thread a cylindrical face: outside a bolt or boss, or inside a hole. Cosmetic by "
                 "default (marked, shape unchanged); modeled=true cuts a real helical thread. The "
                 "size defaults to the standard matching the face's diameter.",
                 ThreadCommand::arguments(), &ThreadCommand::create);
    registry.add("edit_thread", "Change a thread feature's size, length or modeled setting.",
                 EditThreadCommand::arguments(), &EditThreadCommand::create);
}

} // namespace cad
