// The command of every parametric kind ("revolve", "sweep", ...): its arguments read
// by the kind's table, then a new body with the feature first, or the feature
// appended to the body it joins, cuts, intersects or changes.
#pragma once

#include "core/Command.h"
#include "core/Document.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace cad {

class GeometryObject;
struct ParamFeatureType;

class FeatureCommand : public Command {
public:
    static Result<std::unique_ptr<Command>> create(const std::string& typeId,
                                                   const CommandRecord& record);

    CommandResult execute(Document& document) override;
    void undo(Document& document) override;

private:
    FeatureCommand(std::string typeId, CommandRecord record)
        : Command(std::move(record)), typeId_(std::move(typeId)) {}

    CommandResult firstRun(Document& document);
    // The body a join, cut, intersect or change goes to: the one named, else the
    // body of what the parameters use.
    Result<GeometryObject*> bodyFor(Document& document, const ParamFeatureType& type,
                                    const nlohmann::json& parameters,
                                    const std::string& given) const;
    std::string done(const std::string& feature, const std::string& body) const;
    void insert(Document& document);
    void remove(Document& document);

    std::string typeId_;
    nlohmann::json values_ = nlohmann::json::object(); // the kind's own keys, as given
    std::string operation_ = "new_body";
    std::string targetName_;  // join, cut, intersect: the body, as given
    std::string bodyName_;    // a new body's name, or the body a change goes to, as given
    std::string featureName_; // as given

    // What execute added, kept while undone so redo brings back the same IDs.
    std::uint64_t featureSerial_ = 0, bodySerial_ = 0;
    bool newBody_ = false;
    std::vector<Document::Taken> undone_; // the feature, then a new body
};

// The body a feature's parameters point at: for the first object they use that can
// tell, the body a sketch sits on, the body itself, or a feature's body.
GeometryObject* bodyOfUsedObjects(const Document& document,
                                  const std::vector<std::string>& objects);

} // namespace cad
