// Keeps one OpenCASCADE presentation per visible document object in the 3D view,
// following the document through its observer: bodies shaded with their face
// boundaries and their cosmetic threads marked, sketches as wires and points,
// reference planes, section planes (every visible one cuts the bodies open with
// capped, hatched cuts), the origin's planes and axes.
#pragma once

#include "core/DocumentObserver.h"

#include <AIS_InteractiveObject.hxx>
#include <Bnd_Box.hxx>
#include <SelectMgr_EntityOwner.hxx>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace cad {
class Document;
}
namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

// Chordal deviation in millimetres for a body of this size: tied to the bounding
// box's diagonal so big bodies stay light and small ones smooth.
double tessellationDeviation(const Bnd_Box& box);

class DocumentPresenter : public DocumentObserver {
public:
    explicit DocumentPresenter(rendering::Viewport& viewport);
    ~DocumentPresenter() override;
    DocumentPresenter(const DocumentPresenter&) = delete;
    DocumentPresenter& operator=(const DocumentPresenter&) = delete;

    // Observes this document (none with null) and rebuilds every presentation.
    void setDocument(Document* document);
    // Removes everything and rebuilds from the document.
    void documentReset();

    void objectAdded(DocumentObject& object) override;
    void objectRemoved(DocumentObject& object) override;
    void objectChanged(DocumentObject& object) override;
    void documentChanged() override;

    // Shows what is visible, not rolled back and not hidden; erases the rest.
    void refreshVisibility();
    // Which kinds of a body plain selection picks; re-applied to every body. With
    // bodies on, a click anywhere on a body takes the body as a whole.
    void setSelectionFilter(bool faces, bool edges, bool vertices, bool bodies = false);
    bool facesSelectable() const;
    bool edgesSelectable() const;
    bool verticesSelectable() const;
    bool bodiesSelectable() const;
    // Makes the shown body the whole selection, highlighted as one, whatever the
    // filter; false when the ID is not a shown body.
    bool selectWholeBody(const std::string& id);
    // Makes these objects the selection, each as a whole (bodies, sketches), as the
    // browser selects them; objects without a shown presentation are skipped.
    // Returns how many were selected.
    int selectObjects(const std::vector<std::string>& ids);
    // The objects selected as a whole (not by a face, edge or vertex), in selection order.
    std::vector<std::string> selectedObjects() const;
    // The origin's three planes and axes.
    void setOriginVisible(bool visible);
    bool originVisible() const;
    // Keeps the origin's planes out of the way (a sketch is being edited): its axes
    // and point still show when the origin does.
    void setOriginPlanesHidden(bool hidden);

    // Lookups both ways; empty handle or string when there is none.
    Handle(AIS_InteractiveObject) presentationOf(const std::string& id) const;
    std::string objectOf(const Handle(SelectMgr_EntityOwner) & owner) const;
    std::string objectOf(const Handle(AIS_InteractiveObject) & presentation) const;
    // The marks of a body's cosmetic threads (inside holes, outside on bosses); none
    // when it has no cosmetic thread.
    std::vector<Handle(AIS_InteractiveObject)> threadMarksOf(const std::string& id) const;
    // The origin item ("XY", "X", "Origin", ...) a presentation shows; empty otherwise.
    std::string originItemOf(const Handle(AIS_InteractiveObject) & presentation) const;

    // The bounding box of every shown body (void when none).
    Bnd_Box shownBodiesBox() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace cad::ui
