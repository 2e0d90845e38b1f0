// What the commands that add one feature share (fillet, chamfer, shell, hole,
// thread): the feature added at the end of a body's history, taken out again on undo and put back, the same object, on redo.
#pragma once

#include "core/Command.h"
#include "core/Document.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace cad {

class GeometryObject;

class AppendFeatureCommand : public Command {
public:
    CommandResult execute(Document& document) final;
    void undo(Document& document) final;

protected:
    using Command::Command;

    // Checks the arguments against the document and appends the feature.
    virtual CommandResult firstRun(Document& document) = 0;
    // What the command says once the feature has computed in its body.
    virtual std::string done(const Document& document, const FeatureObject& feature,
                             const GeometryObject& body) const = 0;

    // Adds the feature at the end of the body's history and rebuilds the body. A
    // feature that fails its first compute is taken out again, the document is as it
    // was, and the command fails with the feature's sentence.
    CommandResult append(Document& document, GeometryObject& body,
                         std::unique_ptr<FeatureObject> feature);

private:
    void takeOut(Document& document);

    std::uint64_t featureSerial_ = 0, bodySerial_ = 0;
    std::optional<Document::Taken> undone_;
};

// Rebuilds a feature's body from the feature on after its values changed and tells
// the observers; the body's failure, if any, else empty.
std::string rebuildAfterEdit(Document& document, const FeatureObject& feature);

} // namespace cad
