// The Nest Parts form: bodies laid flat and packed, so many of each, on sheets of a
// size, with spacing, margins and turning; Save... writes the sheets as one DXF or
// SVG drawing. The rows are remembered for the next nest.
#pragma once

#include "core/Result.h"
#include "sketch/drawing/Drawing.h"
#include "ui/forms/FormDefinition.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace cad {
class Document;
}

namespace cad::ui {

struct NestFormHost {
    // A body laid flat, as its flat pattern, in millimetres.
    std::function<Result<drawing::Drawing>(const std::string& body)> flatDrawing;
    // The file to write, asked in the "Save the nest" dialog; empty when cancelled.
    std::function<QString(const QString& proposed, const QString& filter)> askPath;
};

// Starts with the bodies among `selection`.
FormDefinition nestForm(const Document& document, NestFormHost host,
                        const std::vector<std::string>& selection);

} // namespace cad::ui
