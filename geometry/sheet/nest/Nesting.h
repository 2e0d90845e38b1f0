// Nesting: flat parts laid out on as many rectangular sheets as they need, each copy
// placed square or turned by 90 degrees, with one drawing of all the sheets.
#pragma once

#include "core/Result.h"
#include "sketch/drawing/Drawing.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cad::nest {

// One part to cut: its flat drawing (outline on CUT_OUTSIDE, holes on CUT_INSIDE,
// bend lines on BEND) and how many copies. A drawing in another unit is read in
// millimetres first.
struct NestPart {
    std::string name;
    drawing::Drawing drawing;
    std::int32_t quantity = 1; // 0 or less: none
};

// Lengths in millimetres.
struct NestRequest {
    std::vector<NestPart> parts; // in the order given
    double sheetWidth = 0;
    double sheetHeight = 0;
    double spacing = 3; // between parts
    double margin = 5;  // between the parts and the sheet's edges
    bool allowTurning = true;
};

// Where one copy landed: its drawing's origin at (x, y) on the sheet, turned by
// `angle` degrees (0, or 90 when the packer turned it).
struct NestPlacement {
    std::string part;
    std::int32_t copy = 1;  // from 1
    std::int32_t sheet = 0; // from 0
    double x = 0;
    double y = 0;
    double angle = 0;
};

struct NestResult {
    std::int32_t sheetCount = 0;
    std::vector<NestPlacement> placements; // in placing order
    // Every copy's items, then one closed outline on layer SHEET per sheet; sheet i
    // starts at x = (width + sheetGap) * i. In millimetres.
    drawing::Drawing drawing;
    double sheetGap = 0;
    double usage = 0; // the parts' rectangles over the sheets' area, 0 to 1
};

// Lays out every copy of every part, or says why it can't ("Body2 (300 x 20 mm)
// doesn't fit on the sheet.").
Result<NestResult> nest(const NestRequest& request);

} // namespace cad::nest
