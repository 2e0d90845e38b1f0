// The table from type word to what the project file needs of each object type:
// how to make an empty one, and how to write and read its own keys. Every folder
// fills it through its own registerXxxTypes function.
#pragma once

#include "core/DocumentObject.h"
#include "core/ProjectArchive.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

struct ObjectType {
    std::string typeWord; // "Body", "Sketch", "Extrude", or a generic feature's kind
    std::string noun;     // how problems name it: "body", "sketch", "pattern"
    std::function<std::unique_ptr<DocumentObject>()> create;
    // Writes the type's own keys after the common ones; side files go by entry name.
    std::function<void(const DocumentObject&, nlohmann::ordered_json& record, SideFiles& sideFiles)>
        write;
    // Reads the type's own keys; a problem is a phrase such as "\"params\" must be an object".
    std::function<Result<void>(DocumentObject&, const nlohmann::json& record,
                               const ArchiveReader& archive)>
        read;
};

class ObjectTypes {
public:
    void add(ObjectType type) { types_.push_back(std::move(type)); }
    const ObjectType* find(std::string_view typeWord) const;

private:
    std::vector<ObjectType> types_;
};

// The file-safe form of an ID: anything but letters, digits, '-' and '_' becomes '_'.
std::string fileSafeId(std::string_view id);

} // namespace cad
