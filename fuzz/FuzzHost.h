// The headless host the agent-protocol fuzzers drive: everything as an agent would
// meet it, except that project files stay off so nothing is written or read.
#pragma once

#include "mcp/HeadlessHost.h"

#include <string>

namespace cad::fuzz {

class FuzzHost : public mcp::HeadlessHost {
public:
    Result<void> openProject(const std::string&) override {
        return fail("Project files are off while fuzzing.");
    }
    Result<void> saveProject(const std::string&) override {
        return fail("Project files are off while fuzzing.");
    }
};

} // namespace cad::fuzz
