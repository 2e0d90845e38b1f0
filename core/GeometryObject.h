// A solid body: an optional base shape (imported or created) and the ordered
// IDs of the features that build it. Bodies are rebuilt through their features.
#pragma once

#include "core/DocumentObject.h"

#include <memory>

namespace cad {

namespace geometry {
class NamedShape;
}

class GeometryObject : public DocumentObject {
public:
    std::string_view typeName() const override { return "Body"; }

    bool hasBaseShape() const { return baseShape != nullptr; }

    std::vector<std::string> features; // feature IDs in build order
    std::shared_ptr<const geometry::NamedShape>
        baseShape; // what an imported or created body starts from
};

} // namespace cad
