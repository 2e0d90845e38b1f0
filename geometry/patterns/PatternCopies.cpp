// Copy bodies of a pattern set: each a body of its own holding one PatternBody
// feature bound to the set, made, taken out, put back and rebuilt together.
#include "geometry/patterns/PatternCopies.h"

#include "core/GeometryObject.h"
#include "core/units/Expression.h"
#include "geometry/CommandSupport.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/CopiedShapes.h"
#include "geometry/patterns/PatternKinds.h"
#include "geometry/patterns/PatternLayout.h"
#include "geometry/patterns/PatternSetObject.h"

#include <BRep_Builder.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS_Compound.hxx>

namespace cad {

using namespace geometry;

FeatureArguments layoutReadTable() {
    FeatureArguments table = bodyPatternKeys();
    for (FeatureArgument& argument : table)
        if (argument.key == "pattern") argument.kind = FeatureArgument::Kind::Text;
    return table;
}

Result<void> checkPatternWord(const CommandRecord& record, const nlohmann::json& values,
                              bool required) {
    auto word = values.find("pattern");
    if (word == values.end()) {
        if (!required) return {};
        return fail(record.name + ": give the 'pattern' (rectangular, circular or path).");
    }
    if (!parsePatternKind(word->get<std::string>()))
        return fail(record.name + ": 'pattern' must be rectangular, circular or path.");
    return {};
}

void storeLayoutValues(const Document& document, const CommandRecord& record,
                       const nlohmann::json& given, nlohmann::json& layout) {
    for (const FeatureArgument& argument : layoutReadTable()) {
        auto value = given.find(argument.key);
        if (value == given.end()) continue;
        if (argument.kind == FeatureArgument::Kind::References && value->is_string())
            layout[argument.key] = referencesById(document, value->get<std::string>());
        else
            layout[argument.key] = *value;
        if (auto e = argumentExpression(argument, record.find(argument.key), document))
            units::setExpression(layout, argument.key, *e);
        else
            units::clearExpression(layout, argument.key);
    }
}

Result<std::vector<int>> copyNumbers(const Document& document, const nlohmann::json& layout) {
    std::optional<PatternKind> kind = parsePatternKind(parameterText(layout, "pattern"));
    if (!kind) return fail("A pattern is rectangular, circular or along a path.");
    const std::vector<std::string> sources = splitReferenceList(parameterText(layout, "bodies"));
    try {
        // A path pattern starts from the end nearer the sources.
        TopoDS_Compound all;
        BRep_Builder builder;
        builder.MakeCompound(all);
        for (const std::string& source : sources) {
            auto* body = document.findAs<GeometryObject>(source);
            if (!body) return fail("'" + source + "' isn't a body.");
            if (body->shape.isNull()) return fail(body->id + " is empty.");
            builder.Add(all, body->shape.shape());
        }
        Result<std::vector<PatternCopy>> copies =
            patternCopies(document, *kind, layout, ReferenceContext{}, centreOf(all));
        if (!copies) return Error(copies);
        if (copies->size() * sources.size() > kMaxBodyCopies)
            return fail("That's too many copies for one pattern (at most " +
                        std::to_string(kMaxBodyCopies) + " bodies).");
        std::vector<int> numbers;
        for (const PatternCopy& copy : *copies) numbers.push_back(copy.number);
        return numbers;
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel couldn't lay the pattern out.");
    }
}

nlohmann::json copyParameters(const nlohmann::json& layout, const std::string& source,
                              const std::string& setId, int number) {
    nlohmann::json parameters = layout;
    parameters["bodies"] = source;
    parameters["set"] = setId;
    parameters["copy"] = number;
    return parameters;
}

ParamFeature* copyFeature(const Document& document, const GeometryObject& body) {
    for (const std::string& id : body.features) {
        auto* feature = dynamic_cast<ParamFeature*>(document.find(id));
        if (feature && feature->typeId == "PatternBody") return feature;
    }
    return nullptr;
}

GeometryObject& addCopy(Document& document, const PatternSetObject& set, const std::string& source,
                        int number, std::vector<std::uint64_t>& added) {
    const DocumentObject* original = document.find(source);
    const std::string base =
        (original ? original->displayName() : source) + " (" + std::to_string(number) + ")";
    std::string label = base;
    for (int n = 2; nameTaken(document, label); ++n) label = base + " " + std::to_string(n);

    auto body = std::make_unique<GeometryObject>();
    body->id = document.nextId("Body");
    body->label = label;
    auto* made = static_cast<GeometryObject*>(document.add(std::move(body)));
    added.push_back(made->serial);

    auto feature = std::make_unique<ParamFeature>();
    feature->typeId = "PatternBody";
    feature->id = document.nextId("Pattern");
    feature->parameters = copyParameters(set.parameters, source, set.id, number);
    made->features.push_back(feature->id);
    added.push_back(document.add(std::move(feature))->serial);
    return *made;
}

void takeOut(Document& document, const std::vector<std::uint64_t>& serials,
             std::vector<Document::Taken>& into) {
    for (auto it = serials.rbegin(); it != serials.rend(); ++it) {
        Document::Taken taken = document.take(*it);
        if (taken.object) into.push_back(std::move(taken));
    }
}

void putBack(Document& document, std::vector<Document::Taken>& taken) {
    for (auto it = taken.rbegin(); it != taken.rend(); ++it)
        if (it->object) document.add(std::move(it->object), it->index);
    taken.clear();
}

std::string rebuildCopies(Document& document, const PatternSetObject& set,
                          std::string* ownFailure) {
    std::string failure;
    for (const std::string& id : set.copies) {
        auto* body = dynamic_cast<GeometryObject*>(document.find(id));
        if (!body) continue;
        Result<void> rebuilt = document.rebuildBody(*body);
        if (!rebuilt && failure.empty()) failure = rebuilt.error();
        const ParamFeature* own = copyFeature(document, *body);
        if (ownFailure && ownFailure->empty() && own && !own->error.empty())
            *ownFailure = own->error;
        document.notifyChanged(*body);
    }
    document.notifyChanged(set);
    return failure;
}

} // namespace cad
