// add_constraint, edit_constraint, delete_constraint and move_dimension: reading
// references and values, and handing the change to the solver.
#include "sketch/ConstraintCommands.h"

#include "core/ArgReader.h"
#include "core/units/ExpressionNames.h"
#include "core/units/ExpressionParser.h"
#include "core/units/NameLookup.h"
#include "sketch/SketchReference.h"
#include "sketch/SketchSolver.h"

#include <algorithm>
#include <cmath>

namespace cad {

namespace {

using T = ArgType;

ArgSpec sketchArg() {
    return {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"};
}

std::vector<std::string> constraintKeywords() {
    std::vector<std::string> words;
    for (int i = 0; i <= static_cast<int>(ConstraintType::Angle); ++i)
        words.emplace_back(constraintKeyword(static_cast<ConstraintType>(i)));
    return words;
}

// The text the value was typed as, kept when it uses parameter names so that the
// dimension follows them.
std::optional<units::Expression> expressionOf(const Value* value, bool isLength) {
    const auto* text = value ? std::get_if<std::string>(value) : nullptr;
    if (!text || !units::usesNames(*text)) return std::nullopt;
    return units::Expression{*text, units::currentLengthUnit(), isLength, false};
}

SketchConstraint* findIn(std::vector<SketchConstraint>& constraints, const std::string& id) {
    auto it = std::find_if(constraints.begin(), constraints.end(),
                           [&](const SketchConstraint& c) { return c.id == id; });
    return it == constraints.end() ? nullptr : &*it;
}

Error noConstraint(const SketchObject& sketch, const std::string& name) {
    return fail(sketch.id + " has no constraint named '" + name + "'.");
}

} // namespace

// ---------------------------------------------------------------- add_constraint

std::vector<ArgSpec> AddConstraintCommand::arguments() {
    return {
        sketchArg(),
        {"type", T::String, true, "Dimensions (distance ... angle) take a value.",
         constraintKeywords(), ""},
        {"a", T::SketchReference, true, "First reference.", {}, ""},
        {"b", T::SketchReference, false, "Second reference.", {}, ""},
        {"c", T::SketchReference, false, "Third (symmetric: the mirror line).", {}, ""},
        {"value",
         T::Length,
         false,
         "Dimensions: a length (mm or with units), or degrees for angle; omitted = the current "
         "size.",
         {},
         ""},
        {"label_x",
         T::Length,
         false,
         "Where the value is drawn, offset from the dimension's anchor.",
         {},
         ""},
        {"label_y",
         T::Length,
         false,
         "Where the value is drawn, offset from the dimension's anchor.",
         {},
         ""},
    };
}

Result<std::unique_ptr<Command>> AddConstraintCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    Result<SketchItem> names = readSketchItem(record, arguments(), "type");
    if (!names) return Error(names);
    std::optional<ConstraintType> type = parseConstraintKeyword(names->item);
    if (!type) return fail("add_constraint: unknown constraint type '" + names->item + "'.");

    SketchConstraint constraint;
    constraint.type = *type;
    if (!reader.has("a"))
        return fail("add_constraint: give the geometry to constrain in 'a' (and 'b', 'c').");
    for (const char* key : {"a", "b", "c"}) {
        const Value* value = record.find(key);
        if (!value) continue;
        const auto* text = std::get_if<std::string>(value);
        std::optional<SketchRef> ref = text ? parseReference(*text) : std::nullopt;
        if (!ref)
            return fail("add_constraint: '" + std::string(key) +
                        "' must be a reference like \"Line1.end\".");
        constraint.refs.push_back(std::move(*ref));
    }

    const bool isAngle = *type == ConstraintType::Angle;
    const bool hasValue = reader.has("value");
    if (hasValue) {
        Result<double> value = isAngle ? reader.angle("value") : reader.length("value");
        if (!value) return Error(value);
        constraint.value = *value;
        constraint.expression = expressionOf(record.find("value"), !isAngle);
    }
    if (reader.has("label_x") || reader.has("label_y")) {
        if (!isDimension(*type))
            return fail("add_constraint: only dimensions have a label position.");
        if (!reader.has("label_x") || !reader.has("label_y"))
            return fail("add_constraint: give both 'label_x' and 'label_y' as lengths.");
        Result<double> x = reader.length("label_x");
        if (!x) return Error(x);
        Result<double> y = reader.length("label_y");
        if (!y) return Error(y);
        constraint.label = std::pair{*x, *y};
    }
    return std::unique_ptr<Command>(std::make_unique<AddConstraintCommand>(
        record, names->sketch, std::move(constraint), hasValue));
}

Result<std::string> AddConstraintCommand::edit(const SketchObject& sketch, Lists& lists) {
    Result<SketchConstraint> prepared = prepareConstraint(lists.entities, constraint_, hasValue_);
    if (!prepared) return Error(prepared);
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);
    Result<ConstraintAddition> addition =
        addConstraint(lists.entities, lists.constraints, *prepared);
    if (!addition) return Error(addition);
    std::move(addition).value().applyTo(lists.entities, lists.constraints);
    if (constraint_.id.empty() && !lists.constraints.empty())
        constraint_.id = lists.constraints.back().id;
    return "Added " + constraint_.id + " to " + sketch.id + ".";
}

// ---------------------------------------------------------------- edit_constraint

std::vector<ArgSpec> EditConstraintCommand::arguments() {
    return {sketchArg(),
            {"constraint", T::String, true, "The dimension's name, e.g. \"Length1\".", {}, ""},
            {"value",
             T::Length,
             true,
             "A length (mm or with units), or degrees for an angle.",
             {},
             ""}};
}

Result<std::unique_ptr<Command>> EditConstraintCommand::create(const CommandRecord& record) {
    Result<SketchItem> names = readSketchItem(record, arguments(), "constraint");
    if (!names) return Error(names);
    const Value* value = record.find("value");
    if (!value) return fail("edit_constraint: missing argument 'value'.");
    return std::unique_ptr<Command>(
        std::make_unique<EditConstraintCommand>(record, names->sketch, names->item, *value));
}

Result<std::string> EditConstraintCommand::edit(const SketchObject& sketch, Lists& lists) {
    SketchConstraint* c = findIn(lists.constraints, constraint_);
    if (!c) return noConstraint(sketch, constraint_);
    if (!isDimension(c->type))
        return fail(c->id + " is not a dimension; it has no value to change.");

    const bool isAngle = c->type == ConstraintType::Angle;
    double value = 0;
    if (const auto* text = std::get_if<std::string>(&value_)) {
        Result<double> v = isAngle ? units::readNumberText(*text) : units::readLengthText(*text);
        if (!v) return v.withPrefix("edit_constraint: ");
        value = *v;
    } else if (const auto* i = std::get_if<std::int64_t>(&value_)) {
        value = static_cast<double>(*i);
    } else if (const auto* d = std::get_if<double>(&value_)) {
        value = *d;
    } else {
        return fail(std::string("edit_constraint: 'value' must be ") +
                    (isAngle ? "a number of degrees." : "a length."));
    }
    if (!std::isfinite(value)) return fail("The value must be a number.");
    if (isAngle && !(value > 0 && value <= 180))
        return fail("An angle must be more than 0° and at most 180°.");
    if (!isAngle && !(value > 0)) return fail("A dimension must be greater than zero.");

    c->value = value;
    c->expression = expressionOf(&value_, !isAngle);
    const std::string id = c->id;
    if (auto refs = checkConstraintReferences(lists.entities, lists.constraints); !refs)
        return Error(refs);
    Result<std::vector<SketchEntity>> solved = solveSketch(lists.entities, lists.constraints);
    if (!solved) return fail("That value doesn't work with the sketch's other constraints.");
    lists.entities = std::move(solved).value();
    return "Changed " + id + ".";
}

// ---------------------------------------------------------------- delete_constraint

std::vector<ArgSpec> DeleteConstraintCommand::arguments() {
    return {sketchArg(),
            {"constraint", T::String, true, "Its name, e.g. \"Coincident3\".", {}, ""}};
}

Result<std::unique_ptr<Command>> DeleteConstraintCommand::create(const CommandRecord& record) {
    Result<SketchItem> names = readSketchItem(record, arguments(), "constraint");
    if (!names) return Error(names);
    return std::unique_ptr<Command>(
        std::make_unique<DeleteConstraintCommand>(record, names->sketch, names->item));
}

// Removing a constraint cannot break the others, so nothing is solved.
Result<std::string> DeleteConstraintCommand::edit(const SketchObject& sketch, Lists& lists) {
    auto it = std::find_if(lists.constraints.begin(), lists.constraints.end(),
                           [&](const SketchConstraint& c) { return c.id == constraint_; });
    if (it == lists.constraints.end()) return noConstraint(sketch, constraint_);
    lists.constraints.erase(it);
    return "Deleted " + constraint_ + ".";
}

// ---------------------------------------------------------------- move_dimension

std::vector<ArgSpec> MoveDimensionCommand::arguments() {
    return {sketchArg(),
            {"constraint", T::String, true, "The dimension's name.", {}, ""},
            {"x", T::Length, true, "Offset from the dimension's anchor.", {}, ""},
            {"y", T::Length, true, "Offset from the dimension's anchor.", {}, ""}};
}

Result<std::unique_ptr<Command>> MoveDimensionCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    Result<SketchItem> names = readSketchItem(record, arguments(), "constraint");
    if (!names) return Error(names);
    if (!reader.has("x") || !reader.has("y"))
        return fail("move_dimension: give the offset in 'x' and 'y'.");
    Result<double> x = reader.length("x");
    if (!x) return Error(x);
    Result<double> y = reader.length("y");
    if (!y) return Error(y);
    return std::unique_ptr<Command>(
        std::make_unique<MoveDimensionCommand>(record, names->sketch, names->item, *x, *y));
}

Result<std::string> MoveDimensionCommand::edit(const SketchObject& sketch, Lists& lists) {
    SketchConstraint* c = findIn(lists.constraints, constraint_);
    if (!c) return noConstraint(sketch, constraint_);
    if (!isDimension(c->type)) return fail(c->id + " is not a dimension.");
    c->label = std::pair{x_, y_};
    return "Moved " + c->id + ".";
}

} // namespace cad
