// What the document changed since a panel last caught up: the serials of the objects
// added or changed, collected while commands run and handed to the panel together on
// the next turn of the event loop, so a burst of changes costs one refresh.
#pragma once

#include "core/DocumentObserver.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <cstdint>
#include <functional>

namespace cad {
class Document;
}

namespace cad::ui {

class PendingChanges : public QObject, public DocumentObserver {
    Q_OBJECT
public:
    // Observes the document from now until destroyed; `catchUp` runs once after changes.
    PendingChanges(Document& document, std::function<void()> catchUp, QObject* parent = nullptr);
    ~PendingChanges() override;

    // Marks an object whose row must be shown again in the catch-up under way (a row it
    // has just made), without asking for another.
    void add(std::uint64_t serial) { serials_.insert(serial); }
    const QSet<std::uint64_t>& serials() const { return serials_; }
    // The catch-up starts: nothing more is due until the document changes again.
    void settle() { due_.stop(); }
    // The catch-up is done with the marks.
    void clear() { serials_.clear(); }

    void objectAdded(DocumentObject& object) override;
    void objectRemoved(DocumentObject& object) override;
    void objectChanged(DocumentObject& object) override;

private:
    void schedule();

    Document& document_;
    QSet<std::uint64_t> serials_;
    QTimer due_;
};

} // namespace cad::ui
