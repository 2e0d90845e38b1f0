// import_drawing: an SVG, DXF, Illustrator or PDF file's paths added to a sketch as
// one group of joined lines, arcs, circles and splines, in one undo step.
#pragma once

#include "core/CommandRegistry.h"
#include "sketch/drawingimport/DrawingToSketch.h"
#include "sketch/patterns/SketchSnapshotCommand.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cad {

class ImportDrawingCommand : public SketchSnapshotCommand {
public:
    static std::vector<ArgSpec> arguments();
    static Result<std::unique_ptr<Command>> create(const CommandRecord& record);

    ImportDrawingCommand(CommandRecord record, std::string sketch, std::string path,
                         drawingimport::DrawingToSketchOptions options,
                         std::optional<drawingimport::DrawingPlace> place)
        : SketchSnapshotCommand(std::move(record), std::move(sketch)), path_(std::move(path)),
          options_(options), place_(place) {}

protected:
    Result<std::string> change(const Document& document, const SketchObject& sketch,
                               Lists& lists) override;

private:
    std::string path_;
    drawingimport::DrawingToSketchOptions options_;
    std::optional<drawingimport::DrawingPlace> place_; // none: the format's own default
};

// Registers import_drawing.
void registerDrawingImportCommands(CommandRegistry& registry);

} // namespace cad
