// Collecting a body's cosmetic threads from its tapped holes and thread features,
// each laid out on the shape the body had just before the feature.
#include "geometry/holes/CosmeticThreads.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/holes/HoleFeature.h"
#include "geometry/holes/HoleTool.h"
#include "geometry/holes/ThreadFeature.h"

#include <Standard_Failure.hxx>

namespace cad {

namespace {

// The body as the feature met it; after a project is opened and before the next
// rebuild only the finished body is known, which a cosmetic thread leaves alone.
const geometry::NamedShape* shapeBefore(const Document& document, const GeometryObject& body,
                                        const FeatureObject& feature) {
    const geometry::NamedShape* before = document.shapeBefore(feature.id);
    return before ? before : &body.shape;
}

void addHoleThreads(const Document& document, const GeometryObject& body, const HoleFeature& hole,
                    std::vector<CosmeticThread>& out) {
    Result<ResolvedHole> drill = resolveHole(hole.options);
    if (!drill || !drill->tapped || drill->modeled) return;
    const geometry::NamedShape* before = shapeBefore(document, body, hole);
    Result<std::vector<HoleFeature::Placement>> places = hole.placements(document);
    if (before->isNull() || !places) return;
    for (const HoleFeature::Placement& place : *places) {
        const double depth =
            drill->through ? throughDepth(before->shape(), place.axis, *drill) : drill->depth;
        CosmeticThread t;
        t.feature = hole.id;
        t.axis = gp_Ax1(
            place.axis.Location().Translated(gp_Vec(place.axis.Direction()) * wallStart(*drill)),
            place.axis.Direction());
        t.radius = drill->threadMajor / 2;
        t.pitch = drill->threadPitch;
        t.length = holeThreadLength(*drill, depth);
        t.internal = true;
        out.push_back(t);
    }
}

void addFeatureThread(const Document& document, const GeometryObject& body,
                      const ThreadFeature& thread, std::vector<CosmeticThread>& out) {
    if (thread.modeled) return;
    const geometry::NamedShape* before = shapeBefore(document, body, thread);
    if (before->isNull()) return;
    Result<ThreadLayout> layout = layOutThread(*before, thread.face, thread.size, thread.length);
    if (!layout) return;
    out.push_back({thread.id, layout->axis, layout->size->major / 2, layout->size->pitch,
                   layout->length, layout->internal});
}

} // namespace

std::vector<CosmeticThread> cosmeticThreads(const Document& document, const GeometryObject& body) {
    std::vector<CosmeticThread> out;
    for (const std::string& id : body.features) {
        auto* feature = dynamic_cast<const FeatureObject*>(document.find(id));
        if (!feature || !feature->error.empty() || !document.isActive(*feature)) continue;
        try {
            if (auto* hole = dynamic_cast<const HoleFeature*>(feature))
                addHoleThreads(document, body, *hole, out);
            else if (auto* thread = dynamic_cast<const ThreadFeature*>(feature))
                addFeatureThread(document, body, *thread, out);
        } catch (const Standard_Failure&) {
            // A thread that can't be laid out now isn't drawn.
        }
    }
    return out;
}

} // namespace cad
