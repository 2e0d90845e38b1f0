// set_parameter, rename_parameter and delete_parameter. Each is one undo step that
// puts back the parameter list and every value, sketch and feature it changed.
#include "core/ArgReader.h"
#include "core/Document.h"
#include "core/Parameters.h"
#include "core/units/Format.h"

#include <algorithm>

namespace cad {

namespace {

std::string joined(const std::vector<std::string>& items) {
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : ", ") + item;
    return out;
}

class ParameterCommand : public Command {
public:
    using Command::Command;

    CommandResult execute(Document& doc) override {
        parameters_ = doc.parameters();
        before_ = {};
        CommandResult result = change(doc);
        if (!result.ok) undo(doc);
        return result;
    }
    // Only the objects the change reached are put back, and only what uses their
    // values is computed again.
    void undo(Document& doc) override {
        doc.setParameters(parameters_);
        before_.restore(doc);
    }

private:
    CommandResult change(Document& doc) {
        if (record_.name == "set_parameter") return set(doc);
        if (record_.name == "rename_parameter") return rename(doc);
        if (record_.name == "delete_parameter") return remove(doc);
        return CommandResult::failure("Unknown parameter command.");
    }

    CommandResult set(Document& doc) {
        ArgReader args(record_);
        std::string name = *args.string("name");
        std::string expression = *args.string("expression");
        if (Result<void> ok = validateParameterName(name); !ok)
            return CommandResult::failure(ok.error());
        if (expression.find_first_not_of(" \t\r\n") == std::string::npos)
            return CommandResult::failure("set_parameter: the expression is empty.");

        std::vector<Parameter> parameters = doc.parameters();
        auto it = std::find_if(parameters.begin(), parameters.end(),
                               [&](const Parameter& p) { return p.name == name; });
        if (it == parameters.end())
            it = parameters.insert(parameters.end(), Parameter{name, "", {}, false, ""});
        it->expression = expression;
        it->unit = doc.lengthUnit();
        if (args.has("comment")) it->comment = *args.string("comment", "");
        doc.setParameters(parameters);

        Result<units::Quantity> value = doc.parameterLookup()(name);
        if (!value) return CommandResult::failure(value.error());
        parameters[static_cast<std::size_t>(it - parameters.begin())].isLength = value->isLength;
        doc.setParameters(parameters);
        std::string text =
            name + " = " +
            (value->isLength ? units::formatLength(value->value, doc.lengthUnit(), true, -1)
                             : units::formatNumber(value->value, units::Length::Millimeters, -1));

        if (std::vector<std::string> problems = recomputeExpressions(doc, &before_);
            !problems.empty())
            return CommandResult::failure("That would break " + joined(problems));
        return CommandResult::success(text);
    }

    CommandResult rename(Document& doc) {
        ArgReader args(record_);
        std::string from = *args.string("name");
        std::string to = *args.string("to");
        if (!doc.findParameter(from))
            return CommandResult::failure("There's no parameter '" + from + "'.");
        if (Result<void> ok = validateParameterName(to); !ok)
            return CommandResult::failure(ok.error());
        if (doc.findParameter(to))
            return CommandResult::failure("There's a parameter named '" + to + "' already.");
        renameParameterEverywhere(doc, from, to, &before_);
        if (std::vector<std::string> problems = recomputeExpressions(doc, &before_);
            !problems.empty())
            return CommandResult::failure("Renaming would break " + joined(problems));
        return CommandResult::success("Renamed " + from + " to " + to + ".");
    }

    CommandResult remove(Document& doc) {
        std::string name = *ArgReader(record_).string("name");
        if (!doc.findParameter(name))
            return CommandResult::failure("There's no parameter '" + name + "'.");
        if (std::vector<std::string> users = parameterUsers(doc, name); !users.empty())
            return CommandResult::failure(name + " is used by " + joined(users) +
                                          "; change those first.");
        std::vector<Parameter> parameters = doc.parameters();
        std::erase_if(parameters, [&](const Parameter& p) { return p.name == name; });
        doc.setParameters(std::move(parameters));
        return CommandResult::success("Deleted " + name + ".");
    }

    std::vector<Parameter> parameters_; // the list as it was
    ValueSnapshots before_;             // the values the change reached, as they were
};

// The parameter commands answer missing arguments in their own words.
void addParameterCommand(CommandRegistry& registry, std::string name, std::string description,
                         std::vector<ArgSpec> declared,
                         std::vector<std::pair<std::string, std::string>> required) {
    auto factory = [declared, required = std::move(required)](
                       const CommandRecord& r) -> Result<std::unique_ptr<Command>> {
        if (Result<void> ok = ArgReader(r).allowDeclared(declared); !ok) return Error(ok);
        for (const auto& [key, message] : required) {
            const Value* value = r.find(key);
            if (!value || !std::holds_alternative<std::string>(*value)) return fail(message);
        }
        return std::unique_ptr<Command>(std::make_unique<ParameterCommand>(r));
    };
    registry.add(std::move(name), std::move(description), std::move(declared), std::move(factory));
}

} // namespace

void registerParameterCommands(CommandRegistry& registry) {
    const ArgSpec name{"name", ArgType::String,
                       true,   "Letters, digits and _, starting with a letter (not a unit name).",
                       {},     ""};
    addParameterCommand(
        registry, "set_parameter",
        "Add a named parameter, or change one: an expression other values can use by name, e.g. "
        "panel_width = "
        "\"6in\", margin = \"0.25in\", hole_x = \"panel_width / 2 - margin\". Use names in any "
        "dimension or "
        "feature value (\"panel_width - 2 * margin\"); they follow when the parameter changes. "
        "Bare numbers in "
        "expressions with names are in the document's unit.",
        {name,
         {"expression",
          ArgType::String,
          true,
          "e.g. \"6in\", \"25\", \"panel_width / 2\"; angles and counts are plain numbers.",
          {},
          ""},
         {"comment", ArgType::String, false, "", {}, ""}},
        {{"name", "set_parameter: give the parameter's name."},
         {"expression",
          "set_parameter: give its expression, e.g. \"6in\" or \"panel_width / 2\"."}});
    addParameterCommand(registry, "rename_parameter",
                        "Rename a parameter; every expression that uses it follows.",
                        {name, {"to", ArgType::String, true, "The new name.", {}, ""}},
                        {{"name", "rename_parameter: give the name and the new name ('to')."},
                         {"to", "rename_parameter: give the name and the new name ('to')."}});
    addParameterCommand(registry, "delete_parameter",
                        "Delete a parameter (refused while anything uses it).", {name},
                        {{"name", "delete_parameter: give the parameter's name."}});
}

} // namespace cad
