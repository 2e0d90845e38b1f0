// The extrude feature's compute: profile, optional thin wall, direction and extent,
// the prisms, then the boolean with the body.
#include "geometry/ExtrudeFeature.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/ExpressionNames.h"
#include "geometry/ExtrudeProfile.h"
#include "geometry/References.h"
#include "geometry/ResolveProfile.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/SketchRegions.h"
#include "geometry/ThinWall.h"
#include "sketch/SketchObject.h"

#include <BRepAdaptor_Surface.hxx>
#include <Standard_Failure.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>

namespace cad {

using namespace geometry;

std::optional<ExtrudeOperation> parseExtrudeOperation(std::string_view text) {
    if (text == "new_body") return ExtrudeOperation::NewBody;
    if (text == "join") return ExtrudeOperation::Join;
    if (text == "cut") return ExtrudeOperation::Cut;
    return std::nullopt;
}

std::string_view extrudeOperationName(ExtrudeOperation operation) {
    switch (operation) {
    case ExtrudeOperation::Join:
        return "join";
    case ExtrudeOperation::Cut:
        return "cut";
    case ExtrudeOperation::NewBody:
        break;
    }
    return "new_body";
}

std::vector<std::string> ExtrudeFeature::references() const {
    std::vector<std::string> out;
    for (const std::string& reference : splitReferenceList(profile)) {
        std::string head = objectPart(reference);
        if (!head.empty() && std::find(out.begin(), out.end(), head) == out.end())
            out.push_back(std::move(head));
    }
    return out;
}

namespace {

const SketchObject* sketchOf(const Document& document, const std::string& reference) {
    std::string head = objectPart(reference);
    return head.empty() ? nullptr : dynamic_cast<const SketchObject*>(document.findByName(head));
}

gp_Dir toDir(const Vec3& v) { return gp_Dir(v[0], v[1], v[2]); }

} // namespace

Result<NamedShape> ExtrudeFeature::tool(const Document& document) const {
    const std::vector<std::string> references = splitReferenceList(profile);
    if (references.size() == 1 && references.front().find('/') == std::string::npos &&
        !document.findByName(references.front()))
        return fail("The sketch '" + profile + "' no longer exists.");

    ReferenceContext context;
    context.featureId = id;
    if (const GeometryObject* body = document.bodyOfFeature(id)) context.bodyId = body->id;
    Result<Profile> resolved = resolveProfile(document, references, context);

    // Along the first sketch's normal, or the first face's outward normal.
    gp_Dir normal;
    const SketchObject* first =
        references.empty() ? nullptr : sketchOf(document, references.front());
    if (first) {
        normal = toDir(first->normal);
    } else {
        if (!resolved) return Error(resolved);
        const TopoDS_Face& face = resolved->faces.front();
        BRepAdaptor_Surface surface(face, false);
        if (surface.GetType() != GeomAbs_Plane) return fail("A face to extrude must be flat.");
        gp_Ax3 position = surface.Plane().Position();
        normal = position.Direct() ? position.Direction() : position.Direction().Reversed();
        if (face.Orientation() == TopAbs_REVERSED) normal.Reverse();
    }

    Profile faces;
    if (thickness > 0) {
        std::vector<NamedEdge> chains, curves;
        std::vector<const SketchObject*> seen;
        for (const std::string& reference : references) {
            const SketchObject* sketch = sketchOf(document, reference);
            if (!sketch || std::find(seen.begin(), seen.end(), sketch) != seen.end()) continue;
            seen.push_back(sketch);
            std::vector<NamedEdge> edges = sketchEdges(*sketch);
            if (Result<std::vector<NamedEdge>> open = openCurves(sketchPlane(*sketch), edges))
                chains.insert(chains.end(), open->begin(), open->end());
            curves.insert(curves.end(), edges.begin(), edges.end());
        }
        if (!resolved && chains.empty()) return Error(resolved);
        const gp_Ax3 plane = seen.empty() ? gp_Ax3() : sketchPlane(*seen.front());
        Result<Profile> wall = makeThinWall(plane, resolved ? *resolved : Profile{}, chains,
                                            thickness, parseThinSide(thinSide), curves);
        if (!wall) return Error(wall);
        faces = std::move(wall).value();
    } else {
        if (!resolved) return Error(resolved);
        faces = std::move(resolved).value();
    }

    const gp_Vec n = distance < 0 ? gp_Vec(normal.Reversed()) : gp_Vec(normal);
    const double d = std::abs(distance);
    gp_Vec vector = gp_Vec(normal) * distance;
    gp_Vec offset;
    if (extent == "symmetric") {
        offset = n * (-d / 2);
        vector = n * d;
    } else if (extent == "two_sides" && std::abs(distance2) > 1e-7) {
        offset = n * (-std::abs(distance2));
        vector = n * (d + std::abs(distance2));
    }
    return extrudeProfile(faces, vector, id, offset);
}

Result<NamedShape> ExtrudeFeature::apply(const NamedShape& input, const Document& document) const {
    try {
        Result<NamedShape> made = tool(document);
        if (!made) return made;
        switch (operation) {
        case ExtrudeOperation::Join:
            return shapeBoolean(input, *made, BooleanKind::Join);
        case ExtrudeOperation::Cut:
            return shapeBoolean(input, *made, BooleanKind::Cut);
        case ExtrudeOperation::NewBody:
            break;
        }
        // A new body starts from nothing; should it meet a shape anyway, keep both.
        if (input.isNull()) return made;
        return shapeBoolean(input, *made, BooleanKind::Join);
    } catch (const Standard_Failure&) {
        return fail("The geometry kernel could not extrude a profile.");
    }
}

namespace {

// What re-evaluating can change, kept to be put back exactly.
struct ExtrudeValues {
    double distance = 0, distance2 = 0, thickness = 0;
    std::map<std::string, units::Expression> expressions;
};

} // namespace

std::vector<std::pair<std::string, units::Expression>> ExtrudeFeature::valueExpressions() const {
    return {expressions.begin(), expressions.end()};
}

void ExtrudeFeature::renameInExpressions(std::string_view from, std::string_view to) {
    for (auto& [key, expression] : expressions)
        expression.text = units::renameInExpression(expression.text, from, to);
}

bool ExtrudeFeature::reevaluateExpressions(std::vector<std::string>& problems) {
    bool changed = false;
    for (auto& [key, expression] : expressions) {
        double* value = key == "distance"    ? &distance
                        : key == "distance2" ? &distance2
                        : key == "thickness" ? &thickness
                                             : nullptr;
        if (!value) continue;
        Result<double> evaluated = units::evaluate(expression);
        if (!evaluated) {
            problems.push_back(id + "." + key + ": " + evaluated.error());
            continue;
        }
        if (std::abs(*evaluated - *value) > 1e-12) {
            *value = *evaluated;
            changed = true;
        }
    }
    return changed;
}

std::any ExtrudeFeature::valuesSnapshot() const {
    return ExtrudeValues{distance, distance2, thickness, expressions};
}

void ExtrudeFeature::restoreValues(const std::any& snapshot) {
    const auto* values = std::any_cast<ExtrudeValues>(&snapshot);
    if (!values) return;
    distance = values->distance;
    distance2 = values->distance2;
    thickness = values->thickness;
    expressions = values->expressions;
}

} // namespace cad
