// The commands on a sketch's constraints and dimensions: add_constraint,
// edit_constraint (a dimension's value), delete_constraint and move_dimension.
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "sketch/SketchEditCommand.h"

#include <memory>
#include <vector>

namespace cad {

class AddConstraintCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    // `hasValue` false: a dimension takes the current size.
    AddConstraintCommand(CommandRecord record, std::string sketch, SketchConstraint constraint,
                         bool hasValue)
        : SketchEditCommand(std::move(record), std::move(sketch)),
          constraint_(std::move(constraint)), hasValue_(hasValue) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    SketchConstraint constraint_; // gets its ID the first time, which redo keeps
    bool hasValue_;
};

class EditConstraintCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    EditConstraintCommand(CommandRecord record, std::string sketch, std::string constraint,
                          Value value)
        : SketchEditCommand(std::move(record), std::move(sketch)),
          constraint_(std::move(constraint)), value_(std::move(value)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string constraint_;
    Value value_; // evaluated when run: only then is the dimension's kind known
};

class DeleteConstraintCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    DeleteConstraintCommand(CommandRecord record, std::string sketch, std::string constraint)
        : SketchEditCommand(std::move(record), std::move(sketch)),
          constraint_(std::move(constraint)) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string constraint_;
};

class MoveDimensionCommand : public SketchEditCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    MoveDimensionCommand(CommandRecord record, std::string sketch, std::string constraint, double x,
                         double y)
        : SketchEditCommand(std::move(record), std::move(sketch)),
          constraint_(std::move(constraint)), x_(x), y_(y) {}

protected:
    Result<std::string> edit(const SketchObject& sketch, Lists& lists) override;

private:
    std::string constraint_;
    double x_, y_;
};

} // namespace cad
