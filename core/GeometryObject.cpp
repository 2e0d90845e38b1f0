// Where a new feature goes in a body's history.
#include "core/GeometryObject.h"

#include "core/Document.h"

namespace cad {

void addFeatureTo(const Document& document, GeometryObject& body, const std::string& featureId) {
    if (!body.features.empty()) {
        const auto* last = document.findAs<FeatureObject>(body.features.back());
        if (last && last->keepsLast() && !last->suppressed) {
            body.features.insert(body.features.end() - 1, featureId);
            return;
        }
    }
    body.features.push_back(featureId);
}

} // namespace cad
