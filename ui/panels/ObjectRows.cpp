// Folder, text, icon and problem of an object's row, shared by the browser and the
// history panel so both name and mark things the same way.
#include "ui/panels/ObjectRows.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "ui/widgets/Icons.h"

#include <array>
#include <string_view>

namespace cad::ui {

namespace {

struct Placement {
    std::string_view typeWord;
    const char* folder;
};

// Type words not listed here (and features without a body) go with the bodies.
constexpr std::array kPlacements = {
    Placement{"Component", "Components"},
    Placement{"Instance", "Instances"},
    Placement{"Connection", "Connections"},
    Placement{"Plane", "Planes"},
    Placement{"Section", "Analysis"},
    Placement{"Deviation", "Analysis"},
    Placement{"Scan", "Scans"},
    Placement{"Extract", "Scans"},
    Placement{"Canvas", "Canvases"},
    Placement{"Sketch", "Sketches"},
    Placement{"Body", "Bodies"},
    Placement{"Setup", "Setups"},
    Placement{"Operation", "Setups"},
};

} // namespace

const QStringList& browserFolders() {
    static const QStringList folders = {QStringLiteral("Components"),  QStringLiteral("Instances"),
                                        QStringLiteral("Connections"), QStringLiteral("Planes"),
                                        QStringLiteral("Analysis"),    QStringLiteral("Scans"),
                                        QStringLiteral("Canvases"),    QStringLiteral("Sketches"),
                                        QStringLiteral("Bodies"),      QStringLiteral("Setups")};
    return folders;
}

QString browserFolderOf(const DocumentObject& object) {
    if (dynamic_cast<const FeatureObject*>(&object)) return {};
    for (const Placement& placement : kPlacements)
        if (placement.typeWord == object.typeName()) return QString::fromLatin1(placement.folder);
    return QStringLiteral("Bodies");
}

QString rowText(const DocumentObject& object) {
    const QString name = fromStd(object.displayName());
    const std::string_view type = object.typeName();
    if (type == "Component") return QStringLiteral("Component · %1").arg(name);
    if (type == "Instance") return QStringLiteral("Instance · %1").arg(name);
    if (type == "Setup") return QStringLiteral("Setup · %1").arg(name);
    return name;
}

QIcon objectIcon(const DocumentObject& object) {
    // An icon named after the type word when the set has one ("sketch", "extrude").
    const QIcon own = icon(fromStd(object.typeName()).toLower());
    if (!own.isNull()) return own;
    return icon(dynamic_cast<const FeatureObject*>(&object) ? QStringLiteral("layers")
                                                            : QStringLiteral("box"));
}

QString objectProblem(const Document& document, const DocumentObject& object) {
    if (const auto* feature = dynamic_cast<const FeatureObject*>(&object))
        return fromStd(feature->error);
    if (const auto* body = dynamic_cast<const GeometryObject*>(&object)) {
        // The first feature with an error is the one that failed; the later ones
        // only say that they were not computed.
        for (const std::string& id : body->features) {
            const auto* feature = dynamic_cast<const FeatureObject*>(document.find(id));
            if (!feature) return QStringLiteral("Feature '%1' is missing.").arg(fromStd(id));
            if (!feature->error.empty()) return fromStd(id + ": " + feature->error);
        }
    }
    return {};
}

} // namespace cad::ui
