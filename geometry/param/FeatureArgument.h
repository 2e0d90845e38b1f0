// One row of a parametric feature's argument table: what the form shows, what the
// agent tool says, the JSON key it fills and how its value is read. The table is
// the one source of a feature command's schema, its form and its parsing.
#pragma once

#include "core/CommandRecord.h"
#include "core/CommandRegistry.h"
#include "core/Result.h"
#include "core/units/Expression.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class Document;

struct FeatureArgument {
    enum class Kind {
        Length = 0,     // mm; text may carry units or parameter names
        Angle = 1,      // degrees
        Number = 2,     // a plain number
        Integer = 3,    // a whole number
        Bool = 4,       // true or false
        Text = 5,       // free text
        References = 6, // references separated by ';' ("Sketch1; Body1/Extrude1.end")
        Choice = 7,     // one of `choices`
    };

    // What a click in the view may give a reference argument; combine with |.
    enum Pick : std::uint32_t {
        Faces = 1u << 0,
        Edges = 1u << 1,
        Vertices = 1u << 2,     // body vertices and sketch points
        SketchCurves = 1u << 3, // lines, arcs, circles of a sketch
        Regions = 1u << 4,      // a sketch's closed regions
        Planes = 1u << 5,       // origin and reference planes
        Axes = 1u << 6,         // the origin's axes
        Bodies = 1u << 7,       // a click anywhere on a body names the body
        Sketches = 1u << 8,     // a click on a sketch names the sketch
        Features = 1u << 9,     // a click on a face names the feature that made it
    };

    std::string label;       // the form's text: "Angle"
    std::string description; // the tool's text: "Degrees (default 360); ..."
    std::string key;         // the JSON key and the command argument: "angle"
    Kind kind = Kind::Text;
    bool required = false;
    std::vector<std::string> choices; // Choice: the allowed words, in table order
    nlohmann::json fallback;          // the value a new feature takes when not given; null: none
    // For an argument that names one object as a whole: "sketch", "body", "feature";
    // the registry rewrites such names to IDs.
    std::string refersTo;
    // References (and whole-object names): what may be clicked for it in a form.
    std::uint32_t picks = 0;
};

using FeatureArguments = std::vector<FeatureArgument>;

// Whether values of this kind are numbers that may follow an expression.
bool isNumeric(FeatureArgument::Kind kind);

// The declared argument the registry and the tool schema use.
ArgSpec toArgSpec(const FeatureArgument& argument);
std::vector<ArgSpec> toArgSpecs(const FeatureArguments& arguments);

// Reads the table's keys from the record into a JSON object (only the keys given).
// An argument not in `accepted` (every argument the command takes, in its schema's
// order) is refused naming them all; with `requireAll`, a missing required key too.
Result<nlohmann::json> readFeatureValues(const CommandRecord& record, const FeatureArguments& table,
                                         const std::vector<std::string>& accepted, bool requireAll);

// The expression a numeric argument follows when it was typed with names in it.
std::optional<units::Expression> argumentExpression(const FeatureArgument& argument,
                                                    const Value* given, const Document& document);

// A ';'-separated reference list with every object named by its ID, so renaming the
// objects later breaks nothing; names that match nothing stay as given.
std::string referencesById(const Document& document, const std::string& list);

} // namespace cad
