// Turns clicked and selected references into what a reference row takes: origin
// items, planes, sketch curves, regions and points, body pieces, or the whole
// sketch, body or feature they stand for; anything else gets a sentence.
#include "ui/forms/ArgumentPicks.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/References.h"
#include "geometry/param/FeatureArgument.h"
#include "geometry/planes/PlaneObject.h"
#include "sketch/SketchObject.h"
#include "ui/presentation/ReferencePicker.h"

#include <TopAbs_ShapeEnum.hxx>

#include <algorithm>
#include <utility>

namespace cad::ui {

namespace {

using Pick = FeatureArgument::Pick;

bool takes(std::uint32_t picks, Pick pick) { return (picks & pick) != 0; }

// The words a refusal lists for what a row takes, in the flags' order.
QString acceptedWords(std::uint32_t picks) {
    static const std::pair<Pick, const char*> words[] = {
        {Pick::Faces, "a face"},
        {Pick::Edges, "an edge"},
        {Pick::Vertices, "a point"},
        {Pick::SketchCurves, "a sketch curve"},
        {Pick::Regions, "a closed region"},
        {Pick::Planes, "a plane"},
        {Pick::Axes, "an axis"},
        {Pick::Bodies, "a body"},
        {Pick::Sketches, "a sketch"},
        {Pick::Features, "a face a feature made"},
    };
    QStringList listed;
    for (const auto& [pick, word] : words)
        if (takes(picks, pick)) listed << QString::fromLatin1(word);
    if (listed.size() < 2) return listed.join(QString());
    const QString last = listed.takeLast();
    return listed.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
}

Result<TakenReference> refuse(const Document& document, const std::string& reference,
                              std::uint32_t picks, const QString& what) {
    return fail(QStringLiteral("%1 can't be the %2: pick %3.")
                    .arg(referenceLabel(document, reference), what, acceptedWords(picks))
                    .toStdString());
}

// The feature whose name a body's face carries ("Extrude2" of "Extrude2.side.Line1").
const FeatureObject* featureOfFace(const Document& document, std::string_view face) {
    const std::size_t end = face.find_first_of(".[(");
    const std::string id(trimmed(face.substr(0, end)));
    return dynamic_cast<const FeatureObject*>(document.find(id));
}

// A piece of a body: kept as the piece, or the feature that made a face, or the body.
Result<TakenReference> takeBodyPiece(const Document& document, const GeometryObject& body,
                                     const std::string& reference, std::string_view piece,
                                     std::uint32_t picks, const QString& what) {
    const std::string kept = body.id + "/" + std::string(piece);
    Result<geometry::ResolvedReference> resolved = geometry::resolveReference(document, kept);
    const TopAbs_ShapeEnum type =
        resolved && !resolved->shape.IsNull() ? resolved->shape.ShapeType() : TopAbs_SHAPE;
    if ((type == TopAbs_FACE && takes(picks, Pick::Faces)) ||
        (type == TopAbs_EDGE && takes(picks, Pick::Edges)) ||
        (type == TopAbs_VERTEX && takes(picks, Pick::Vertices)))
        return TakenReference{kept, true};
    if (type == TopAbs_FACE && takes(picks, Pick::Features)) {
        if (const FeatureObject* feature = featureOfFace(document, piece))
            return TakenReference{feature->id, false};
        if (!takes(picks, Pick::Bodies))
            return fail(QStringLiteral("%1 wasn't made by a feature: click a face a feature made.")
                            .arg(referenceLabel(document, reference))
                            .toStdString());
    }
    if (takes(picks, Pick::Bodies)) return TakenReference{body.id, false};
    return refuse(document, reference, picks, what);
}

// A piece of a sketch: a region, a curve or a point as it is, else the whole sketch.
Result<TakenReference> takeSketchPiece(const Document& document, const SketchObject& sketch,
                                       const std::string& reference, std::string_view piece,
                                       std::uint32_t picks, const QString& what) {
    const std::string kept = sketch.id + "/" + std::string(piece);
    if (piece.starts_with("Region(")) {
        if (takes(picks, Pick::Regions)) return TakenReference{kept, true};
    } else {
        Result<geometry::ResolvedReference> resolved = geometry::resolveReference(document, kept);
        const bool point =
            resolved && !resolved->shape.IsNull() && resolved->shape.ShapeType() == TopAbs_VERTEX;
        if (takes(picks, point ? Pick::Vertices : Pick::SketchCurves))
            return TakenReference{kept, true};
    }
    if (takes(picks, Pick::Sketches)) return TakenReference{sketch.id, false};
    return refuse(document, reference, picks, what);
}

// A whole object named alone: a body, sketch, feature or reference plane.
Result<TakenReference> takeObject(const Document& document, const DocumentObject& object,
                                  const std::string& reference, std::uint32_t picks,
                                  const QString& what) {
    if (dynamic_cast<const GeometryObject*>(&object) && takes(picks, Pick::Bodies))
        return TakenReference{object.id, true};
    if (dynamic_cast<const SketchObject*>(&object) && takes(picks, Pick::Sketches))
        return TakenReference{object.id, true};
    if (dynamic_cast<const PlaneObject*>(&object) && takes(picks, Pick::Planes))
        return TakenReference{object.id, true};
    if (dynamic_cast<const FeatureObject*>(&object)) {
        if (takes(picks, Pick::Features)) return TakenReference{object.id, true};
        if (const GeometryObject* body = document.bodyOfFeature(object.id);
            body && takes(picks, Pick::Bodies))
            return TakenReference{body->id, false};
    }
    return refuse(document, reference, picks, what);
}

} // namespace

std::uint32_t pickKindsFor(std::uint32_t picks) {
    std::uint32_t kinds = 0;
    if (takes(picks, Pick::Faces) || takes(picks, Pick::Features)) kinds |= PickFace;
    if (takes(picks, Pick::Edges)) kinds |= PickEdge;
    if (takes(picks, Pick::Vertices)) kinds |= PickVertex | PickSketchEntity;
    if (takes(picks, Pick::SketchCurves)) kinds |= PickSketchEntity;
    if (takes(picks, Pick::Regions)) kinds |= PickRegion;
    if (takes(picks, Pick::Planes)) kinds |= PickPlane;
    if (takes(picks, Pick::Axes)) kinds |= PickAxis;
    if (takes(picks, Pick::Bodies)) kinds |= PickFace | PickEdge | PickVertex;
    if (takes(picks, Pick::Sketches)) kinds |= PickSketchEntity | PickRegion;
    return kinds;
}

Result<TakenReference> takeReference(const Document& document, const std::string& reference,
                                     std::uint32_t picks, const QString& what) {
    const std::string text(trimmed(reference));
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos && geometry::objectPart(text).empty()) {
        // An origin item: a plane, an axis or the origin point.
        Result<geometry::ResolvedReference> origin = geometry::resolveReference(document, text);
        if (origin && origin->plane && takes(picks, Pick::Planes))
            return TakenReference{text, true};
        if (origin && origin->axis && takes(picks, Pick::Axes)) return TakenReference{text, true};
        if (origin && !origin->plane && !origin->axis && origin->point &&
            takes(picks, Pick::Vertices))
            return TakenReference{text, true};
        return refuse(document, text, picks, what);
    }
    const std::string head = geometry::objectPart(text);
    const DocumentObject* object = document.findByName(head);
    if (!object) return refuse(document, text, picks, what);
    if (slash == std::string::npos) return takeObject(document, *object, text, picks, what);
    const std::string_view piece = trimmed(std::string_view(text).substr(slash + 1));
    if (const auto* body = dynamic_cast<const GeometryObject*>(object))
        return takeBodyPiece(document, *body, text, piece, picks, what);
    if (const auto* sketch = dynamic_cast<const SketchObject*>(object))
        return takeSketchPiece(document, *sketch, text, piece, picks, what);
    return refuse(document, text, picks, what);
}

PickRule pickRuleFor(const Document& document, std::uint32_t picks, const QString& what,
                     bool multiple, bool required, const QString& prompt) {
    PickRule rule;
    rule.kinds = pickKindsFor(picks);
    rule.multiple = multiple;
    rule.required = required;
    rule.prompt = prompt;
    rule.accept = [&document, picks, what](const std::string& reference) -> Result<std::string> {
        Result<TakenReference> taken = takeReference(document, reference, picks, what);
        if (!taken) return Error(taken);
        return taken->reference;
    };
    return rule;
}

bool takesSeveral(const FeatureArgument& argument) {
    return argument.kind == FeatureArgument::Kind::References &&
           argument.description.find("separated by ';'") != std::string::npos;
}

PickRule argumentPickRule(const Document& document, const FeatureArgument& argument) {
    return pickRuleFor(document, argument.picks, QString::fromStdString(argument.label).toLower(),
                       takesSeveral(argument), argument.required);
}

std::map<QString, std::vector<std::string>>
fillFromSelection(const Document& document, const std::vector<PickSlot>& pickSlots,
                  const std::vector<std::string>& selection) {
    std::map<QString, std::vector<std::string>> filled;
    const auto place = [&](const std::string& reference, bool asIsOnly) {
        for (const PickSlot& slot : pickSlots) {
            std::vector<std::string>& taken = filled[slot.key];
            if (!slot.multiple && !taken.empty()) continue;
            Result<TakenReference> kept = takeReference(document, reference, slot.picks, {});
            if (!kept || (asIsOnly && !kept->asIs)) continue;
            if (std::find(taken.begin(), taken.end(), kept->reference) == taken.end())
                taken.push_back(kept->reference);
            return true;
        }
        return false;
    };
    for (const std::string& reference : selection)
        if (!place(reference, true)) place(reference, false);
    std::erase_if(filled, [](const auto& entry) { return entry.second.empty(); });
    return filled;
}

} // namespace cad::ui
