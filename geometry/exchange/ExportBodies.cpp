// Collecting bodies for export by ID or name (IDs first, then labels, ignoring
// case), or every visible body.
#include "geometry/exchange/ExportBodies.h"

#include "core/Document.h"
#include "core/GeometryObject.h"

#include <algorithm>

namespace cad::exchange {

Result<std::vector<ExportBody>> collectBodies(const Document& document,
                                              const std::vector<std::string>& names) {
    std::vector<ExportBody> bodies;
    std::vector<const GeometryObject*> taken;
    for (const std::string& name : names) {
        const auto* body = document.findAs<GeometryObject>(name);
        if (!body) {
            if (document.findByName(name)) return fail("'" + name + "' isn't a body.");
            return fail("No body named '" + name + "'.");
        }
        if (body->shape.isNull()) return fail(name + " has no shape.");
        if (std::find(taken.begin(), taken.end(), body) != taken.end()) continue;
        taken.push_back(body);
        bodies.push_back({body->displayName(), body->shape.shape()});
    }
    if (names.empty()) {
        for (const auto& object : document.objects()) {
            const auto* body = dynamic_cast<const GeometryObject*>(object.get());
            if (body && body->visible && !body->shape.isNull())
                bodies.push_back({body->displayName(), body->shape.shape()});
        }
    }
    if (bodies.empty()) return fail("There are no visible bodies to export.");
    return bodies;
}

} // namespace cad::exchange
