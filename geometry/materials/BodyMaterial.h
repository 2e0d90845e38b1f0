// What a body is made of and how it looks, by the rules that cover it: its own
// material or appearance, else its component's, else the document's default
// material and that material's look; and the mass that follows from the material.
#pragma once

#include "geometry/materials/Appearance.h"
#include "geometry/materials/MaterialTables.h"

#include <optional>
#include <string>
#include <string_view>

namespace cad {

class Document;
class DocumentObject;

// The material id that applies to a body or component: its own, else that of the
// nearest component it belongs to, else the document's default; empty when none.
std::string materialIdOf(const Document& document, const DocumentObject& object);
// The table's record of that id; null when none applies or the id is not listed.
const Material* materialOf(const Document& document, const DocumentObject& object);
// The K-factor sheet metal made of the body's material bends with by default.
double kFactorOf(const Document& document, const DocumentObject& object);

// The look of a body or component as a whole: its own appearance, else that of the
// nearest component it belongs to, else its material's; none leaves the viewport's.
std::optional<Appearance> lookOf(const Document& document, const DocumentObject& object);
// The look of one face of a body, by the face's persistent name: painted on the face,
// else the body's look.
std::optional<Appearance> lookOfFace(const Document& document, const DocumentObject& body,
                                     std::string_view faceName);

inline constexpr double kKilogramsPerPound = 0.45359237;
// The mass in kilograms of a volume in mm³ of a density in kg/m³.
constexpr double massKilograms(double densityKgM3, double volumeMm3) {
    return densityKgM3 * volumeMm3 * 1e-9;
}

} // namespace cad
