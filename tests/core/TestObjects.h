// Small document objects for exercising the document and commands without the
// real object types of the higher layers.
#pragma once

#include "core/DocumentObject.h"

#include <memory>
#include <string>
#include <vector>

namespace cad::test {

// Any object type: the type word and dependencies are whatever the test says.
class Thing : public DocumentObject {
public:
    Thing(std::string typeWord, std::string objectId, std::string objectLabel = {})
        : type(std::move(typeWord)) {
        id = std::move(objectId);
        label = std::move(objectLabel);
    }
    std::string_view typeName() const override { return type; }
    std::vector<std::string> dependencies() const override { return uses; }

    std::string type;
    std::vector<std::string> uses;
};

class TestFeature : public FeatureObject {
public:
    explicit TestFeature(std::string objectId, std::vector<std::string> refs = {})
        : refs_(std::move(refs)) {
        id = std::move(objectId);
    }
    std::string_view typeName() const override { return "Extrude"; }
    std::vector<std::string> references() const override { return refs_; }
    bool standsAlone() const override { return alone; }

    bool alone = true;

private:
    std::vector<std::string> refs_;
};

inline std::unique_ptr<Thing> thing(std::string type, std::string id, std::string label = {}) {
    return std::make_unique<Thing>(std::move(type), std::move(id), std::move(label));
}

} // namespace cad::test
