// Interface for the parts of the program that follow a document's changes
// (presenter, browser, history panel). Observers only observe.
#pragma once

namespace cad {

class DocumentObject;

class DocumentObserver {
public:
    virtual ~DocumentObserver() = default;
    // After an object was inserted.
    virtual void objectAdded(DocumentObject& object) = 0;
    // While the object is still in the list, just before it is taken out.
    virtual void objectRemoved(DocumentObject& object) = 0;
    // When an object's data or result changed.
    virtual void objectChanged(DocumentObject& object) = 0;
    // When a document-wide display setting changed (length unit, active component).
    virtual void documentChanged() {}
};

} // namespace cad
