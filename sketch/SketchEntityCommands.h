// delete_sketch_entity (with the constraints that use the entity) and
// set_construction.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <vector>

namespace cad {

class DeleteSketchEntityCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    DeleteSketchEntityCommand(CommandRecord record, std::string sketch, std::string entity)
        : SketchEditCommand(std::move(record), std::move(sketch)), entity_(std::move(entity)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string entity_;
};

class SetConstructionCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    SetConstructionCommand(CommandRecord record, std::string sketch, std::string entity,
                           bool construction)
        : SketchEditCommand(std::move(record), std::move(sketch)), entity_(std::move(entity)),
          construction_(construction) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string entity_;
    bool construction_;
};

} // namespace cad
