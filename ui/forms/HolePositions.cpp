// The hole panel's positions: what a click keeps, how clicked points are written
// ("<face>@x,y,z", numbers independent of the locale), read back, turned into a
// sketch on the face, and into the axes the holes are drilled along.
#include "ui/forms/HolePositions.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/Format.h"
#include "geometry/References.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/ThreadSizes.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchPlaneResolver.h"
#include "sketch/SketchReference.h"
#include "ui/presentation/ReferencePicker.h"

#include <algorithm>
#include <charconv>

namespace cad::ui {

namespace {

const std::string kWhere = "Pick where the holes go: a sketch's points, or click a flat face.";

// "<face>@x,y,z" split into the face and the point; nothing for other positions.
std::optional<std::pair<std::string, gp_Pnt>> splitClick(const std::string& position) {
    const std::size_t at = position.rfind('@');
    if (at == std::string::npos) return std::nullopt;
    std::array<double, 3> xyz{};
    const char* p = position.data() + at + 1;
    const char* end = position.data() + position.size();
    for (std::size_t i = 0; i < 3; ++i) {
        const auto [next, error] = std::from_chars(p, end, xyz[i]);
        if (error != std::errc()) return std::nullopt;
        p = next;
        if (i < 2) {
            if (p == end || *p != ',') return std::nullopt;
            ++p;
        }
    }
    if (p != end) return std::nullopt;
    return std::pair{position.substr(0, at), gp_Pnt(xyz[0], xyz[1], xyz[2])};
}

Result<PlaneFrame> facePlane(const Document& document, const std::string& face) {
    const SketchPlaneResolver* resolver = sketchPlaneResolver();
    if (!resolver) return fail("Flat faces can't be told from others here.");
    return resolver->planeOf(document, face);
}

gp_Dir direction(const Vec3& v) { return gp_Dir(v[0], v[1], v[2]); }

} // namespace

Result<std::string> holePosition(const Document& document, const std::string& reference) {
    const std::string head = geometry::objectPart(reference);
    if (const auto* sketch = document.findAs<SketchObject>(head)) {
        const std::size_t slash = reference.find('/');
        if (slash == std::string::npos) return sketch->id;
        const std::string piece = reference.substr(slash + 1);
        std::optional<SketchRef> ref = parseReference(piece);
        Result<ResolvedRef> resolved =
            ref ? resolveReference(*ref, sketch->entities) : Result<ResolvedRef>(Error{});
        if (resolved &&
            (resolved->kind == ResolvedRef::Point || resolved->kind == ResolvedRef::Circle) &&
            resolved->entity >= 0)
            return sketch->id + "/" + piece;
        return sketch->id; // a line or a region stands for all of the sketch's points
    }
    if (document.findAs<GeometryObject>(head) && reference.find('/') != std::string::npos)
        return fail("Click the face where the hole goes.");
    return fail(referenceLabel(document, reference).toStdString() +
                " can't place a hole: pick a sketch's points, or click a flat face.");
}

Result<std::string> holePositionAt(const Document& document, const std::string& reference,
                                   const std::array<double, 3>& point) {
    const std::string head = geometry::objectPart(reference);
    if (!document.findAs<GeometryObject>(head) || reference.find('/') == std::string::npos)
        return holePosition(document, reference);
    if (!facePlane(document, reference))
        return fail(referenceLabel(document, reference).toStdString() +
                    " isn't flat: holes go on flat faces.");
    std::string position = reference + "@";
    for (std::size_t i = 0; i < 3; ++i) position += (i ? "," : "") + formatGeneral(point[i], 10);
    return position;
}

QString holePositionLabel(const Document& document, const std::string& position) {
    if (auto click = splitClick(position)) {
        const units::Length unit = document.lengthUnit();
        const auto text = [unit](double v) {
            return QString::fromStdString(units::formatLength(v, unit, false, 2));
        };
        const gp_Pnt& p = click->second;
        return QStringLiteral("%1 at %2, %3, %4")
            .arg(referenceLabel(document, click->first), text(p.X()), text(p.Y()), text(p.Z()));
    }
    return referenceLabel(document, position);
}

Result<HolePlacement> readHolePositions(const Document& document,
                                        const std::vector<std::string>& positions) {
    HolePlacement placement;
    bool wholeSketch = false;
    for (const std::string& position : positions) {
        if (auto click = splitClick(position)) {
            if (!placement.face.empty() && placement.face != click->first)
                return fail("Clicked holes go on one face at a time.");
            placement.face = click->first;
            placement.clicks.push_back(click->second);
            continue;
        }
        const std::string sketch = geometry::objectPart(position);
        if (!document.findAs<SketchObject>(sketch))
            return fail("The sketch '" + sketch + "' no longer exists.");
        if (!placement.sketch.empty() && placement.sketch != sketch)
            return fail("Holes go at the points of one sketch at a time.");
        placement.sketch = sketch;
        if (position.find('/') == std::string::npos)
            wholeSketch = true;
        else
            placement.points.push_back(position.substr(position.find('/') + 1));
    }
    if (!placement.face.empty() && !placement.sketch.empty())
        return fail("Holes go either at a sketch's points or where a face was clicked, not "
                    "both.");
    if (placement.face.empty() && placement.sketch.empty()) return fail(kWhere);
    if (wholeSketch) placement.points.clear();
    return placement;
}

Result<std::vector<CommandRecord>>
faceSketchCommands(const Document& document, const HolePlacement& placement, std::string& sketch) {
    Result<PlaneFrame> frame = facePlane(document, placement.face);
    if (!frame) return Error(frame);
    // The sketch the command makes takes the next free name, as it does here.
    sketch = document.nextId("Sketch");
    std::vector<CommandRecord> records;
    records.push_back(CommandRecord("create_sketch").set("on", placement.face.c_str()));
    const gp_Pnt origin(frame->origin[0], frame->origin[1], frame->origin[2]);
    const gp_Dir x = direction(frame->xDirection);
    const gp_Dir y = direction(frame->yDirection());
    for (const gp_Pnt& click : placement.clicks) {
        const gp_Vec offset(origin, click);
        records.push_back(CommandRecord("add_point")
                              .set("sketch", sketch.c_str())
                              .set("x", offset.Dot(gp_Vec(x)))
                              .set("y", offset.Dot(gp_Vec(y))));
    }
    return records;
}

Result<std::vector<gp_Ax1>> holeAxes(const Document& document, const HolePlacement& placement,
                                     bool flip) {
    std::vector<gp_Ax1> axes;
    if (!placement.face.empty()) {
        Result<PlaneFrame> frame = facePlane(document, placement.face);
        if (!frame) return Error(frame);
        // Into the face is against its outward normal.
        const gp_Dir normal = direction(frame->normal);
        for (const gp_Pnt& click : placement.clicks)
            axes.emplace_back(click, flip ? normal : normal.Reversed());
        return axes;
    }
    HoleFeature holes;
    holes.sketch = placement.sketch;
    holes.points = placement.points;
    holes.flip = flip;
    Result<std::vector<HoleFeature::Placement>> places = holes.placements(document);
    if (!places) return Error(places);
    for (const HoleFeature::Placement& place : *places) axes.push_back(place.axis);
    return axes;
}

} // namespace cad::ui
