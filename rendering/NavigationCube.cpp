// The navigation cube's looks and click handling.
#include "rendering/NavigationCube.h"

#include <Graphic3d_MaterialAspect.hxx>
#include <Graphic3d_TransformPers.hxx>
#include <Prs3d_ShadingAspect.hxx>
#include <Quantity_Color.hxx>

namespace cad::rendering {

namespace {

Quantity_Color rgb(int r, int g, int b) {
    return Quantity_Color(r / 255.0, g / 255.0, b / 255.0, Quantity_TOC_sRGB);
}

} // namespace

NavigationCube::NavigationCube() {
    SetSize(52);
    SetFontHeight(11);
    SetDrawAxes(false);
    SetAutoStartAnimation(false);
    SetFixedAnimationLoop(false);

    // A neutral white material with a dark ambient lets the side colours show as set.
    Graphic3d_MaterialAspect material(Graphic3d_NameOfMaterial_UserDefined);
    material.SetMaterialType(Graphic3d_MATERIAL_ASPECT);
    material.SetColor(Quantity_NOC_WHITE);
    material.SetAmbientColor(Quantity_Color(0.1, 0.1, 0.1, Quantity_TOC_RGB));
    material.SetSpecularColor(Quantity_Color(0.1, 0.1, 0.1, Quantity_TOC_RGB));
    myDrawer->ShadingAspect()->SetMaterial(material);
    myBoxEdgeAspect->SetMaterial(material);
    myBoxCornerAspect->SetMaterial(material);

    SetBoxColor(rgb(58, 52, 46));
    myBoxEdgeAspect->SetColor(rgb(40, 36, 32));
    myBoxCornerAspect->SetColor(rgb(40, 36, 32));
    SetTextColor(rgb(241, 238, 230));

    // Hovered faces, edges and corners light up in the view's hover colour.
    DynamicHilightAttributes()->SetColor(rgb(150, 186, 226));
    DynamicHilightAttributes()->SetTransparency(0.0f);
    placeInCorner(80);
}

void NavigationCube::setClickHandler(ClickHandler handler) { clickHandler_ = std::move(handler); }

void NavigationCube::placeInCorner(int cornerSize) {
    const int offset = cornerSize / 2 + cornerSize / 16;
    SetTransformPersistence(new Graphic3d_TransformPers(
        Graphic3d_TMF_TriedronPers, Aspect_TOTP_RIGHT_UPPER, Graphic3d_Vec2i(offset, offset)));
}

void NavigationCube::HandleClick(const Handle(AIS_ViewCubeOwner) & owner) {
    if (clickHandler_ && !owner.IsNull()) clickHandler_(owner->MainOrientation());
}

} // namespace cad::rendering
