// Small pieces shared by the history and object commands.
#pragma once

#include "core/Document.h"

#include <string>

namespace cad {

class CommandRegistry;

// A command's message with the body failure it caused, if any, appended.
inline std::string withFailure(std::string message, const std::string& failure) {
    if (!failure.empty()) message += " Now failing: " + failure;
    return message;
}

void registerObjectCommands(CommandRegistry& registry);

} // namespace cad
