// An object a command added: taken out on undo and put back on redo, the same
// object with the same ID in the same place.
#pragma once

#include "core/Document.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace cad {

class AddedObject {
public:
    DocumentObject* add(Document& document, std::unique_ptr<DocumentObject> object) {
        DocumentObject* added = document.add(std::move(object));
        serial_ = added->serial;
        return added;
    }
    // Puts the undone object back; null when there is none (the first run).
    DocumentObject* redo(Document& document) {
        if (!undone_) return nullptr;
        DocumentObject* added = document.add(std::move(undone_->object), undone_->index);
        undone_.reset();
        serial_ = added->serial;
        return added;
    }
    void undo(Document& document) { undone_ = document.take(serial_); }

private:
    std::uint64_t serial_ = 0;
    std::optional<Document::Taken> undone_;
};

} // namespace cad
