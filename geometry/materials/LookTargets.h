// What set_material and set_appearance share: the objects that take a material or
// an appearance as a whole (bodies and components), and the looks they had before,
// kept so that undo puts them back.
#pragma once

#include "core/Result.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class Document;
class DocumentObject;

bool isBodyOrComponent(const DocumentObject& object);

// The body or component a name or ID denotes; "'<name>' is not a body or component."
// when it denotes nothing or something else.
Result<DocumentObject*> findBodyOrComponent(const Document& document, std::string_view name);

// Tells the document's observers that objects look different or weigh differently
// now: each object, and for a component everything that belongs to it.
void notifyLooksChanged(Document& document, const std::vector<DocumentObject*>& objects);

// The material and appearances of objects as they were before a command changed
// them, by serial.
class SavedLooks {
public:
    // Keeps the object's material and appearances unless they are kept already.
    void remember(const DocumentObject& object);
    // Puts every kept object back as it was and tells the observers.
    void restore(Document& document) const;
    void clear() { saved_.clear(); }

private:
    struct Saved {
        std::uint64_t serial = 0;
        std::string material;
        std::string appearance;
        std::map<std::string, std::string> faceAppearances;
    };
    std::vector<Saved> saved_;
};

} // namespace cad
