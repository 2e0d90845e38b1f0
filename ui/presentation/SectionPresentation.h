// How the view shows a section analysis: the cut plane as a translucent rectangle
// over the shown bodies, and the clip plane that opens the bodies along it with
// hatched caps where it meets their material, so the cut reads as solid.
#pragma once

#include <AIS_Shape.hxx>
#include <Bnd_Box.hxx>
#include <Graphic3d_ClipPlane.hxx>
#include <Graphic3d_TextureMap.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Ax3.hxx>

namespace cad::ui {

// Clips a presentation with exactly these cuts (none with null); leaves it alone
// when it already has them.
void setCuts(PrsMgr_PresentableObject& presentation,
             const Handle(Graphic3d_SequenceOfHClipPlane) & cuts);

class SectionPlanePresentation : public AIS_Shape {
public:
    SectionPlanePresentation();

    // Moves the cut and resizes the drawn rectangle to cover the bodies. True when
    // the drawn shape changed (the caller redisplays it); the cut follows at once.
    bool place(const gp_Ax3& plane, const Bnd_Box& bodies);
    // The cut every shown body is clipped with while the section is visible: the side
    // the section's normal points to is clipped away, and the cut is capped in the
    // body's own material with hatch lines over it.
    const Handle(Graphic3d_ClipPlane) & cut() const { return cut_; }

    // The whole-shape mode picks the rectangle's outline only: the plane lies over
    // the bodies and must not take the clicks meant for them.
    void ComputeSelection(const Handle(SelectMgr_Selection) & selection, int mode) override;

private:
    Handle(Graphic3d_ClipPlane) cut_;
    Handle(Graphic3d_TextureMap) hatch_;
    gp_Ax3 frame_; // the drawn rectangle: centre and directions, half sizes
    double halfX_ = 0;
    double halfY_ = 0;
    TopoDS_Shape outline_;
    bool placed_ = false;
};

} // namespace cad::ui
