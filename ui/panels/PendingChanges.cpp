// Collects the document's changes for a panel and runs its catch-up once they stop.
#include "ui/panels/PendingChanges.h"

#include "core/Document.h"

namespace cad::ui {

PendingChanges::PendingChanges(Document& document, std::function<void()> catchUp,
                               QObject* parent)
    : QObject(parent), document_(document) {
    due_.setSingleShot(true);
    due_.setInterval(0);
    connect(&due_, &QTimer::timeout, this, std::move(catchUp));
    document_.addObserver(this);
}

PendingChanges::~PendingChanges() { document_.removeObserver(this); }

void PendingChanges::schedule() {
    if (!due_.isActive()) due_.start();
}

void PendingChanges::objectAdded(DocumentObject& object) {
    serials_.insert(object.serial);
    schedule();
}

void PendingChanges::objectRemoved(DocumentObject& object) {
    serials_.remove(object.serial);
    schedule();
}

void PendingChanges::objectChanged(DocumentObject& object) {
    serials_.insert(object.serial);
    schedule();
}

} // namespace cad::ui
