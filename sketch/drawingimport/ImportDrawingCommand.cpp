// Reading import_drawing's arguments, reading the file when the command runs and
// adding what it holds to the sketch.
#include "sketch/drawingimport/ImportDrawingCommand.h"

#include "core/ArgReader.h"
#include "core/TextCase.h"
#include "sketch/drawingimport/DrawingReaders.h"

#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

namespace cad {

using drawingimport::DrawingPlace;

namespace {

constexpr const char* kDescription =
    "Import 2D artwork into a sketch: an SVG, DXF, Illustrator (.ai) or PDF file's vector "
    "paths become joined lines, arcs, circles and splines (DXF text becomes sketch text). "
    "Real units from the file. One undo step.";

std::string millimetres(double width, double height) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(2) << width << " x " << height << " mm";
    return out.str();
}

} // namespace

std::vector<ArgSpec> ImportDrawingCommand::arguments() {
    using T = ArgType;
    return {
        {"sketch", T::String, true, "The sketch's ID or name.", {}, "sketch"},
        {"path", T::String, true, "The file: .svg, .dxf, .ai or .pdf.", {}, ""},
        {"scale", T::Number, false, "Scale factor (default 1).", {}, ""},
        {"width", T::Length, false, "Scale so the drawing is this wide instead.", {}, ""},
        {"place",
         T::String,
         false,
         "corner: lower-left at (x, y) (default for SVG/AI/PDF); center: centered on (x, y); "
         "file: the file's own coordinates, offset by (x, y) (default for DXF).",
         {"corner", "center", "file"},
         ""},
        {"x", T::Length, false, "Default 0.", {}, ""},
        {"y", T::Length, false, "Default 0.", {}, ""},
        {"construction", T::Boolean, false, "Import as construction geometry.", {}, ""},
    };
}

Result<std::unique_ptr<Command>> ImportDrawingCommand::create(const CommandRecord& record) {
    ArgReader reader(record);
    if (Result<void> ok = reader.allowDeclared(arguments()); !ok) return Error(ok);
    Result<std::string> sketch = reader.object("sketch");
    if (!sketch) return Error(sketch);
    const std::string prefix = record.name + ": ";
    Result<std::string> path = reader.string("path", "");
    if (!path || trimmed(*path).empty()) return fail(prefix + "give the file's path.");

    drawingimport::DrawingToSketchOptions options;
    Result<double> scale = reader.number("scale", 1.0);
    if (!scale || !(*scale > 0) || !std::isfinite(*scale))
        return fail(prefix + "'scale' must be a number greater than zero.");
    options.scale = *scale;
    if (reader.has("width")) {
        Result<double> width = reader.length("width");
        if (!width) return Error(width);
        if (!(*width > 0) || !std::isfinite(*width))
            return fail(prefix + "'width' must be a length greater than zero.");
        options.width = *width;
    }
    std::optional<DrawingPlace> place;
    if (reader.has("place")) {
        Result<std::string> word = reader.string("place");
        const std::string w = word ? toLowerAscii(trimmed(*word)) : "";
        if (w == "corner")
            place = DrawingPlace::Corner;
        else if (w == "center")
            place = DrawingPlace::Center;
        else if (w == "file")
            place = DrawingPlace::File;
        else
            return fail(prefix + "'place' must be corner, center or file.");
    }
    Result<double> x = reader.length("x", 0.0);
    if (!x) return Error(x);
    Result<double> y = reader.length("y", 0.0);
    if (!y) return Error(y);
    options.x = *x;
    options.y = *y;
    Result<bool> construction = reader.boolean("construction", false);
    if (!construction) return Error(construction);
    options.construction = *construction;
    return std::unique_ptr<Command>(std::make_unique<ImportDrawingCommand>(
        record, *sketch, std::string(trimmed(*path)), options, place));
}

Result<std::string> ImportDrawingCommand::change(const Document&, const SketchObject&,
                                                 Lists& lists) {
    Result<drawingimport::DrawingFile> file = drawingimport::readDrawingFile(path_);
    if (!file) return Error(file);
    drawingimport::DrawingToSketchOptions options = options_;
    options.place = place_.value_or(file->defaultPlace);
    // The coincidences are made to hold exactly, so the sketch needs no solve.
    Result<drawingimport::DrawingToSketchResult> made =
        drawingimport::drawingToSketch(file->drawing, lists.entities, lists.constraints, options);
    if (!made) return Error(made);
    return "Imported " + std::to_string(made->curves) + " curves from the " + file->format +
           " file (" + millimetres(made->width, made->height) + ").";
}

void registerDrawingImportCommands(CommandRegistry& registry) {
    registry.add("import_drawing", kDescription, ImportDrawingCommand::arguments(),
                 &ImportDrawingCommand::create);
}

} // namespace cad
