// Bodies and components as targets of materials and appearances, notifying what
// they cover, and putting their looks back on undo.
#include "geometry/materials/LookTargets.h"

#include "core/Document.h"
#include "core/GeometryObject.h"

#include <algorithm>

namespace cad {

namespace {

// Whether `object` belongs to `component`, directly or through components inside it.
bool belongsTo(const Document& document, const DocumentObject& object,
               const DocumentObject& component) {
    std::vector<const DocumentObject*> seen;
    for (const DocumentObject* at = &object; !at->component.empty();) {
        at = document.find(at->component);
        if (!at || std::find(seen.begin(), seen.end(), at) != seen.end()) return false;
        if (at == &component) return true;
        seen.push_back(at);
    }
    return false;
}

} // namespace

bool isBodyOrComponent(const DocumentObject& object) {
    return dynamic_cast<const GeometryObject*>(&object) != nullptr ||
           object.typeName() == "Component";
}

Result<DocumentObject*> findBodyOrComponent(const Document& document, std::string_view name) {
    DocumentObject* object = document.findByName(name);
    if (!object || !isBodyOrComponent(*object))
        return fail("'" + std::string(name) + "' is not a body or component.");
    return object;
}

void notifyLooksChanged(Document& document, const std::vector<DocumentObject*>& objects) {
    std::vector<DocumentObject*> changed;
    auto add = [&](DocumentObject* o) {
        if (std::find(changed.begin(), changed.end(), o) == changed.end()) changed.push_back(o);
    };
    for (DocumentObject* object : objects) {
        add(object);
        if (object->typeName() != "Component") continue;
        for (const auto& inside : document.objects())
            if (belongsTo(document, *inside, *object)) add(inside.get());
    }
    for (DocumentObject* object : changed) document.notifyChanged(*object);
}

void SavedLooks::remember(const DocumentObject& object) {
    for (const Saved& s : saved_)
        if (s.serial == object.serial) return;
    saved_.push_back({object.serial, object.material, object.appearance, object.faceAppearances});
}

void SavedLooks::restore(Document& document) const {
    std::vector<DocumentObject*> restored;
    for (const Saved& s : saved_) {
        DocumentObject* object = document.findBySerial(s.serial);
        if (!object) continue;
        object->material = s.material;
        object->appearance = s.appearance;
        object->faceAppearances = s.faceAppearances;
        restored.push_back(object);
    }
    notifyLooksChanged(document, restored);
}

} // namespace cad
