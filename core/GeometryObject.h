// A solid body: an optional base shape (imported or created) and the ordered
// IDs of the features that build it. Bodies are rebuilt through their features.
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"

namespace cad {

class GeometryObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "Body"; }

    bool hasBaseShape() const { return !baseShape.isNull(); }

    geometry::NamedShape baseShape;    // what an imported or created body starts from
    std::vector<std::string> features; // feature IDs in build order
    geometry::NamedShape shape;        // the current result, with its final names
};

class Document;

// Adds a new feature to the body's history: at the end, or just before a last step
// that keeps its place there (an open fold).
void addFeatureTo(const Document& document, GeometryObject& body, const std::string& featureId);

} // namespace cad
