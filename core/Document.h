// The model: the objects in history order, the document-wide settings, the
// counters that make IDs, and the observers that follow changes.
#pragma once

#include "core/DocumentObject.h"
#include "core/DocumentObserver.h"
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
    void setRollback(std::string id) { rollback_ = std::move(id); }

    const std::map<std::string, int>& idCounters() const { return idCounters_; }
    void setIdCounters(std::map<std::string, int> counters) { idCounters_ = std::move(counters); }
    std::uint64_t nextSerial() const { return nextSerial_; }

    // ---- Parameters.
    const std::vector<Parameter>& parameters() const { return parameters_; }
    void setParameters(std::vector<Parameter> parameters) { parameters_ = std::move(parameters); }
    const Parameter* findParameter(std::string_view name) const;
    // Evaluates a parameter by name for the expression language, refusing cycles.
    units::NameLookup parameterLookup() const;

    // ---- Observers.
    void addObserver(DocumentObserver* observer);
    void removeObserver(DocumentObserver* observer);
    const std::vector<DocumentObserver*>& observers() const { return observers_; }

private:
    Result<units::Quantity> evaluateParameter(std::string_view name) const;
    void noteIdCounter(std::string_view id);

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
};

} // namespace cad
