// The part common to everything a document holds (bodies, sketches, features,
// planes...): identity, label, owning component, visibility and looks.
#pragma once

#include "core/Result.h"
#include "core/units/Expression.h"

#include <any>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;
namespace geometry {
class NamedShape;
}

class DocumentObject {
public:
    DocumentObject() = default;
    DocumentObject(const DocumentObject&) = default;
    DocumentObject& operator=(const DocumentObject&) = default;
    virtual ~DocumentObject();

    // The type word: what the project file writes as "type" and what IDs are made from.
    virtual std::string_view typeName() const = 0;
    // IDs of the objects whose results this object uses.
    virtual std::vector<std::string> dependencies() const { return {}; }
    // Recomputes the object from its inputs; true when its result changed.
    virtual bool recompute(const Document&) { return false; }

    // Values typed as expressions follow the document's parameters. An object with
    // such values lists them by value key ("distance", "Distance1"), renames
    // parameter names inside them, and re-evaluates them, storing the results and
    // naming each failure "<ID>.<key>: <message>"; true when anything changed.
    virtual std::vector<std::pair<std::string, units::Expression>> valueExpressions() const {
        return {};
    }
    virtual void renameInExpressions(std::string_view /*from*/, std::string_view /*to*/) {}
    virtual bool reevaluateExpressions(std::vector<std::string>& /*problems*/) { return false; }
    // The values, solved geometry and expression text that re-evaluating or renaming
    // may change, put back exactly when a parameter change is refused or undone.
    virtual std::any valuesSnapshot() const { return {}; }
    virtual void restoreValues(const std::any& /*snapshot*/) {}

    // The label when there is one, else the ID.
    const std::string& displayName() const { return label.empty() ? id : label; }

    std::uint64_t serial = 0; // 0 = not yet in a document
    std::string id;
    std::string label;
    std::string component; // owning component's ID; empty at top level
    bool visible = true;
    std::string material;
    std::string appearance;
    std::map<std::string, std::string> faceAppearances; // face reference -> appearance key
};

// A history step that changes one body. Features are computed by their body,
// never by themselves, so they keep the default dependencies and recompute.
class FeatureObject : public DocumentObject {
public:
    // IDs of objects outside the feature's own body that it uses.
    virtual std::vector<std::string> references() const = 0;
    // Computes the feature from its body's current shape.
    virtual Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                               const Document& document) const = 0;
    // False for a feature that moves with another history step instead of standing
    // in the timeline on its own (a body pattern bound to a pattern set).
    virtual bool standsAlone() const { return true; }
    // True for a step that new features go just before while it ends its body's
    // history (a fold left open, so that work goes onto the flat part).
    virtual bool keepsLast() const { return false; }

    bool suppressed = false;
    std::string error; // why the last rebuild failed; empty when it computed

private:
    std::vector<std::string> dependencies() const final { return {}; }
    bool recompute(const Document&) final { return false; }
};

} // namespace cad
