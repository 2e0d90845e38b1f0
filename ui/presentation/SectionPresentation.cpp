// Builds a section analysis for the view: the rectangle sized to the bodies it cuts
// and the capped, hatched clip plane the bodies are drawn with.
#include "ui/presentation/SectionPresentation.h"

#include "ui/presentation/PlanePresentation.h"

#include <AIS_DisplayMode.hxx>
#include <BRepTools.hxx>
#include <Graphic3d_Texture2Dmanual.hxx>
#include <Graphic3d_TextureParams.hxx>
#include <Image_PixMap.hxx>
#include <Prs3d_ShadingAspect.hxx>
#include <StdSelect_BRepSelectionTool.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Pln.hxx>

#include <algorithm>
#include <cmath>
#include <limits>

namespace cad::ui {

namespace {

// The drawn rectangle reaches this much past the bodies on each side: a tenth of
// their size and a couple of millimetres more.
constexpr double kMarginFactor = 1.1;
constexpr double kMarginMm = 2.0;
// Half the side of the square drawn when no body is shown.
constexpr double kEmptyHalfWidth = 50.0;

bool sameFrame(const gp_Ax3& a, const gp_Ax3& b) {
    return a.Location().IsEqual(b.Location(), 1e-9) &&
           a.Direction().IsEqual(b.Direction(), 1e-12) &&
           a.XDirection().IsEqual(b.XDirection(), 1e-12);
}

// One tile of the caps' hatch: white with a dark diagonal band that runs on into
// the next tile. Modulated by the lit material it leaves the body's colour between
// the lines.
Handle(Graphic3d_TextureMap) makeHatch() {
    constexpr int kTile = 32;
    constexpr int kBand = 6;
    Handle(Image_PixMap) image = new Image_PixMap();
    if (!image->InitZero(Image_Format_RGBA, kTile, kTile)) return {};
    const Quantity_ColorRGBA line(0.32f, 0.30f, 0.28f, 1.0f);
    const Quantity_ColorRGBA fill(1.0f, 1.0f, 1.0f, 1.0f);
    for (int row = 0; row < kTile; ++row)
        for (int column = 0; column < kTile; ++column)
            image->SetPixelColor(column, row, (row + column) % kTile < kBand ? line : fill);
    Handle(Graphic3d_Texture2Dmanual) hatch = new Graphic3d_Texture2Dmanual(image);
    hatch->GetParams()->SetModulate(true);
    hatch->GetParams()->SetRepeat(true);
    hatch->GetParams()->SetFilter(Graphic3d_TOTF_TRILINEAR);
    return hatch;
}

// A rectangle on a cut plane: the plane moved to its centre, half sizes along the
// plane's x and y directions.
struct Extent {
    gp_Ax3 frame;
    double halfX = 0;
    double halfY = 0;
};

// The rectangle covering the bodies' box seen along the plane's normal, with the
// margin; a square about the plane's origin when the box is void.
Extent extentOver(const gp_Ax3& plane, const Bnd_Box& bodies) {
    if (bodies.IsVoid()) return {plane, kEmptyHalfWidth, kEmptyHalfWidth};
    double x0 = 0, y0 = 0, z0 = 0, x1 = 0, y1 = 0, z1 = 0;
    bodies.Get(x0, y0, z0, x1, y1, z1);
    const gp_Pnt& origin = plane.Location();
    const gp_Vec xAxis(plane.XDirection());
    const gp_Vec yAxis(plane.YDirection());
    double lowX = std::numeric_limits<double>::max(), highX = -lowX;
    double lowY = lowX, highY = -lowX;
    for (double x : {x0, x1})
        for (double y : {y0, y1})
            for (double z : {z0, z1}) {
                const gp_Vec offset(origin, gp_Pnt(x, y, z));
                const double along = offset.Dot(xAxis), across = offset.Dot(yAxis);
                lowX = std::min(lowX, along);
                highX = std::max(highX, along);
                lowY = std::min(lowY, across);
                highY = std::max(highY, across);
            }
    Extent extent{plane, (highX - lowX) / 2 * kMarginFactor + kMarginMm,
                  (highY - lowY) / 2 * kMarginFactor + kMarginMm};
    extent.frame.SetLocation(
        origin.Translated(xAxis * ((lowX + highX) / 2) + yAxis * ((lowY + highY) / 2)));
    return extent;
}

// How far apart the caps' hatch lines are, in millimetres: about 25 across the
// bodies' diagonal.
double hatchSpacing(const Bnd_Box& bodies) {
    const double diagonal = bodies.IsVoid() ? 100.0 : std::sqrt(bodies.SquareExtent());
    return std::clamp(diagonal / 25, 0.2, 200.0);
}

void placeCut(const Handle(Graphic3d_ClipPlane) & cut, const gp_Ax3& plane) {
    // Points where the equation is negative are clipped: the plane faces away from
    // the side the section's normal points to.
    cut->SetEquation(gp_Pln(plane.Location(), plane.Direction().Reversed()));
}

} // namespace

void setCuts(PrsMgr_PresentableObject& presentation,
             const Handle(Graphic3d_SequenceOfHClipPlane) & cuts) {
    Graphic3d_SequenceOfHClipPlane::Iterator now(presentation.ClipPlanes());
    Graphic3d_SequenceOfHClipPlane::Iterator wanted(cuts);
    for (; now.More() && wanted.More(); now.Next(), wanted.Next())
        if (now.Value() != wanted.Value()) break;
    if (now.More() || wanted.More()) presentation.SetClipPlanes(cuts);
}

SectionPlanePresentation::SectionPlanePresentation() : AIS_Shape(TopoDS_Shape()) {
    applyPlaneLook(*this, Quantity_Color(0.84, 0.80, 0.22, Quantity_TOC_sRGB));
    SetHilightMode(AIS_Shaded);
    // The plane lies exactly where the caps are drawn: pushed a little back, it tints
    // the view around the bodies and leaves the caps clean.
    Attributes()->ShadingAspect()->Aspect()->SetPolygonOffsets(Aspect_POM_Fill, 2.0f, 8.0f);
    cut_ = new Graphic3d_ClipPlane();
    cut_->SetCapping(true);
    cut_->SetUseObjectMaterial(true);
    hatch_ = makeHatch();
    if (!hatch_.IsNull()) cut_->SetCappingTexture(hatch_);
}

bool SectionPlanePresentation::place(const gp_Ax3& plane, const Bnd_Box& bodies) {
    placeCut(cut_, plane);
    // The texture repeats once a unit of the cut's own coordinates (millimetres).
    if (!hatch_.IsNull())
        hatch_->GetParams()->SetScale(
            Graphic3d_Vec2(static_cast<float>(1.0 / hatchSpacing(bodies))));
    const Extent extent = extentOver(plane, bodies);
    if (placed_ && sameFrame(extent.frame, frame_) && std::abs(extent.halfX - halfX_) < 1e-9 &&
        std::abs(extent.halfY - halfY_) < 1e-9)
        return false;
    placed_ = true;
    frame_ = extent.frame;
    halfX_ = extent.halfX;
    halfY_ = extent.halfY;
    const TopoDS_Shape face = planeRectangle(frame_, halfX_, halfY_);
    outline_ = BRepTools::OuterWire(TopoDS::Face(face));
    SetShape(face);
    return true;
}

void SectionPlanePresentation::ComputeSelection(const Handle(SelectMgr_Selection) & selection,
                                                int mode) {
    if (mode != 0 || outline_.IsNull()) {
        AIS_Shape::ComputeSelection(selection, mode);
        return;
    }
    StdSelect_BRepSelectionTool::Load(selection, this, outline_, TopAbs_SHAPE, 0.1, 0.5);
}

} // namespace cad::ui
