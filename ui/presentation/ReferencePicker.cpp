// Turns what is under the cursor into reference texts: bodies by persistent name,
// sketches by entity, reference planes and the origin by their names. Hover previews
// the group a click would take; Shift narrows it to the one piece under the cursor.
#include "ui/presentation/ReferencePicker.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/References.h"
#include "geometry/planes/PlaneObject.h"
#include "rendering/Viewport.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/SketchPresentation.h"

#include <AIS_DisplayMode.hxx>
#include <AIS_ListOfInteractive.hxx>
#include <AIS_Shape.hxx>
#include <BRep_Builder.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <StdSelect_BRepOwner.hxx>
#include <StdSelect_ViewerSelector3d.hxx>
#include <TColStd_ListOfInteger.hxx>
#include <TopoDS_Compound.hxx>

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace cad::ui {

namespace {

constexpr int kVertexMode = 1;
constexpr int kEdgeMode = 2;
constexpr int kFaceMode = 4;

PickKind kindOfShape(TopAbs_ShapeEnum type) {
    switch (type) {
    case TopAbs_VERTEX:
        return PickVertex;
    case TopAbs_EDGE:
        return PickEdge;
    default:
        return PickFace;
    }
}

PickKind kindOfOriginItem(const std::string& name) {
    if (name == "Origin") return PickVertex;
    return name.size() == 1 ? PickAxis : PickPlane;
}

} // namespace

struct ReferencePicker::Impl {
    // A candidate with the sub-shape it was found on, for the hover preview.
    struct Found {
        PickCandidate candidate;
        TopoDS_Shape shape;
        gp_Pnt point; // where the eye ray met it
    };

    Impl(rendering::Viewport& v, DocumentPresenter& p) : viewport(v), presenter(p) {}

    Handle(AIS_InteractiveContext) context() const { return viewport.context(); }

    // The selection modes the accepted kinds need on a presentation beyond those
    // plain selection keeps active.
    std::vector<int> extraModes(const Handle(AIS_InteractiveObject) & object) const {
        std::vector<int> modes;
        if (auto part = Handle(SketchPartPresentation)::DownCast(object)) {
            if (part->part() == SketchPartPresentation::Part::Regions && (accepted & PickRegion))
                modes.push_back(part->selectionMode());
            return modes;
        }
        if (!document || !dynamic_cast<GeometryObject*>(document->find(presenter.objectOf(object))))
            return modes;
        if (accepted & PickFace) modes.push_back(kFaceMode);
        if (accepted & PickEdge) modes.push_back(kEdgeMode);
        if (accepted & PickVertex) modes.push_back(kVertexMode);
        return modes;
    }

    std::optional<Found> candidateOf(const Handle(SelectMgr_EntityOwner) & owner,
                                     double depth) const {
        const auto object = Handle(AIS_InteractiveObject)::DownCast(owner->Selectable());
        const auto brep = Handle(StdSelect_BRepOwner)::DownCast(owner);
        if (object.IsNull() || brep.IsNull() || !brep->HasShape()) return std::nullopt;
        Found found{{}, brep->Shape(), {}};
        found.candidate.depth = depth;
        if (std::string item = presenter.originItemOf(object); !item.empty()) {
            found.candidate.kind = kindOfOriginItem(item);
            found.candidate.reference = item;
            return found;
        }
        const std::string id = presenter.objectOf(object);
        if (id.empty() || !document) return std::nullopt;
        std::string piece;
        if (auto part = Handle(SketchPartPresentation)::DownCast(object)) {
            piece = part->referenceOf(brep->Shape());
            found.candidate.kind = part->part() == SketchPartPresentation::Part::Regions
                                       ? PickRegion
                                       : PickSketchEntity;
        } else if (auto* body = dynamic_cast<GeometryObject*>(document->find(id))) {
            piece = body->shape.nameOf(brep->Shape());
            found.candidate.kind = kindOfShape(brep->Shape().ShapeType());
        } else if (dynamic_cast<PlaneObject*>(document->find(id))) {
            // A reference plane is picked whole and named by its ID.
            found.candidate.kind = PickPlane;
            found.candidate.objectId = id;
            found.candidate.reference = id;
            return found;
        }
        if (piece.empty()) return std::nullopt;
        found.candidate.objectId = id;
        found.candidate.reference = id + "/" + piece;
        return found;
    }

    std::vector<Found> findAt(QPointF position) const {
        std::vector<Found> out;
        const Handle(AIS_InteractiveContext) ctx = context();
        // Until the view is bound to OpenGL it has no size to pick in.
        if (!ctx || !viewport.isReady()) return out;

        // Pickers see what their request accepts, whatever plain selection's filter says.
        std::vector<std::pair<Handle(AIS_InteractiveObject), int>> turnedOn;
        AIS_ListOfInteractive shown;
        ctx->DisplayedObjects(shown);
        for (const Handle(AIS_InteractiveObject) & object : shown) {
            TColStd_ListOfInteger modes;
            ctx->ActivatedModes(object, modes);
            for (int mode : extraModes(object)) {
                if (std::find(modes.begin(), modes.end(), mode) != modes.end()) continue;
                ctx->Activate(object, mode);
                turnedOn.emplace_back(object, mode);
            }
        }

        const double ratio = viewport.devicePixelRatioF();
        const Handle(StdSelect_ViewerSelector3d)& selector = ctx->MainSelector();
        selector->Pick(static_cast<int>(position.x() * ratio),
                       static_cast<int>(position.y() * ratio), viewport.view());
        for (int i = 1; i <= selector->NbPicked(); ++i)
            if (auto found = candidateOf(selector->Picked(i), selector->PickedData(i).Depth);
                found && (found->candidate.kind & accepted)) {
                found->point = selector->PickedPoint(i);
                out.push_back(std::move(*found));
            }
        for (const auto& [object, mode] : turnedOn) ctx->Deactivate(object, mode);

        std::stable_sort(out.begin(), out.end(), [](const Found& a, const Found& b) {
            return a.candidate.depth < b.candidate.depth;
        });
        return out;
    }

    void setHint(ReferencePicker& self, QString text) {
        if (text == hint) return;
        hint = std::move(text);
        emit self.hintChanged(hint);
    }

    void clearHover() {
        if (hover.IsNull()) return;
        if (const Handle(AIS_InteractiveContext) ctx = context()) {
            ctx->Remove(hover, false);
            viewport.requestRedraw();
        }
        hover.Nullify();
    }

    // Draws the group over everything else; references that no longer resolve are
    // left out, the piece under the cursor is always there.
    void showHover(const Found& best, const std::vector<std::string>& group) {
        if (!hover.IsNull() && group == hoverGroup && best.shape.IsEqual(hoverShape)) return;
        clearHover();
        hoverGroup = group;
        hoverShape = best.shape;
        const Handle(AIS_InteractiveContext) ctx = context();
        if (!ctx) return;
        BRep_Builder builder;
        TopoDS_Compound compound;
        builder.MakeCompound(compound);
        builder.Add(compound, best.shape);
        for (const std::string& reference : group) {
            if (reference == best.candidate.reference) continue;
            Result<geometry::ResolvedReference> resolved =
                geometry::resolveReference(*document, reference);
            if (resolved && !resolved->shape.IsNull()) builder.Add(compound, resolved->shape);
        }
        hover = new AIS_Shape(compound);
        const Quantity_Color colour(0.36, 0.78, 1.0, Quantity_TOC_sRGB);
        hover->SetColor(colour);
        hover->SetWidth(3.5);
        hover->SetTransparency(0.45);
        hover->Attributes()->SetFaceBoundaryDraw(false);
        hover->SetZLayer(Graphic3d_ZLayerId_Topmost);
        ctx->Display(hover, AIS_Shaded, -1, false);
        viewport.requestRedraw();
    }

    rendering::Viewport& viewport;
    DocumentPresenter& presenter;
    Document* document = nullptr;
    bool active = false;
    std::uint32_t accepted = PickAnything;
    std::function<void(const std::vector<std::string>&)> picked;
    QString hint;
    Handle(AIS_Shape) hover;
    std::vector<std::string> hoverGroup; // what `hover` shows
    TopoDS_Shape hoverShape;
    std::optional<std::array<double, 3>> pressPoint;
};

ReferencePicker::ReferencePicker(rendering::Viewport& viewport, DocumentPresenter& presenter)
    : impl_(std::make_unique<Impl>(viewport, presenter)) {}

ReferencePicker::~ReferencePicker() {
    impl_->clearHover();
    if (impl_->viewport.tool() == this) impl_->viewport.setTool(nullptr);
}

void ReferencePicker::setDocument(Document* document) {
    impl_->clearHover();
    impl_->document = document;
}

void ReferencePicker::activate(std::uint32_t acceptedKinds,
                               std::function<void(const std::vector<std::string>&)> picked) {
    impl_->accepted = acceptedKinds;
    impl_->picked = std::move(picked);
    impl_->active = true;
    impl_->viewport.setTool(this);
}

void ReferencePicker::deactivate() {
    impl_->active = false;
    impl_->clearHover();
    impl_->setHint(*this, {});
    if (impl_->viewport.tool() == this) impl_->viewport.setTool(nullptr);
}

bool ReferencePicker::isActive() const { return impl_->active; }

std::vector<PickCandidate> ReferencePicker::candidatesAt(QPointF position) const {
    std::vector<PickCandidate> out;
    if (!impl_->document) return out;
    for (Impl::Found& found : impl_->findAt(position)) out.push_back(std::move(found.candidate));
    return out;
}

const QString& ReferencePicker::hintText() const { return impl_->hint; }

std::optional<std::array<double, 3>> ReferencePicker::lastPressPoint() const {
    return impl_->pressPoint;
}

bool ReferencePicker::mousePress(QPointF position, Qt::KeyboardModifiers modifiers) {
    if (!impl_->active || !impl_->document) return false;
    const std::vector<Impl::Found> found = impl_->findAt(position);
    impl_->pressPoint.reset();
    if (found.empty()) return false;
    const gp_Pnt& hit = found.front().point;
    impl_->pressPoint = std::array<double, 3>{hit.X(), hit.Y(), hit.Z()};
    const std::string& best = found.front().candidate.reference;
    std::vector<std::string> references = (modifiers & Qt::ShiftModifier)
                                              ? std::vector<std::string>{best}
                                              : expandReference(*impl_->document, best);
    // What was hovered may change with the pick (a fillet tried on the edge), so the
    // highlight waits for the next move. The owner may deactivate or even delete the
    // picker from its callback.
    impl_->clearHover();
    auto picked = impl_->picked;
    if (picked) picked(references);
    return true;
}

void ReferencePicker::mouseMove(QPointF position, Qt::KeyboardModifiers) {
    if (!impl_->active || !impl_->document) return;
    const std::vector<Impl::Found> found = impl_->findAt(position);
    if (found.empty()) {
        leave();
        return;
    }
    const Impl::Found& best = found.front();
    const std::vector<std::string> group =
        expandReference(*impl_->document, best.candidate.reference);
    QString text = referenceLabel(*impl_->document, group.front());
    if (group.size() > 1)
        text = QStringLiteral("%1 and %2 more (Shift: just this one)")
                   .arg(text)
                   .arg(static_cast<qsizetype>(group.size() - 1));
    impl_->showHover(best, group);
    impl_->setHint(*this, text);
}

void ReferencePicker::leave() {
    impl_->clearHover();
    impl_->setHint(*this, {});
}

bool ReferencePicker::keyPress(QKeyEvent* event) {
    if (!impl_->active || event->key() != Qt::Key_Escape) return false;
    deactivate();
    return true;
}

} // namespace cad::ui
