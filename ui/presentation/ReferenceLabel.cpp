// The words a person reads for a reference in hints, form fields and the browser:
// "X axis", "XY plane", "Line1+Line2 region", "Sketch1/Rectangle1.top left".
#include "ui/presentation/ReferencePicker.h"

#include "core/Document.h"
#include "core/OriginPlanes.h"
#include "core/TextCase.h"
#include "sketch/SketchObject.h"

#include <string_view>

namespace cad::ui {

namespace {

// "X", "x", "XAxis" -> 'X'; 0 for anything else.
char originAxis(std::string_view text) {
    for (char axis : {'X', 'Y', 'Z'}) {
        const std::string bare(1, axis);
        if (equalsIgnoringCase(text, bare) || equalsIgnoringCase(text, bare + "Axis")) return axis;
    }
    return 0;
}

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

} // namespace

QString referenceLabel(const Document& document, const std::string& reference) {
    const std::string_view text = trimmed(reference);
    if (char axis = originAxis(text)) return QStringLiteral("%1 axis").arg(QChar(axis));
    if (auto plane = parseOriginPlane(text))
        return QStringLiteral("%1 plane").arg(QString::fromUtf8(originPlaneName(*plane).data()));
    if (equalsIgnoringCase(text, "Origin")) return QStringLiteral("Origin");

    // A sketch region is read by the curves around it.
    if (const auto slash = text.find('/'); slash != std::string_view::npos) {
        const std::string_view object = trimmed(text.substr(0, slash));
        const std::string_view piece = text.substr(slash + 1);
        constexpr std::string_view kRegion = "Region(";
        if (piece.starts_with(kRegion) && piece.ends_with(')') &&
            document.findAs<SketchObject>(object)) {
            const std::string_view name =
                piece.substr(kRegion.size(), piece.size() - kRegion.size() - 1);
            return QStringLiteral("%1 region")
                .arg(QString::fromUtf8(name.data(), static_cast<int>(name.size())));
        }
    }

    std::string label(text);
    replaceAll(label, "_", " ");
    replaceAll(label, "center center", "center");
    QString out = QString::fromStdString(label);
    if (!out.isEmpty()) out[0] = out[0].toUpper();
    return out;
}

} // namespace cad::ui
