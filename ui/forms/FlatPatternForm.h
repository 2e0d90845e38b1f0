// The Flat Pattern form: a sheet metal part laid flat from a fixed face with the
// K-factor and thickness it is worked out with, summed up as the rows change; Save...
// writes it as a DXF or SVG drawing in the document's unit. Also what the window's
// other ways out of a flat pattern share with it.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "geometry/sheet/flat/FlatPattern.h"
#include "ui/forms/FormDefinition.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cad {
class Document;
class GeometryObject;
} // namespace cad

namespace cad::ui {

// The save dialog: its title, the file it proposes and its filter; empty when cancelled.
using AskFlatPath =
    std::function<QString(const QString& title, const QString& proposed, const QString& filter)>;

// Starts with the part (and its flat face) among `selection`.
FormDefinition flatPatternForm(const Document& document, AskFlatPath askPath,
                               const std::vector<std::string>& selection);

// The part a selection stands for: the first sheet metal body selected (a face or
// feature of it counts), else the first body of any kind; with the flat face of it
// that was selected, as "Body1/Flange1.start". None when no body is among them.
struct FlatSelection {
    std::string body;
    std::string face;
};
std::optional<FlatSelection> flatSelection(const Document& document,
                                           const std::vector<std::string>& selection);

// Whether the body has sheet metal rules: a sheet flange or sheet rules step that
// isn't suppressed. Cheap enough for every body at every refresh.
bool isSheetMetal(const Document& document, const GeometryObject& body);

// A sheet metal body's flat pattern; "Body2 isn't sheet metal: ..." for any other body.
Result<flat::FlatPattern> sheetFlatPattern(const Document& document, const std::string& body,
                                           const flat::FlatOptions& options);

// "98.52 x 50 mm": the blank's size in the unit.
QString flatSizeText(const flat::FlatPattern& pattern, units::Length unit);
// "98.52 x 50 mm  ·  1 bend  ·  2 mm thick".
QString flatSummary(const flat::FlatPattern& pattern, units::Length unit);

// Asks where, in the dialog titled `title`, then writes the pattern there in the
// document's unit as `format` ("dxf" or "svg"; its extension added to a name without
// one). The file written, or an empty path when the dialog was cancelled.
Result<QString> saveFlatPattern(const Document& document, const flat::FlatPattern& pattern,
                                const QString& partName, const QString& format,
                                const QString& title, const AskFlatPath& askPath);

} // namespace cad::ui
