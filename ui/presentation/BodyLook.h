// How a body is painted in the view: its appearance, else its material's look, else
// the neutral blue-grey; faces painted on their own over it.
#pragma once

#include <AIS_ColoredShape.hxx>

#include <string>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::ui {

// What the body's look is made of, as text: equal texts paint the same.
std::string bodyLookKey(const Document& document, const GeometryObject& body);
// Colours, finish and transparency of the body and its painted faces.
void paintBody(const Handle(AIS_ColoredShape) & presentation, const Document& document,
               const GeometryObject& body);

} // namespace cad::ui
