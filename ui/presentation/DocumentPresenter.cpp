// Follows the document and keeps the view's presentations in step with it: one
// shaded, outlined shape per body, four parts per sketch, reference planes, section
// planes with the bodies clipped by every visible section, and the origin.
#include "ui/presentation/DocumentPresenter.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/planes/SectionObject.h"
#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "ui/presentation/BodyLook.h"
#include "ui/presentation/OriginPresentation.h"
#include "ui/presentation/PlanePresentation.h"
#include "ui/presentation/SectionPresentation.h"
#include "ui/presentation/SketchPresentation.h"
#include "ui/presentation/Tessellation.h"
#include "ui/presentation/ThreadPresentation.h"

#include <AIS_ColoredShape.hxx>
#include <AIS_DisplayMode.hxx>
#include <BRepBndLib.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <SelectMgr_Selection.hxx>
#include <Select3D_SensitiveEntity.hxx>
#include <StdSelect_BRepOwner.hxx>
#include <TColStd_ListOfInteger.hxx>

#include <algorithm>
#include <optional>

namespace cad::ui {

namespace {

Quantity_Color srgb(double r, double g, double b) {
    return Quantity_Color(r, g, b, Quantity_TOC_sRGB);
}

constexpr int kWholeMode = 0;
constexpr int kVertexMode = 1;
constexpr int kEdgeMode = 2;
constexpr int kFaceMode = 4;
// The origin planes' width in millimetres.
constexpr double kOriginSize = 60.0;

Handle(AIS_ColoredShape) makeBodyPresentation(const TopoDS_Shape& shape) {
    Handle(AIS_ColoredShape) body = new AIS_ColoredShape(shape);
    const Handle(Prs3d_Drawer)& drawer = body->Attributes();
    drawer->SetFaceBoundaryDraw(true);
    drawer->SetFaceBoundaryAspect(
        new Prs3d_LineAspect(srgb(0.12, 0.10, 0.09), Aspect_TOL_SOLID, 1.2));
    applyTessellation(shape, drawer);
    body->SetDisplayMode(AIS_Shaded);
    // Picked whole, a body lights up whole, as a picked face does.
    body->SetHilightMode(AIS_Shaded);
    return body;
}

} // namespace

struct DocumentPresenter::Impl {
    enum class Kind { Body, Sketch, Plane, Section };
    struct Entry {
        Kind kind = Kind::Body;
        std::vector<Handle(AIS_InteractiveObject)> parts;
        // A body's cosmetic threads: drawn with it, never picked.
        std::vector<Handle(AIS_InteractiveObject)> marks;
        // What a reference plane is drawn from, so a change that leaves it alone
        // (a rename, visibility) redraws nothing.
        std::vector<double> drawn;
        // What a body was painted with (its appearance, material, face paint).
        std::string look;
    };

    explicit Impl(rendering::Viewport& v) : viewport(v) {}

    // The view's context exists from the start; presentations shown before the view
    // binds to OpenGL are drawn with its first frame.
    Handle(AIS_InteractiveContext) context() const { return viewport.context(); }
    void redraw() { viewport.requestRedraw(); }

    bool shouldShow(const DocumentObject& object) const {
        return document && object.visible && !document->isRolledBack(object);
    }

    // Displays a part (if not shown) with its display mode and selection modes.
    void show(const Handle(AIS_InteractiveContext) & ctx, Kind kind,
              const Handle(AIS_InteractiveObject) & part) {
        // Shown with a real selection mode: an object first displayed as unselectable
        // stays unpickable whatever is activated later.
        if (!ctx->IsDisplayed(part)) {
            auto sketchPart = Handle(SketchPartPresentation)::DownCast(part);
            int mode = kFaceMode;
            if (sketchPart)
                mode = sketchPart->selectionMode();
            else if (kind == Kind::Plane || kind == Kind::Section)
                mode = kWholeMode;
            ctx->Display(part, part->DisplayMode(), mode, false);
        }
        applySelectionModes(ctx, kind, part);
    }
    void applySelectionModes(const Handle(AIS_InteractiveContext) & ctx, Kind kind,
                             const Handle(AIS_InteractiveObject) & part) const {
        if (kind == Kind::Sketch) {
            auto sketchPart = Handle(SketchPartPresentation)::DownCast(part);
            if (!sketchPart) return;
            // Regions are for pickers only; they turn on while a picker looks.
            if (sketchPart->part() == SketchPartPresentation::Part::Regions)
                ctx->Deactivate(part, sketchPart->selectionMode());
            else
                ctx->Activate(part, sketchPart->selectionMode());
            return;
        }
        // Planes and sections are only ever taken whole.
        if (kind == Kind::Plane || kind == Kind::Section) {
            ctx->Activate(part, kWholeMode);
            return;
        }
        for (auto [mode, on] : {std::pair{kWholeMode, bodies}, std::pair{kVertexMode, vertices},
                                std::pair{kEdgeMode, edges}, std::pair{kFaceMode, faces}}) {
            if (on)
                ctx->Activate(part, mode);
            else
                ctx->Deactivate(part, mode);
        }
    }

    void clearSelectionOf(const Handle(AIS_InteractiveContext) & ctx, const Entry& entry) {
        for (ctx->InitSelected(); ctx->MoreSelected(); ctx->NextSelected()) {
            const Handle(AIS_InteractiveObject) selected = ctx->SelectedInteractive();
            if (std::find(entry.parts.begin(), entry.parts.end(), selected) != entry.parts.end()) {
                ctx->ClearSelected(false);
                return;
            }
        }
    }

    void forget(const std::string& id) {
        auto it = presentations.find(id);
        if (it == presentations.end()) return;
        const Handle(AIS_InteractiveContext) ctx = context();
        for (const Handle(AIS_InteractiveObject) & part : it->second.parts) {
            owners.erase(part.get());
            if (ctx) ctx->Remove(part, false);
        }
        removeMarks(ctx, it->second);
        presentations.erase(it);
    }

    static void removeMarks(const Handle(AIS_InteractiveContext) & ctx, Entry& entry) {
        if (ctx)
            for (const Handle(AIS_InteractiveObject) & mark : entry.marks) ctx->Remove(mark, false);
        entry.marks.clear();
    }

    // The body's cosmetic threads drawn again: a thread's edit leaves the shape alone.
    void rebuildMarks(const GeometryObject& body, Entry& entry) {
        const Handle(AIS_InteractiveContext) ctx = context();
        removeMarks(ctx, entry);
        if (!document) return;
        std::vector<CosmeticThread> inside, outside;
        for (CosmeticThread& thread : cosmeticThreads(*document, body))
            (thread.internal ? inside : outside).push_back(std::move(thread));
        for (const auto& [threads, internal] :
             {std::pair{&inside, true}, std::pair{&outside, false}})
            if (const TopoDS_Shape marks = threadMarks(*threads); !marks.IsNull())
                entry.marks.push_back(makeThreadPresentation(marks, internal));
    }

    // Builds or updates the presentation of a body or sketch; true when it has one.
    bool build(DocumentObject& object) {
        const Handle(AIS_InteractiveContext) ctx = context();
        if (auto* body = dynamic_cast<GeometryObject*>(&object)) {
            if (body->shape.isNull()) {
                forget(object.id);
                return false;
            }
            auto it = presentations.find(object.id);
            if (it == presentations.end()) {
                Entry entry{Kind::Body, {makeBodyPresentation(body->shape.shape())}, {}, {}, {}};
                paintBody(Handle(AIS_ColoredShape)::DownCast(entry.parts.front()), *document, *body);
                entry.look = bodyLookKey(*document, *body);
                owners[entry.parts.front().get()] = object.id;
                rebuildMarks(*body, entry);
                presentations.emplace(object.id, std::move(entry));
                return true;
            }
            rebuildMarks(*body, it->second);
            auto shape = Handle(AIS_ColoredShape)::DownCast(it->second.parts.front());
            // A change that left the shape and its look alone (visibility, label)
            // redraws nothing.
            std::string look = bodyLookKey(*document, *body);
            const bool sameShape = shape->Shape().IsEqual(body->shape.shape());
            if (sameShape && look == it->second.look) return true;
            it->second.look = std::move(look);
            if (sameShape) {
                paintBody(shape, *document, *body);
                if (ctx) ctx->Redisplay(shape, false);
                return true;
            }
            if (ctx) clearSelectionOf(ctx, it->second);
            shape->SetShape(body->shape.shape());
            paintBody(shape, *document, *body);
            applyTessellation(body->shape.shape(), shape->Attributes());
            recompute(ctx, shape);
            return true;
        }
        if (auto* sketch = dynamic_cast<SketchObject*>(&object)) {
            auto it = presentations.find(object.id);
            if (it == presentations.end()) {
                Entry entry{Kind::Sketch, {}, {}, {}, {}};
                for (const Handle(SketchPartPresentation) & part : makeSketchParts(*sketch)) {
                    owners[part.get()] = object.id;
                    entry.parts.push_back(part);
                }
                presentations.emplace(object.id, std::move(entry));
                return true;
            }
            if (ctx) clearSelectionOf(ctx, it->second);
            for (const Handle(AIS_InteractiveObject) & part : it->second.parts) {
                Handle(SketchPartPresentation)::DownCast(part)->rebuild(*sketch);
                recompute(ctx, part);
            }
            return true;
        }
        if (auto* plane = dynamic_cast<PlaneObject*>(&object)) return buildPlane(*plane);
        if (auto* section = dynamic_cast<SectionObject*>(&object)) return buildSection(*section);
        return false;
    }

    // A plane that never computed has nothing to show; one whose reference vanished
    // keeps its last placement.
    bool buildPlane(const PlaneObject& plane) {
        if (!plane.placed) {
            forget(plane.id);
            return false;
        }
        const gp_Ax3& at = plane.placement;
        std::vector<double> drawn{at.Location().X(),   at.Location().Y(),   at.Location().Z(),
                                  at.Direction().X(),  at.Direction().Y(),  at.Direction().Z(),
                                  at.XDirection().X(), at.XDirection().Y(), at.XDirection().Z(),
                                  plane.halfWidth};
        const TopoDS_Shape shape = referencePlaneShape(at, plane.halfWidth);
        auto it = presentations.find(plane.id);
        if (it == presentations.end()) {
            Entry entry{Kind::Plane, {makeReferencePlanePresentation(shape)}, {}, drawn, {}};
            owners[entry.parts.front().get()] = plane.id;
            presentations.emplace(plane.id, std::move(entry));
            return true;
        }
        if (it->second.drawn == drawn) return true;
        it->second.drawn = std::move(drawn);
        const Handle(AIS_InteractiveContext) ctx = context();
        if (ctx) clearSelectionOf(ctx, it->second);
        Handle(AIS_Shape)::DownCast(it->second.parts.front())->SetShape(shape);
        recompute(ctx, it->second.parts.front());
        return true;
    }

    bool buildSection(const SectionObject& section) {
        if (!section.placed) {
            forget(section.id);
            return false;
        }
        // A known section moves with the rest of the sections as visibility is refreshed.
        if (presentations.contains(section.id)) return true;
        Handle(SectionPlanePresentation) plane = new SectionPlanePresentation();
        plane->place(section.placement, shownBodiesBox());
        owners[plane.get()] = section.id;
        presentations.emplace(section.id, Entry{Kind::Section, {plane}, {}, {}, {}});
        return true;
    }

    // Moves the section's cut and fits its rectangle to the shown bodies.
    void placeSection(const SectionObject& section, const Entry& entry, const Bnd_Box& cover) {
        auto plane = Handle(SectionPlanePresentation)::DownCast(entry.parts.front());
        if (!plane->place(section.placement, cover)) return;
        const Handle(AIS_InteractiveContext) ctx = context();
        if (ctx) clearSelectionOf(ctx, entry);
        recompute(ctx, plane);
    }

    // Sections follow the bodies they cover, and every body is clipped by exactly the
    // sections shown.
    void refreshSections(const Handle(AIS_InteractiveContext) & ctx) {
        Handle(Graphic3d_SequenceOfHClipPlane) cuts;
        std::optional<Bnd_Box> cover; // measured once, and only when there is a section
        for (const auto& [id, entry] : presentations) {
            if (entry.kind != Kind::Section) continue;
            if (!cover) cover = shownBodiesBox();
            auto* section = document ? dynamic_cast<SectionObject*>(document->find(id)) : nullptr;
            if (section) placeSection(*section, entry, *cover);
            if (!ctx->IsDisplayed(entry.parts.front())) continue;
            if (cuts.IsNull()) cuts = new Graphic3d_SequenceOfHClipPlane();
            cuts->Append(Handle(SectionPlanePresentation)::DownCast(entry.parts.front())->cut());
        }
        for (const auto& [id, entry] : presentations) {
            if (entry.kind != Kind::Body) continue;
            for (const auto* list : {&entry.parts, &entry.marks})
                for (const Handle(AIS_InteractiveObject) & part : *list) setCuts(*part, cuts);
        }
    }

    // The bounding box of every shown body (void when none).
    Bnd_Box shownBodiesBox() const {
        Bnd_Box box;
        const Handle(AIS_InteractiveContext) ctx = context();
        for (const auto& [id, entry] : presentations) {
            if (entry.kind != Kind::Body) continue;
            const auto shape = Handle(AIS_Shape)::DownCast(entry.parts.front());
            const bool shown =
                ctx ? ctx->IsDisplayed(shape)
                    : document && document->find(id) && shouldShow(*document->find(id));
            if (shown) BRepBndLib::Add(shape->Shape(), box, true);
        }
        return box;
    }

    // A changed presentation is drawn again in place; only its picking is rebuilt.
    static void recompute(const Handle(AIS_InteractiveContext) & ctx,
                          const Handle(AIS_InteractiveObject) & part) {
        if (!ctx || !ctx->IsDisplayed(part)) {
            // Not shown: drop the stale drawing so the next display computes it afresh.
            if (ctx) ctx->Remove(part, false);
            return;
        }
        // Picking is switched off around the recompute: the selector counts each mode's
        // pixel tolerance on activation and must take back the same one it counted.
        TColStd_ListOfInteger modes;
        ctx->ActivatedModes(part, modes);
        ctx->Deactivate(part);
        ctx->Redisplay(part, false);
        ctx->RecomputeSelectionOnly(part);
        for (int mode : modes) ctx->Activate(part, mode);
    }

    void refreshVisibility() {
        const Handle(AIS_InteractiveContext) ctx = context();
        if (!ctx || !document) return;
        for (auto& [id, entry] : presentations) {
            const DocumentObject* object = document->find(id);
            const bool visible = object && shouldShow(*object);
            for (const Handle(AIS_InteractiveObject) & part : entry.parts) {
                if (visible)
                    show(ctx, entry.kind, part);
                else if (ctx->IsDisplayed(part))
                    ctx->Erase(part, false);
            }
            for (const Handle(AIS_InteractiveObject) & mark : entry.marks) {
                if (visible && !ctx->IsDisplayed(mark))
                    ctx->Display(mark, AIS_WireFrame, -1, false); // never picked
                else if (!visible && ctx->IsDisplayed(mark))
                    ctx->Erase(mark, false);
            }
        }
        refreshSections(ctx);
        refreshOrigin(ctx);
        redraw();
    }

    void refreshOrigin(const Handle(AIS_InteractiveContext) & ctx) {
        for (const OriginItem& item : origin) {
            // While a sketch is edited the planes would only cover it; the axes stay.
            const bool plane = item.name.size() == 2;
            if (!originVisible || (plane && planesHidden)) {
                if (ctx->IsDisplayed(item.presentation)) ctx->Erase(item.presentation, false);
            } else if (!ctx->IsDisplayed(item.presentation)) {
                ctx->Display(item.presentation, item.presentation->DisplayMode(), 0, false);
            }
        }
    }

    void removeAll() {
        while (!presentations.empty()) forget(presentations.begin()->first);
    }

    void rebuildAll() {
        removeAll();
        if (document)
            for (const auto& object : document->objects()) build(*object);
        refreshVisibility();
    }

    rendering::Viewport& viewport;
    Document* document = nullptr;
    std::map<std::string, Entry> presentations;
    std::map<const Standard_Transient*, std::string> owners; // part -> object ID
    std::vector<OriginItem> origin;
    bool originVisible = true;
    bool planesHidden = false;
    bool faces = true, edges = false, vertices = false, bodies = false;
};

DocumentPresenter::DocumentPresenter(rendering::Viewport& viewport)
    : impl_(std::make_unique<Impl>(viewport)) {
    impl_->origin = makeOriginItems(kOriginSize);
    if (const Handle(AIS_InteractiveContext) ctx = impl_->context()) impl_->refreshOrigin(ctx);
}

DocumentPresenter::~DocumentPresenter() {
    if (impl_->document) impl_->document->removeObserver(this);
    impl_->removeAll();
    if (const Handle(AIS_InteractiveContext) ctx = impl_->context())
        for (const OriginItem& item : impl_->origin) ctx->Remove(item.presentation, false);
}

void DocumentPresenter::setDocument(Document* document) {
    if (impl_->document) impl_->document->removeObserver(this);
    impl_->document = document;
    if (document) document->addObserver(this);
    documentReset();
}

void DocumentPresenter::documentReset() { impl_->rebuildAll(); }

void DocumentPresenter::objectAdded(DocumentObject& object) {
    if (impl_->build(object)) refreshVisibility();
}

void DocumentPresenter::objectRemoved(DocumentObject& object) {
    if (!impl_->presentations.contains(object.id)) return;
    impl_->forget(object.id);
    // A section's cut leaves the bodies; a body leaves the sections' cover.
    if (const Handle(AIS_InteractiveContext) ctx = impl_->context()) impl_->refreshSections(ctx);
    impl_->redraw();
}

void DocumentPresenter::objectChanged(DocumentObject& object) {
    const bool had = impl_->presentations.contains(object.id);
    if (impl_->build(object) || had) refreshVisibility();
}

void DocumentPresenter::documentChanged() { refreshVisibility(); }

void DocumentPresenter::refreshVisibility() { impl_->refreshVisibility(); }

void DocumentPresenter::setSelectionFilter(bool faces, bool edges, bool vertices, bool bodies) {
    impl_->faces = faces;
    impl_->edges = edges;
    impl_->vertices = vertices;
    impl_->bodies = bodies;
    const Handle(AIS_InteractiveContext) ctx = impl_->context();
    if (!ctx) return;
    for (const auto& [id, entry] : impl_->presentations)
        if (entry.kind == Impl::Kind::Body)
            for (const Handle(AIS_InteractiveObject) & part : entry.parts)
                if (ctx->IsDisplayed(part)) impl_->applySelectionModes(ctx, entry.kind, part);
}

bool DocumentPresenter::facesSelectable() const { return impl_->faces; }
bool DocumentPresenter::edgesSelectable() const { return impl_->edges; }
bool DocumentPresenter::verticesSelectable() const { return impl_->vertices; }
bool DocumentPresenter::bodiesSelectable() const { return impl_->bodies; }

bool DocumentPresenter::selectWholeBody(const std::string& id) {
    const Handle(AIS_InteractiveContext) ctx = impl_->context();
    auto it = impl_->presentations.find(id);
    if (!ctx || it == impl_->presentations.end() || it->second.kind != Impl::Kind::Body)
        return false;
    const Handle(AIS_InteractiveObject)& body = it->second.parts.front();
    if (!ctx->IsDisplayed(body)) return false;
    // The whole-shape owner exists once its mode has been computed; computing it
    // does not leave the mode active when the filter has it off.
    if (!body->HasSelection(kWholeMode)) {
        ctx->Activate(body, kWholeMode);
        if (!impl_->bodies) ctx->Deactivate(body, kWholeMode);
    }
    ctx->SetSelected(body, false);
    impl_->redraw();
    return true;
}

int DocumentPresenter::selectObjects(const std::vector<std::string>& ids) {
    const Handle(AIS_InteractiveContext) ctx = impl_->context();
    if (!ctx) return 0;
    ctx->ClearSelected(false);
    int selected = 0;
    for (const std::string& id : ids) {
        const Handle(AIS_InteractiveObject) whole = presentationOf(id);
        if (whole.IsNull() || !ctx->IsDisplayed(whole)) continue;
        // The whole-shape owner exists once its mode has been computed; computing it
        // does not leave the mode active when plain selection has it off.
        if (!whole->HasSelection(kWholeMode)) {
            TColStd_ListOfInteger modes;
            ctx->ActivatedModes(whole, modes);
            const bool wasOn = std::find(modes.begin(), modes.end(), kWholeMode) != modes.end();
            ctx->Activate(whole, kWholeMode);
            if (!wasOn) ctx->Deactivate(whole, kWholeMode);
        }
        const Handle(SelectMgr_Selection)& selection = whole->Selection(kWholeMode);
        if (selection.IsNull() || selection->IsEmpty()) continue;
        const Handle(SelectMgr_EntityOwner) owner =
            selection->Entities().First()->BaseSensitive()->OwnerId();
        if (owner.IsNull()) continue;
        ctx->AddOrRemoveSelected(owner, false);
        ++selected;
    }
    impl_->redraw();
    return selected;
}

std::vector<std::string> DocumentPresenter::selectedObjects() const {
    std::vector<std::string> ids;
    const Handle(AIS_InteractiveContext) ctx = impl_->context();
    if (!ctx) return ids;
    for (ctx->InitSelected(); ctx->MoreSelected(); ctx->NextSelected()) {
        const Handle(SelectMgr_EntityOwner) owner = ctx->SelectedOwner();
        const auto shapeOwner = Handle(StdSelect_BRepOwner)::DownCast(owner);
        if (!shapeOwner.IsNull() && shapeOwner->ComesFromDecomposition()) continue;
        const std::string id = objectOf(owner);
        if (!id.empty() && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
    }
    return ids;
}

void DocumentPresenter::setOriginVisible(bool visible) {
    impl_->originVisible = visible;
    if (const Handle(AIS_InteractiveContext) ctx = impl_->context()) {
        impl_->refreshOrigin(ctx);
        impl_->redraw();
    }
}

bool DocumentPresenter::originVisible() const { return impl_->originVisible; }

void DocumentPresenter::setOriginPlanesHidden(bool hidden) {
    impl_->planesHidden = hidden;
    if (const Handle(AIS_InteractiveContext) ctx = impl_->context()) {
        impl_->refreshOrigin(ctx);
        impl_->redraw();
    }
}

Handle(AIS_InteractiveObject) DocumentPresenter::presentationOf(const std::string& id) const {
    auto it = impl_->presentations.find(id);
    if (it == impl_->presentations.end()) return {};
    if (it->second.kind == Impl::Kind::Sketch)
        for (const Handle(AIS_InteractiveObject) & part : it->second.parts)
            if (Handle(SketchPartPresentation)::DownCast(part)->part() ==
                SketchPartPresentation::Part::Curves)
                return part;
    return it->second.parts.front();
}

std::string DocumentPresenter::objectOf(const Handle(SelectMgr_EntityOwner) & owner) const {
    if (owner.IsNull()) return {};
    return objectOf(Handle(AIS_InteractiveObject)::DownCast(owner->Selectable()));
}

std::string DocumentPresenter::objectOf(const Handle(AIS_InteractiveObject) & presentation) const {
    auto it = impl_->owners.find(presentation.get());
    return it == impl_->owners.end() ? std::string() : it->second;
}

std::string DocumentPresenter::originItemOf(const Handle(AIS_InteractiveObject) &
                                            presentation) const {
    for (const OriginItem& item : impl_->origin)
        if (item.presentation == presentation) return item.name;
    return {};
}

std::vector<Handle(AIS_InteractiveObject)>
DocumentPresenter::threadMarksOf(const std::string& id) const {
    auto it = impl_->presentations.find(id);
    return it == impl_->presentations.end() ? std::vector<Handle(AIS_InteractiveObject)>()
                                            : it->second.marks;
}

Bnd_Box DocumentPresenter::shownBodiesBox() const { return impl_->shownBodiesBox(); }

} // namespace cad::ui
