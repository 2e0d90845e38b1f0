// Bodies drawn as the document says they look: the appearance painted on the body
// (or its material's look) as the base colour and finish, face appearances over it.
#include "ui/presentation/BodyLook.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/materials/BodyMaterial.h"

#include <Graphic3d_MaterialAspect.hxx>
#include <Prs3d_Drawer.hxx>
#include <Prs3d_LineAspect.hxx>
#include <Quantity_Color.hxx>

namespace cad::ui {

namespace {

Quantity_Color colorOf(const Color& color) {
    return Quantity_Color(color.red, color.green, color.blue, Quantity_TOC_sRGB);
}

// The shading that reads as the finish; the colour is set over it.
Graphic3d_NameOfMaterial shadingOf(Finish finish) {
    switch (finish) {
    case Finish::Polished:
    case Finish::Glossy:
        return Graphic3d_NameOfMaterial_ShinyPlastified;
    case Finish::Satin:
        return Graphic3d_NameOfMaterial_Satin;
    case Finish::Glass:
        return Graphic3d_NameOfMaterial_Glass;
    case Finish::Matte:
    case Finish::Rubber:
        break;
    }
    return Graphic3d_NameOfMaterial_Plastified;
}

} // namespace

std::string bodyLookKey(const Document& document, const GeometryObject& body) {
    std::optional<Appearance> look = lookOf(document, body);
    std::string key = look ? look->text : std::string();
    for (const auto& [face, appearance] : body.faceAppearances) key += ";" + face + "=" + appearance;
    return key;
}

void paintBody(const Handle(AIS_ColoredShape) & presentation, const Document& document,
               const GeometryObject& body) {
    std::optional<Appearance> look = lookOf(document, body);
    presentation->ClearCustomAspects();
    if (look) {
        Graphic3d_MaterialAspect shading(shadingOf(look->finish));
        shading.SetColor(colorOf(look->color));
        presentation->SetMaterial(shading);
        presentation->SetColor(colorOf(look->color));
        presentation->SetTransparency(1.0 - look->opacity);
    } else {
        presentation->SetMaterial(Graphic3d_NameOfMaterial_Plastified);
        // Neutral blue-grey: nothing says how this body looks.
        presentation->SetColor(Quantity_Color(0.64, 0.68, 0.74, Quantity_TOC_sRGB));
        presentation->SetTransparency(0.0);
    }
    // Setting a colour recolours every line aspect: the face boundaries go back to
    // their dark outline.
    if (const Handle(Prs3d_LineAspect)& outline = presentation->Attributes()->FaceBoundaryAspect())
        outline->SetColor(Quantity_Color(0.12, 0.10, 0.09, Quantity_TOC_sRGB));
    for (const auto& [face, appearance] : body.faceAppearances) {
        std::optional<TopoDS_Shape> shape = body.shape.findByName(face);
        std::optional<Appearance> faceLook = lookOfFace(document, body, face);
        if (shape && faceLook) presentation->SetCustomColor(*shape, colorOf(faceLook->color));
    }
}

} // namespace cad::ui
