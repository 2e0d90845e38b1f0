// Nesting: checking the request, turning each part to its tightest rectangle, then
// packing the copies' rectangles, largest first, by best short-side fit over every
// open sheet.
#include "geometry/sheet/nest/Nesting.h"

#include "core/units/Length.h"
#include "geometry/sheet/nest/FreeRectangles.h"
#include "geometry/sheet/nest/TightestRectangle.h"
#include "geometry/sheet/nest/TurnedItems.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace cad::nest {

using drawing::Drawing;
using drawing::DrawingItem;
using drawing::DrawingPoint;

namespace {

constexpr double kTolerance = 1e-9;
// More copies than any sheet order holds; each takes a pass over the open sheets.
constexpr std::int64_t kMostCopies = 100'000;

// A part with copies to place: its drawing turned to the tightest rectangle, which
// starts at (0, 0) and measures w x h.
struct PreparedPart {
    const NestPart* part;
    Drawing drawing;
    double w = 0;
    double h = 0;
};

struct Copy {
    std::size_t part;
    std::int32_t number;
};

// Where a copy goes: a free rectangle of an open sheet, square or turned.
struct Choice {
    std::size_t sheet;
    std::size_t rectangle;
    bool turned;
    double score;
};

std::optional<std::string> requestProblem(const NestRequest& r) {
    if (r.parts.empty()) return "Choose the parts to nest.";
    if (!(std::isfinite(r.sheetWidth) && r.sheetWidth > 0 && std::isfinite(r.sheetHeight) &&
          r.sheetHeight > 0))
        return "The sheet needs a width and a height.";
    if (!(r.spacing >= 0 && r.margin >= 0)) return "Spacing and margin can't be negative.";
    const double usableWidth = r.sheetWidth - 2 * r.margin + r.spacing;
    const double usableHeight = r.sheetHeight - 2 * r.margin + r.spacing;
    if (!(r.spacing < usableWidth && r.spacing < usableHeight))
        return "The margins leave no room on the sheet.";
    if (std::none_of(r.parts.begin(), r.parts.end(),
                     [](const NestPart& p) { return p.quantity > 0; }))
        return "Every part has a quantity of zero.";
    std::int64_t copies = 0;
    for (const NestPart& p : r.parts) copies += std::max<std::int64_t>(p.quantity, 0);
    if (copies > kMostCopies)
        return "That's " + std::to_string(copies) + " copies; at most " +
               std::to_string(kMostCopies) + " can be nested at a time.";
    return std::nullopt;
}

PreparedPart prepare(const NestPart& part) {
    PreparedPart prepared{&part, drawing::inUnit(part.drawing, units::Length::Millimeters)};
    turnDrawing(prepared.drawing, tightestAngle(prepared.drawing), {0, 0});
    const drawing::DrawingBounds box = drawing::drawingBounds(prepared.drawing);
    turnDrawing(prepared.drawing, 0, {-box.minX, -box.minY});
    prepared.w = box.maxX - box.minX;
    prepared.h = box.maxY - box.minY;
    return prepared;
}

std::string wholeMillimetres(double length) {
    char text[64];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, std::round(length), std::chars_format::fixed, 0);
    return error == std::errc() ? std::string(text, end) : std::string("?");
}

std::string doesNotFit(const PreparedPart& part) {
    return part.part->name + " (" + wholeMillimetres(part.w) + " x " + wholeMillimetres(part.h) +
           " mm) doesn't fit on the sheet.";
}

// The best short-side fit on one sheet, square and then turned, taken only when it
// beats `best` outright.
void searchSheet(const FreeRectangles& sheet, std::size_t index, double a, double b,
                 bool allowTurning, std::optional<Choice>& best) {
    for (const bool turned : {false, true}) {
        if (turned && !allowTurning) break;
        const std::optional<FreeFit> fit = turned ? sheet.bestFit(b, a) : sheet.bestFit(a, b);
        if (fit && (!best || fit->score < best->score))
            best = Choice{index, fit->index, turned, fit->score};
    }
}

} // namespace

Result<NestResult> nest(const NestRequest& request) {
    if (std::optional<std::string> problem = requestProblem(request)) return fail(*problem);
    const double width = request.sheetWidth, height = request.sheetHeight;
    const double spacing = request.spacing, margin = request.margin;
    const double usableWidth = width - 2 * margin + spacing;
    const double usableHeight = height - 2 * margin + spacing;

    std::vector<PreparedPart> parts;
    std::vector<Copy> copies;
    for (const NestPart& part : request.parts) {
        if (part.quantity <= 0) continue;
        parts.push_back(prepare(part));
        for (std::int32_t n = 1; n <= part.quantity; ++n) copies.push_back({parts.size() - 1, n});
    }
    // Largest rectangles first; the copies of one part stay together, in number order.
    std::stable_sort(copies.begin(), copies.end(), [&](const Copy& l, const Copy& r) {
        return parts[l.part].w * parts[l.part].h > parts[r.part].w * parts[r.part].h;
    });

    NestResult result;
    result.sheetGap = std::max(0.05 * width, 20.0);
    result.placements.reserve(copies.size());
    std::vector<FreeRectangles> sheets;
    double usedArea = 0;
    for (const Copy& copy : copies) {
        const PreparedPart& part = parts[copy.part];
        const double a = part.w + spacing, b = part.h + spacing;
        const bool fitsSquare = a <= usableWidth + kTolerance && b <= usableHeight + kTolerance;
        const bool fitsTurned =
            request.allowTurning && b <= usableWidth + kTolerance && a <= usableHeight + kTolerance;
        if (!fitsSquare && !fitsTurned) return fail(doesNotFit(part));

        std::optional<Choice> choice;
        for (std::size_t s = 0; s < sheets.size(); ++s)
            searchSheet(sheets[s], s, a, b, request.allowTurning, choice);
        if (!choice) {
            sheets.emplace_back(usableWidth, usableHeight);
            searchSheet(sheets.back(), sheets.size() - 1, a, b, request.allowTurning, choice);
            if (!choice) // cannot happen after the check above; never place blindly
                return fail(doesNotFit(part));
        }

        FreeRectangles& sheet = sheets[choice->sheet];
        const Rectangle free = sheet.rectangles()[choice->rectangle];
        sheet.place({free.x, free.y, choice->turned ? b : a, choice->turned ? a : b});
        usedArea += part.w * part.h;

        NestPlacement placed;
        placed.part = part.part->name;
        placed.copy = copy.number;
        placed.sheet = static_cast<std::int32_t>(choice->sheet);
        placed.x = free.x + margin;
        placed.y = free.y + margin;
        if (choice->turned) {
            placed.angle = 90;
            placed.x += part.h; // turning about the origin swings the part to negative x
        }
        const double sheetX = (width + result.sheetGap) * static_cast<double>(choice->sheet);
        const DrawingPoint shift{sheetX + placed.x, placed.y};
        for (const DrawingItem& item : part.drawing.items)
            result.drawing.items.push_back(turnedItem(item, placed.angle, shift));
        result.placements.push_back(std::move(placed));
    }

    result.sheetCount = static_cast<std::int32_t>(sheets.size());
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const double o = (width + result.sheetGap) * static_cast<double>(i);
        result.drawing.items.push_back({drawing::ItemKind::Polyline,
                                        "SHEET",
                                        {{o, 0}, {o + width, 0}, {o + width, height}, {o, height}},
                                        0,
                                        0,
                                        0,
                                        true});
    }
    result.usage = usedArea / (static_cast<double>(sheets.size()) * width * height);
    return result;
}

} // namespace cad::nest
