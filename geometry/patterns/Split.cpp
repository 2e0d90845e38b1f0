// The split itself: the kernel's splitter with the grown tool, the solids it leaves
// sorted to the places asked for, and the faces the tool made named "<split>.split".
#include "geometry/patterns/Split.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/NameHistory.h"
#include "geometry/Naming.h"
#include "geometry/ShapeBoolean.h"
#include "geometry/param/ParamFeature.h"
#include "geometry/patterns/CopiedShapes.h"
#include "geometry/patterns/SplitTool.h"

#include <BRepAlgoAPI_Splitter.hxx>
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>

#include <charconv>
#include <cmath>
#include <limits>

namespace cad {

using namespace geometry;

namespace {

constexpr const char* kNotThere = "No piece of the split is where this one should be.";

double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

std::size_t nearest(const std::vector<gp_Pnt>& places, const gp_Pnt& point) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < places.size(); ++i)
        if (places[i].Distance(point) < places[best].Distance(point)) best = i;
    return best;
}

Result<std::vector<gp_Pnt>> pointsOf(const std::string& list) {
    std::vector<gp_Pnt> points;
    for (const std::string& item : splitReferenceList(list)) {
        Result<gp_Pnt> point = pointOf(item);
        if (!point) return Error(point);
        points.push_back(*point);
    }
    return points;
}

// The pieces of one place joined into one shape.
Result<NamedShape> joined(std::vector<NamedShape> pieces) {
    NamedShape all = std::move(pieces.front());
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        Result<NamedShape> met = shapeBoolean(all, pieces[i], BooleanKind::Join);
        if (!met) return Error(met);
        all = std::move(met).value();
    }
    return all;
}

} // namespace

Result<gp_Pnt> pointOf(const std::string& text) {
    double xyz[3] = {0, 0, 0};
    std::string_view rest = text;
    for (int i = 0; i < 3; ++i) {
        const std::size_t comma = i < 2 ? rest.find(',') : rest.size();
        std::string_view part = trimmed(rest.substr(0, comma));
        const char* end = part.data() + part.size();
        auto [at, error] = std::from_chars(part.data(), end, xyz[i]);
        if (comma == std::string_view::npos || part.empty() || error != std::errc() || at != end ||
            !std::isfinite(xyz[i]))
            return fail("'" + text + "' isn't a point: give x,y,z in mm.");
        rest = i < 2 ? rest.substr(comma + 1) : std::string_view();
    }
    return gp_Pnt(xyz[0], xyz[1], xyz[2]);
}

Result<SplitPieces> splitPieces(const Document& document, const nlohmann::json& parameters,
                                const NamedShape& body, const std::string& splitName) {
    if (body.isNull()) return fail("There's no body to split.");
    Result<TopoDS_Face> face =
        splittingFace(document, parameters, body.shape(), featureContext(document, splitName));
    if (!face) return Error(face);
    if (face->IsNull()) return fail("There's nothing to split it with.");
    Result<std::vector<gp_Pnt>> places = pointsOf(parameterText(parameters, "pieces"));
    if (!places) return Error(places);
    std::optional<gp_Pnt> keep;
    if (const std::string at = parameterText(parameters, "keep"); !trimmed(at).empty()) {
        Result<gp_Pnt> point = pointOf(at);
        if (!point) return Error(point);
        keep = *point;
    }

    BRepAlgoAPI_Splitter splitter;
    TopTools_ListOfShape arguments, tools;
    arguments.Append(body.shape());
    tools.Append(*face);
    splitter.SetArguments(arguments);
    splitter.SetTools(tools);
    splitter.SetRunParallel(parallelBooleans());
    splitter.Build();
    if (!splitter.IsDone() || splitter.HasErrors())
        return fail("The body couldn't be split there.");

    std::vector<NamingEntry> names = carryNames(body.entries(), splitter);
    for (TopTools_ListOfShape::Iterator it(splitter.Modified(*face)); it.More(); it.Next())
        names.push_back({it.Value(), splitName + ".split", ""});
    std::vector<NamedShape> solids;
    for (TopExp_Explorer e(splitter.Shape(), TopAbs_SOLID); e.More(); e.Next()) {
        NamedShape piece(e.Current());
        piece.entries() = names;
        dropStaleEntries(piece);
        finishNames(piece);
        solids.push_back(std::move(piece));
    }
    if (solids.size() < 2) return fail("The tool doesn't cut the body in two.");

    SplitPieces out;
    if (places->empty()) {
        std::vector<gp_Pnt> centres;
        for (const NamedShape& solid : solids) centres.push_back(centreOf(solid.shape()));
        if (keep) {
            out.kept = nearest(centres, *keep);
        } else {
            for (std::size_t i = 1; i < solids.size(); ++i)
                if (volumeOf(solids[i].shape()) > volumeOf(solids[out.kept].shape())) out.kept = i;
        }
        out.pieces = std::move(solids);
        return out;
    }

    // Every solid goes to the place it's nearest; the first place is the one kept.
    std::vector<std::vector<NamedShape>> groups(places->size());
    for (NamedShape& solid : solids)
        groups[nearest(*places, centreOf(solid.shape()))].push_back(std::move(solid));
    if (groups.front().empty()) return fail(kNotThere);
    for (std::vector<NamedShape>& group : groups) {
        if (group.empty()) continue;
        Result<NamedShape> piece = joined(std::move(group));
        if (!piece) return Error(piece);
        out.pieces.push_back(std::move(piece).value());
    }
    return out;
}

Result<NamedShape> computeSplitBody(const Document& document, const nlohmann::json& parameters,
                                    const NamedShape& body, const std::string& featureName) {
    Result<SplitPieces> split = splitPieces(document, parameters, body, featureName);
    if (!split) return Error(split);
    return std::move(split->pieces[split->kept]);
}

Result<NamedShape> computeSplitPiece(const Document& document, const nlohmann::json& parameters,
                                     const NamedShape&, const std::string&) {
    const std::string source = parameterText(parameters, "source");
    auto* split = dynamic_cast<const ParamFeature*>(
        document.findMatching(source, [](const DocumentObject& o) {
            auto* feature = dynamic_cast<const ParamFeature*>(&o);
            return feature && feature->typeId == "SplitBody";
        }));
    const GeometryObject* owner = split ? document.bodyOfFeature(split->id) : nullptr;
    const std::string inBody = parameterText(parameters, "source_body");
    if (!owner || (!inBody.empty() && document.findByName(inBody) != owner))
        return fail("There's no split named '" + source + "'.");
    const NamedShape* before = document.shapeBefore(split->id);
    if (!before || !split->error.empty()) return fail(split->id + " hasn't been worked out yet.");
    Result<gp_Pnt> at = pointOf(parameterText(parameters, "at"));
    if (!at) return Error(at);

    Result<SplitPieces> pieces = splitPieces(document, split->parameters, *before, split->id);
    if (!pieces) return Error(pieces);
    std::vector<gp_Pnt> centres;
    for (const NamedShape& piece : pieces->pieces) centres.push_back(centreOf(piece.shape()));
    const std::size_t wanted = nearest(centres, *at);
    if (wanted == pieces->kept) return fail(kNotThere);
    return std::move(pieces->pieces[wanted]);
}

} // namespace cad
