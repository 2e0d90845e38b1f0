// project: brings edges, faces (their edges), vertices and other sketches' curves
// and points onto a sketch's plane as linked entities that follow their sources.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/patterns/SketchSnapshotCommand.h"

#include <memory>
#include <string>
#include <vector>

namespace cad {

class ProjectCommand : public SketchSnapshotCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    ProjectCommand(CommandRecord record, std::string sketch, std::vector<std::string> references,
                   bool construction)
        : SketchSnapshotCommand(std::move(record), std::move(sketch)),
          references_(std::move(references)), construction_(construction) {}

protected:
    Result<std::string> change(const Document& document, const SketchObject& sketch,
                               Lists& lists) override;

private:
    std::vector<std::string> references_;
    bool construction_;
};

} // namespace cad
