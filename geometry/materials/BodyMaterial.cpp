// Finding what covers a body: its own setting, then the components it sits in,
// innermost first, then the document's default material.
#include "geometry/materials/BodyMaterial.h"

#include "core/Document.h"
#include "core/DocumentObject.h"

#include <algorithm>
#include <vector>

namespace cad {

namespace {

// The object, then each component it belongs to, innermost first. A component
// that names itself, directly or round a loop, ends the chain.
std::vector<const DocumentObject*> coveringChain(const Document& document,
                                                 const DocumentObject& object) {
    std::vector<const DocumentObject*> chain{&object};
    for (const DocumentObject* at = &object; !at->component.empty();) {
        at = document.find(at->component);
        if (!at || std::find(chain.begin(), chain.end(), at) != chain.end()) break;
        chain.push_back(at);
    }
    return chain;
}

} // namespace

std::string materialIdOf(const Document& document, const DocumentObject& object) {
    for (const DocumentObject* o : coveringChain(document, object))
        if (!o->material.empty()) return o->material;
    return document.defaultMaterial();
}

const Material* materialOf(const Document& document, const DocumentObject& object) {
    std::string id = materialIdOf(document, object);
    return id.empty() ? nullptr : findMaterial(id);
}

double kFactorOf(const Document& document, const DocumentObject& object) {
    const Material* material = materialOf(document, object);
    return material ? kFactorForMaterial(material->id) : kDefaultKFactor;
}

std::optional<Appearance> lookOf(const Document& document, const DocumentObject& object) {
    // A text that no longer reads (a file from elsewhere) leaves the next rule to decide.
    for (const DocumentObject* o : coveringChain(document, object))
        if (!o->appearance.empty())
            if (Result<Appearance> look = readAppearance(o->appearance)) return *look;
    if (const Material* material = materialOf(document, object))
        if (Result<Appearance> look = readAppearance(material->appearance)) return *look;
    return std::nullopt;
}

std::optional<Appearance> lookOfFace(const Document& document, const DocumentObject& body,
                                     std::string_view faceName) {
    auto painted = body.faceAppearances.find(std::string(faceName));
    if (painted != body.faceAppearances.end())
        if (Result<Appearance> look = readAppearance(painted->second)) return *look;
    return lookOf(document, body);
}

} // namespace cad
