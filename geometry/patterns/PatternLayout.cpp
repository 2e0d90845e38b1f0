// The copies' motions of the three pattern layouts, with the sentences that say
// which reference or value is wrong.
#include "geometry/patterns/PatternLayout.h"

#include "core/Document.h"
#include "geometry/param/FeatureReferences.h"
#include "geometry/param/ParamFeature.h"

#include <BRepAdaptor_CompCurve.hxx>
#include <GCPnts_AbscissaPoint.hxx>
#include <TopoDS.hxx>
#include <gp_Ax2.hxx>
#include <gp_Quaternion.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace cad::geometry {

namespace {

constexpr const char* kTooFew = "A pattern needs at least two copies.";

// A whole number of the parameters, held within what a pattern can use.
int countOf(const nlohmann::json& parameters, const char* key, int fallback) {
    const double value = parameterNumber(parameters, key, fallback);
    if (!std::isfinite(value)) return 0;
    return static_cast<int>(std::clamp(std::round(value), -1.0, kMaxPatternCopies + 1.0));
}

Result<void> checkTotal(long total) {
    if (total < 2) return fail(kTooFew);
    if (total > kMaxPatternCopies)
        return fail("That's too many copies for one pattern (at most " +
                    std::to_string(kMaxPatternCopies) + ").");
    return {};
}

Result<gp_Dir> directionOf(const Document& document, const std::string& reference,
                           const ReferenceContext& context, const char* missing) {
    if (splitReferenceList(reference).empty()) return fail(missing);
    Result<gp_Ax1> axis = straightAxis(document, reference, context);
    if (!axis) return Error(axis);
    return axis->Direction();
}

Result<std::vector<PatternCopy>> rectangular(const Document& document,
                                             const nlohmann::json& parameters,
                                             const ReferenceContext& context) {
    const int count = countOf(parameters, "count", 2);
    const int count2 = countOf(parameters, "count2", 1);
    if (count < 1 || count2 < 1) return fail(kTooFew);
    if (Result<void> ok = checkTotal(static_cast<long>(count) * count2); !ok) return Error(ok);

    gp_Vec step, step2;
    if (count > 1) {
        Result<gp_Dir> along = directionOf(document, parameterText(parameters, "direction"),
                                           context, "Pick the direction.");
        if (!along) return Error(along);
        const double spacing = parameterNumber(parameters, "spacing", 0);
        if (!std::isfinite(spacing) || std::abs(spacing) < 1e-9)
            return fail("The copies need a spacing between them.");
        step = gp_Vec(*along) * spacing;
    }
    if (count2 > 1) {
        Result<gp_Dir> along = directionOf(document, parameterText(parameters, "direction2"),
                                           context, "Pick the second direction.");
        if (!along) return Error(along);
        const double spacing = parameterNumber(parameters, "spacing2", 0);
        if (!std::isfinite(spacing) || std::abs(spacing) < 1e-9)
            return fail("The copies need a spacing along the second direction.");
        step2 = gp_Vec(*along) * spacing;
    }

    std::vector<PatternCopy> copies;
    for (int j = 0; j < count2; ++j) {
        for (int i = 0; i < count; ++i) {
            if (i == 0 && j == 0) continue;
            PatternCopy copy;
            copy.number = j * count + i + 1;
            copy.motion.SetTranslation(step * i + step2 * j);
            copies.push_back(copy);
        }
    }
    return copies;
}

Result<std::vector<PatternCopy>> circular(const Document& document,
                                          const nlohmann::json& parameters,
                                          const ReferenceContext& context) {
    const std::string reference = parameterText(parameters, "axis");
    if (splitReferenceList(reference).empty()) return fail("Pick the axis.");
    Result<ResolvedReference> resolved = resolveReference(document, reference, context);
    if (!resolved) return Error(resolved);
    if (!resolved->axis) return fail("'" + reference + "' isn't a straight line or axis.");

    const int count = countOf(parameters, "count", 2);
    if (Result<void> ok = checkTotal(count); !ok) return Error(ok);
    const double angle = parameterNumber(parameters, "angle", 360.0);
    if (!std::isfinite(angle) || std::abs(angle) < 1e-12)
        return fail("The angle must not be zero.");
    // All the way round, the last copy would land on the original: spread over count.
    const double step =
        std::abs(std::abs(angle) - 360.0) <= 1e-9 ? angle / count : angle / (count - 1);

    std::vector<PatternCopy> copies;
    for (int i = 1; i < count; ++i) {
        PatternCopy copy;
        copy.number = i + 1;
        copy.motion.SetRotation(*resolved->axis, i * step * std::numbers::pi / 180.0);
        copies.push_back(copy);
    }
    return copies;
}

Result<std::vector<PatternCopy>> alongPath(const Document& document,
                                           const nlohmann::json& parameters,
                                           const ReferenceContext& context,
                                           const gp_Pnt& reference) {
    const std::string path = parameterText(parameters, "path");
    if (splitReferenceList(path).empty()) return fail("Pick the path.");
    Result<TopoDS_Wire> wire = pathWire(document, path, context);
    if (!wire) return Error(wire);
    const int count = countOf(parameters, "count", 2);
    if (Result<void> ok = checkTotal(count); !ok) return Error(ok);

    BRepAdaptor_CompCurve curve(*wire);
    const double length = GCPnts_AbscissaPoint::Length(curve);
    double spacing = parameterNumber(parameters, "spacing", 0);
    if (!std::isfinite(spacing) || spacing <= 0) spacing = length / (count - 1);
    if ((count - 1) * spacing > length + 1e-6)
        return fail("The copies don't fit on the path at that spacing.");

    const double first = curve.FirstParameter(), last = curve.LastParameter();
    // The copies start from the end nearer what is repeated; the start wins a tie.
    const bool fromEnd =
        reference.Distance(curve.Value(last)) < reference.Distance(curve.Value(first));
    gp_Pnt p0;
    gp_Vec t0;
    curve.D1(fromEnd ? last : first, p0, t0);
    const bool follow = parameterFlag(parameters, "follow", true);

    std::vector<PatternCopy> copies;
    for (int i = 1; i < count; ++i) {
        const double s = fromEnd ? length - i * spacing : i * spacing;
        GCPnts_AbscissaPoint at(curve, std::clamp(s, 0.0, length), first);
        if (!at.IsDone()) return fail("Couldn't place a copy along the path.");
        gp_Pnt p;
        gp_Vec t;
        curve.D1(at.Parameter(), p, t);
        PatternCopy copy;
        copy.number = i + 1;
        copy.motion.SetTranslation(gp_Vec(p0, p));
        if (follow && t.Magnitude() >= 1e-12 && t0.Magnitude() >= 1e-12) {
            // Turned about P0 so the start's tangent lies along this one, then moved.
            gp_Quaternion rotation;
            rotation.SetRotation(t0, t);
            gp_Trsf turn, toOrigin;
            turn.SetRotation(rotation);
            toOrigin.SetTranslation(gp_Vec(p0, gp::Origin()));
            gp_Trsf toPoint;
            toPoint.SetTranslation(gp_Vec(gp::Origin(), p));
            copy.motion = toPoint * turn * toOrigin;
        }
        copies.push_back(copy);
    }
    return copies;
}

} // namespace

std::optional<PatternKind> parsePatternKind(const std::string& word) {
    if (word == "rectangular") return PatternKind::Rectangular;
    if (word == "circular") return PatternKind::Circular;
    if (word == "path") return PatternKind::Path;
    return std::nullopt;
}

const char* patternKindTitle(PatternKind kind) {
    switch (kind) {
    case PatternKind::Circular:
        return "Circular";
    case PatternKind::Path:
        return "Path";
    case PatternKind::Rectangular:
        break;
    }
    return "Rectangular";
}

Result<std::vector<PatternCopy>> patternCopies(const Document& document, PatternKind kind,
                                               const nlohmann::json& parameters,
                                               const ReferenceContext& context,
                                               const gp_Pnt& reference) {
    switch (kind) {
    case PatternKind::Circular:
        return circular(document, parameters, context);
    case PatternKind::Path:
        return alongPath(document, parameters, context, reference);
    case PatternKind::Rectangular:
        break;
    }
    return rectangular(document, parameters, context);
}

Result<gp_Trsf> mirrorMotion(const Document& document, const std::string& plane,
                             const ReferenceContext& context) {
    if (splitReferenceList(plane).empty()) return fail("Pick the mirror plane.");
    Result<ResolvedReference> resolved = resolveReference(document, plane, context);
    if (!resolved) return Error(resolved);
    const TopoDS_Shape& shape = resolved->shape;
    if (!resolved->plane || (!shape.IsNull() && shape.ShapeType() != TopAbs_FACE))
        return fail("'" + plane + "' isn't a plane or flat face.");
    gp_Trsf mirror;
    mirror.SetMirror(gp_Ax2(resolved->plane->Location(), resolved->plane->Direction()));
    return mirror;
}

} // namespace cad::geometry
