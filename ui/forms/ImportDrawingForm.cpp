// The Import Drawing form's rows and commands. The width row starts at the drawing's
// own width, so OK without a change imports it at its real size; a drop centres the
// drawing where it fell.
#include "ui/forms/ImportDrawingForm.h"

#include "core/Document.h"
#include "geometry/param/FeatureArgument.h"
#include "sketch/SketchObject.h"
#include "sketch/SketchPlaneResolver.h"
#include "ui/forms/ArgumentPicks.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormValues.h"
#include "ui/presentation/ReferencePicker.h"

#include <cmath>
#include <memory>

namespace cad::ui {

namespace {

const QString kPlane = QStringLiteral("plane");
const QString kWidth = QStringLiteral("width");
const QString kPlace = QStringLiteral("place");
const QString kConstruction = QStringLiteral("construction");

const char* placeWord(drawingimport::DrawingPlace place) {
    switch (place) {
    case drawingimport::DrawingPlace::Center:
        return "center";
    case drawingimport::DrawingPlace::Corner:
        return "corner";
    case drawingimport::DrawingPlace::File:
        return "file";
    }
    return "corner";
}

// The plane a sketch on `reference` would lie in: an origin plane by name, else a
// reference plane or flat face through the geometry's resolver.
Result<PlaneFrame> planeOf(const Document& document, const std::string& reference) {
    if (const std::optional<OriginPlane> origin = parseOriginPlane(reference))
        return originPlaneFrame(*origin);
    const SketchPlaneResolver* resolver = sketchPlaneResolver();
    if (!resolver) return fail("Pick an origin plane: XY, XZ or YZ.");
    return resolver->planeOf(document, reference);
}

} // namespace

FormDefinition importDrawingForm(const Document& document, DrawingImportSource source) {
    auto from = std::make_shared<const DrawingImportSource>(std::move(source));
    const std::optional<drawingimport::DrawingExtent> extent =
        drawingimport::drawingExtent(from->file.drawing);
    const double drawnWidth = extent ? extent->width : 0;

    FormDefinition form;
    form.icon = QStringLiteral("import");
    form.title = QStringLiteral("Import Drawing");
    form.setup = [&document, from, drawnWidth](FeatureForm& f) {
        if (from->sketch.empty()) {
            f.addPick(kPlane, QStringLiteral("Plane"),
                      QStringLiteral("XY, XZ, YZ, a reference plane or a flat face"),
                      pickRuleFor(document, FeatureArgument::Planes | FeatureArgument::Faces,
                                  QStringLiteral("plane"), false, true,
                                  QStringLiteral("Pick the plane to sketch on.")));
            f.setReferences(kPlane, {"XY"});
        }
        // A drawing with no width (one vertical line) can only come in at its own size.
        if (drawnWidth > 0)
            f.addLength(
                kWidth, QStringLiteral("Width"),
                QStringLiteral("The drawing is %1 wide as drawn")
                    .arg(lengthText(drawnWidth, document) + QStringLiteral(" ") +
                         QString::fromUtf8(units::unitAbbreviation(document.lengthUnit()).data())),
                lengthText(drawnWidth, document));
        const bool dropped = static_cast<bool>(from->droppedAt);
        f.addSegmented(
            kPlace, QStringLiteral("Place"), {},
            {{QStringLiteral("center"), QStringLiteral("Centered"),
              dropped ? QStringLiteral("Relative to where it was dropped")
                      : QStringLiteral("Relative to the sketch origin")},
             {QStringLiteral("corner"), QStringLiteral("Corner"),
              QStringLiteral("Relative to the sketch origin")},
             {QStringLiteral("file"), QStringLiteral("As in file"), {}}},
            QString::fromLatin1(dropped ? "center" : placeWord(from->file.defaultPlace)));
        f.addFlag(kConstruction, QStringLiteral("As construction"), {}, false);
    };
    form.before = [from](FeatureForm& f) -> Result<std::vector<CommandRecord>> {
        std::vector<CommandRecord> first;
        if (from->sketch.empty())
            first.push_back(CommandRecord("create_sketch")
                                .set("on", joinReferences(f.references(kPlane)).c_str()));
        return first;
    };
    form.build = [&document, from, drawnWidth](FeatureForm& f) -> Result<CommandRecord> {
        std::string sketch = from->sketch;
        PlaneFrame plane;
        if (sketch.empty()) {
            const std::vector<std::string>& picked = f.references(kPlane);
            if (picked.empty()) return fail("Pick the plane to sketch on.");
            Result<PlaneFrame> frame = planeOf(document, picked.front());
            if (!frame) return Error(frame);
            plane = *frame;
            // The sketch made first takes the next free name, as it does here.
            sketch = document.nextId("Sketch");
        } else if (const auto* edited = document.findAs<SketchObject>(sketch)) {
            plane = edited->frame();
        }
        CommandRecord record("import_drawing");
        record.set("sketch", sketch.c_str());
        record.set("path", from->path.c_str());
        if (f.has(kWidth)) {
            Result<double> width = f.length(kWidth);
            if (!width) return Error(width);
            if (!(*width > 0) || !std::isfinite(*width))
                return fail("The width must be greater than zero.");
            // Left at the drawn width it stays exactly the file's size.
            if (std::abs(*width - drawnWidth) > 1e-9 * std::max(1.0, drawnWidth))
                record.set("width", *width);
        }
        const QString place = f.text(kPlace);
        record.set("place", place.toStdString().c_str());
        if (place == QLatin1String("center") && from->droppedAt)
            if (const std::optional<std::array<double, 2>> at = from->droppedAt(plane)) {
                record.set("x", (*at)[0]);
                record.set("y", (*at)[1]);
            }
        record.set("construction", f.flag(kConstruction));
        return record;
    };
    // Into an edited sketch the drawing shows as the rows change.
    if (!from->sketch.empty())
        form.session = [from](FeatureForm&) {
            return std::optional(FormSession::Handle{from->sketch});
        };
    return form;
}

} // namespace cad::ui
