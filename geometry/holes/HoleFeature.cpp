// The hole feature's compute: the resolved hole, one tool per sketch point (with a
// modeled thread's ridge when asked), all cut from the body in one boolean.
#include "geometry/holes/HoleFeature.h"

#include "core/Document.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/holes/HoleTool.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchReference.h"

#include <BRepGProp.hxx>
#include <BRep_Builder.hxx>
#include <GProp_GProps.hxx>
#include <Standard_Failure.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>

#include <cmath>

namespace cad {

using geometry::NamedShape;

Result<std::vector<std::pair<std::string, Point2>>>
sketchHolePoints(const SketchObject& sketch, const std::vector<std::string>& names) {
    std::vector<std::pair<std::string, Point2>> found;
    auto keep = [&](std::string name, Point2 at) {
        for (const auto& [other, where] : found)
            if (std::hypot(where.x - at.x, where.y - at.y) <= 1e-7) return;
        found.emplace_back(std::move(name), at);
    };
    if (names.empty()) {
        for (const SketchEntity& e : sketch.entities) {
            if (e.construction) continue;
            if (auto* point = std::get_if<SketchPoint>(&e.geometry)) keep(e.id, point->position);
            if (auto* circle = std::get_if<SketchCircle>(&e.geometry)) keep(e.id, circle->center);
        }
        if (found.empty()) return fail(sketch.id + " has no points to put holes at.");
        return found;
    }
    for (const std::string& name : names) {
        std::optional<SketchRef> ref = parseReference(name);
        Result<ResolvedRef> resolved =
            ref ? resolveReference(*ref, sketch.entities) : Result<ResolvedRef>(Error{});
        if (resolved && resolved->kind == ResolvedRef::Point)
            keep(name, pointAt(*resolved, sketch.entities));
        else if (resolved && resolved->kind == ResolvedRef::Circle)
            keep(name, circleAt(*resolved, sketch.entities).first);
        else
            return fail(sketch.id + " has no point or circle '" + name + "'");
    }
    return found;
}

std::vector<std::string> HoleFeature::references() const {
    if (sketch.empty()) return {};
    return {sketch};
}

Result<std::vector<HoleFeature::Placement>>
HoleFeature::placements(const Document& document) const {
    auto* owner = dynamic_cast<const SketchObject*>(document.findByName(sketch));
    if (!owner) return fail("The sketch '" + sketch + "' no longer exists.");
    auto found = sketchHolePoints(*owner, points);
    if (!found) return Error(found);
    // Into the face is against the sketch normal (a face sketch's normal points out).
    gp_Dir direction(owner->normal[0], owner->normal[1], owner->normal[2]);
    if (!flip) direction.Reverse();
    std::vector<Placement> out;
    for (const auto& [name, at] : *found) {
        const Vec3 p = owner->toModel(at);
        out.push_back({name, gp_Ax1(gp_Pnt(p[0], p[1], p[2]), direction)});
    }
    return out;
}

namespace {

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

} // namespace

Result<NamedShape> HoleFeature::apply(const NamedShape& input, const Document& document) const {
    if (input.isNull()) return fail("Holes need a body to cut into.");
    Result<ResolvedHole> drill = resolveHole(options);
    if (!drill) return Error(drill);
    if (Result<void> ok = checkResolvedHole(*drill); !ok) return Error(ok);
    Result<std::vector<Placement>> places = placements(document);
    if (!places) return Error(places);
    if (places->empty()) return fail("There's nowhere to put a hole: the sketch has no points.");

    try {
        TopoDS_Compound all;
        BRep_Builder builder;
        builder.MakeCompound(all);
        NamedShape tools;
        for (const Placement& place : *places) {
            const double depth =
                drill->through ? throughDepth(input.shape(), place.axis, *drill) : drill->depth;
            Result<NamedShape> tool = holeTool(*drill, place.axis, depth, id);
            if (!tool) return tool;
            if (drill->modeled) {
                tool = threadedHoleTool(*tool, *drill, place.axis, depth, id, place.point);
                if (!tool) return tool;
            }
            builder.Add(all, tool->shape());
            for (const geometry::NamingEntry& entry : tool->entries())
                tools.addName(entry.subShape, entry.name, entry.tag);
        }
        tools.setShape(all);
        // One tool is the solid itself, so the boolean sees exactly what was built.
        if (places->size() == 1) {
            TopoDS_Iterator only(all);
            tools.setShape(only.Value());
        }

        Result<NamedShape> cut = geometry::shapeBoolean(
            input, tools, geometry::BooleanKind::Cut, geometry::kKernelAttemptLimit,
            drill->modeled ? geometry::MergeFaces::No : geometry::MergeFaces::Yes);
        if (!cut) return cut;
        if (drill->modeled && std::abs(volumeOf(cut->shape()) - volumeOf(input.shape())) <= 1e-6)
            return fail("The thread couldn't be cut into the hole.");
        return cut;
    } catch (const Standard_Failure&) {
        return fail("The hole's shape couldn't be built; check its sizes.");
    }
}

} // namespace cad
