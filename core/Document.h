// The model: the objects in history order, the document-wide settings, the
// counters that make IDs, and the observers that follow changes.
#pragma once

#include "core/DocumentObject.h"
#include "core/DocumentObserver.h"
#include "core/NamedShape.h"
#include "core/Parameter.h"
#include "core/units/Length.h"
#include "core/units/NameLookup.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cad {

class GeometryObject;

class Document {
public:
    using ObjectList = std::vector<std::unique_ptr<DocumentObject>>;
    using Filter = std::function<bool(const DocumentObject&)>;

    Document() = default;
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    // ---- Lookup: none throws; a miss returns null.
    const ObjectList& objects() const { return objects_; }
    DocumentObject* find(std::string_view id) const;
    DocumentObject* findBySerial(std::uint64_t serial) const;
    // Exact ID, then ID ignoring case, then label ignoring case; an ambiguous tier
    // answers null at once instead of falling through to the next.
    DocumentObject* findMatching(std::string_view query, const Filter& filter) const;
    DocumentObject* findByNameExact(std::string_view query) const;
    // Also reaches objects inside a component through "Component:Object", with the
    // component named by its ID or its label.
    DocumentObject* findByName(std::string_view query) const;
    template <typename T> T* findAs(std::string_view query) const {
        return static_cast<T*>(findMatching(
            query, [](const DocumentObject& o) { return dynamic_cast<const T*>(&o) != nullptr; }));
    }
    // The sentence to show when a lookup by name failed.
    std::string lookupError(std::string_view query) const;
    bool idTaken(std::string_view id) const;
    // The ID for a new object with this type word; the counters change when it is added.
    std::string nextId(std::string_view prefix) const;
    // The IDs `count` new objects would get if added one after another.
    std::vector<std::string> nextIds(std::string_view prefix, std::size_t count) const;
    std::optional<std::size_t> indexOf(const DocumentObject& object) const;

    GeometryObject* bodyOfFeature(std::string_view featureId) const;
    // IDs of the objects that use `id`, in history order.
    std::vector<std::string> users(std::string_view id) const;
    // The dependencies recompute follows: for a body the references of its features.
    std::vector<std::string> dependenciesOf(const DocumentObject& object) const;
    bool isHistoryStep(const DocumentObject& object) const;
    bool isRolledBack(const DocumentObject& object) const;
    bool isActive(const FeatureObject& feature) const;

    // ---- Changing the list.
    DocumentObject* add(std::unique_ptr<DocumentObject> object,
                        std::optional<std::size_t> index = std::nullopt);
    struct Taken {
        std::unique_ptr<DocumentObject> object;
        std::size_t index = 0;
    };
    Taken take(std::uint64_t serial);
    void moveObject(std::uint64_t serial, std::size_t index);
    // Makes this document equal to `other`, keeping this document's observers.
    void replaceWith(Document&& other);

    // ---- Settings.
    units::Length lengthUnit() const { return lengthUnit_; }
    void setLengthUnit(units::Length unit);
    const std::string& defaultMaterial() const { return defaultMaterial_; }
    void setDefaultMaterial(std::string key) { defaultMaterial_ = std::move(key); }
    const std::string& activeComponent() const { return activeComponent_; }
    void setActiveComponent(std::string id);
    const std::string& rollback() const { return rollback_; }
    // A non-empty ID that names no object counts as empty. With `recompute`, a
    // change rebuilds everything and tells the observers about every object.
    void setRollback(std::string id, bool recompute = false);

    const std::map<std::string, int>& idCounters() const { return idCounters_; }
    void setIdCounters(std::map<std::string, int> counters) { idCounters_ = std::move(counters); }
    std::uint64_t nextSerial() const { return nextSerial_; }

    // ---- Parameters.
    const std::vector<Parameter>& parameters() const { return parameters_; }
    void setParameters(std::vector<Parameter> parameters) { parameters_ = std::move(parameters); }
    const Parameter* findParameter(std::string_view name) const;
    // Evaluates a parameter by name for the expression language, refusing cycles.
    units::NameLookup parameterLookup() const;

    // ---- Recompute and the design history.
    // Tells the observers, then brings everything that depends on the object up to
    // date in dependency order. Nested calls only notify.
    void notifyChanged(const DocumentObject& object);
    // Objects whose own values changed (a feature's distance, a sketch's dimensions):
    // tells their observers, rebuilds each body once, from the first feature that
    // changed or uses a changed object, and brings up to date whatever else depends
    // on them. Nested calls only notify.
    void notifyValuesChanged(const std::vector<DocumentObject*>& objects);
    // Rebuilds every body and recomputes every other object, then settles objects
    // that move each other in at most 8 further passes.
    void recomputeAll();
    // recomputeAll, then every object's observers hear that it changed.
    void recomputeAllAndNotify();
    // Builds the body from its base shape through its active features; a failing
    // feature keeps its sentence and the body keeps the last good shape.
    Result<void> rebuildBody(GeometryObject& body);
    // As rebuildBody, but computing only from `featureId` on when the last rebuild's
    // input to that feature is known and nothing else has changed the body since
    // (the features before it are unchanged); otherwise a full rebuild.
    Result<void> rebuildBodyFrom(GeometryObject& body, std::string_view featureId);
    // The shape a body had just before a feature, from the feature's last rebuild.
    const geometry::NamedShape* shapeBefore(std::string_view featureId) const;
    // The intermediate shape of a body whose features are being computed right now.
    const geometry::NamedShape* shapeInProgress(std::string_view bodyId) const;

    // ---- Observers.
    void addObserver(DocumentObserver* observer);
    void removeObserver(DocumentObserver* observer);
    const std::vector<DocumentObserver*>& observers() const { return observers_; }

private:
    Result<units::Quantity> evaluateParameter(std::string_view name) const;
    void noteIdCounter(std::string_view id);
    // Dependencies first; only objects in `subset` are visited (all when null).
    std::vector<DocumentObject*> dependencyOrder(const std::vector<DocumentObject*>& objects) const;
    Result<geometry::NamedShape> applyFeature(const GeometryObject& body,
                                              const FeatureObject& feature,
                                              const geometry::NamedShape& input);
    void tellObservers(DocumentObject& object);
    // Change propagation from `sources`; with `rebuildOwners` a source that is a
    // feature also reaches its body.
    void propagate(const std::vector<DocumentObject*>& sources, bool rebuildOwners);
    // One pass of it; the bodies whose change has to go round again.
    std::vector<DocumentObject*> propagatePass(const std::vector<DocumentObject*>& sources,
                                               bool rebuildOwners);
    // Applies the body's features from index `start` on to `input`, which may be the
    // cached shape before that feature.
    Result<void> rebuildFeatures(GeometryObject& body, std::size_t start,
                                 const geometry::NamedShape& input,
                                 std::vector<std::string> active);
    bool cacheMatches(const GeometryObject& body) const;

    struct BodyCacheEntry {
        std::vector<std::string> active; // the active feature IDs that made the shape
        TopoDS_Shape shape;              // compared with the body's, never used for its names
    };

    ObjectList objects_;
    std::vector<DocumentObserver*> observers_;
    std::uint64_t nextSerial_ = 1;
    std::map<std::string, int> idCounters_;
    units::Length lengthUnit_ = units::Length::Millimeters;
    std::string defaultMaterial_;
    std::string activeComponent_;
    std::string rollback_;
    std::vector<Parameter> parameters_;
    mutable std::vector<std::string> evaluating_; // parameters being evaluated, innermost last

    int notifyDepth_ = 0;
    // (body ID, input) of the features being applied, innermost last; each input
    // lives in the rebuild that applies it, and a named shape is costly to copy.
    std::vector<std::pair<std::string, const geometry::NamedShape*>> computeStack_;
    std::map<std::string, geometry::NamedShape, std::less<>>
        shapeCache_; // shape before each feature
    std::map<std::string, BodyCacheEntry, std::less<>> bodyCache_;
};

} // namespace cad
