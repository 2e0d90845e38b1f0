// The document: lookup, ID counters, inserting and removing objects in history
// order, and the document-wide settings.
#include "core/Document.h"

#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "core/units/ExpressionParser.h"

#include <algorithm>
#include <charconv>

namespace cad {

Document::~Document() = default;

// ---------------------------------------------------------------- lookup

DocumentObject* Document::find(std::string_view id) const {
    for (const auto& o : objects_)
        if (o->id == id) return o.get();
    return nullptr;
}

DocumentObject* Document::findBySerial(std::uint64_t serial) const {
    for (const auto& o : objects_)
        if (o->serial == serial) return o.get();
    return nullptr;
}

DocumentObject* Document::findMatching(std::string_view query, const Filter& filter) const {
    using Matcher = bool (*)(const DocumentObject&, std::string_view);
    static constexpr Matcher matchers[] = {
        [](const DocumentObject& o, std::string_view q) { return o.id == q; },
        [](const DocumentObject& o, std::string_view q) { return equalsIgnoringCase(o.id, q); },
        [](const DocumentObject& o, std::string_view q) {
            return !o.label.empty() && equalsIgnoringCase(o.label, q);
        },
    };
    for (Matcher matches : matchers) {
        DocumentObject* found = nullptr;
        int count = 0;
        for (const auto& o : objects_) {
            if (!filter(*o) || !matches(*o, query)) continue;
            found = o.get();
            ++count;
        }
        if (count == 1) return found;
        if (count > 1) return nullptr; // ambiguous: never pick one of several
    }
    return nullptr;
}

DocumentObject* Document::findByNameExact(std::string_view query) const {
    return findMatching(query, [](const DocumentObject&) { return true; });
}

DocumentObject* Document::findByName(std::string_view query) const {
    if (DocumentObject* o = findByNameExact(query)) return o;
    std::size_t colon = query.find(':');
    if (colon == std::string_view::npos || colon + 1 >= query.size()) return nullptr;
    DocumentObject* component = findMatching(query.substr(0, colon), [](const DocumentObject& o) {
        return o.typeName() == "Component";
    });
    if (!component) return nullptr;
    return find(component->id + std::string(query.substr(colon)));
}

std::string Document::lookupError(std::string_view query) const {
    std::vector<std::string_view> ids;
    for (const auto& o : objects_)
        if (!o->label.empty() && equalsIgnoringCase(o->label, query)) ids.push_back(o->id);
    if (ids.size() > 1) {
        std::string list;
        for (std::string_view id : ids) {
            if (!list.empty()) list += ", ";
            list += id;
        }
        return "'" + std::string(query) + "' is the name of more than one object (" + list +
               "); use the ID.";
    }
    return "No object named '" + std::string(query) + "' exists.";
}

bool Document::idTaken(std::string_view id) const {
    return std::any_of(objects_.begin(), objects_.end(),
                       [&](const auto& o) { return equalsIgnoringCase(o->id, id); });
}

std::string Document::nextId(std::string_view prefix) const {
    return nextIds(prefix, 1).front();
}

std::vector<std::string> Document::nextIds(std::string_view prefix, std::size_t count) const {
    auto it = idCounters_.find(std::string(prefix));
    long long n = (it == idCounters_.end() ? 0 : it->second) + 1LL;
    std::vector<std::string> ids;
    while (ids.size() < count) {
        std::string id = std::string(prefix) + std::to_string(n++);
        if (!idTaken(id)) ids.push_back(std::move(id));
    }
    return ids;
}

std::optional<std::size_t> Document::indexOf(const DocumentObject& object) const {
    for (std::size_t i = 0; i < objects_.size(); ++i)
        if (objects_[i].get() == &object) return i;
    return std::nullopt;
}

GeometryObject* Document::bodyOfFeature(std::string_view featureId) const {
    for (const auto& o : objects_) {
        auto* body = dynamic_cast<GeometryObject*>(o.get());
        if (body && std::find(body->features.begin(), body->features.end(), featureId) !=
                        body->features.end())
            return body;
    }
    return nullptr;
}

std::vector<std::string> Document::users(std::string_view id) const {
    std::vector<std::string> result;
    for (const auto& o : objects_) {
        auto* feature = dynamic_cast<const FeatureObject*>(o.get());
        std::vector<std::string> used = feature ? feature->references() : o->dependencies();
        if (std::find(used.begin(), used.end(), id) != used.end()) result.push_back(o->id);
    }
    return result;
}

std::vector<std::string> Document::dependenciesOf(const DocumentObject& object) const {
    if (dynamic_cast<const FeatureObject*>(&object)) return {};
    auto* body = dynamic_cast<const GeometryObject*>(&object);
    if (!body) return object.dependencies();
    std::vector<std::string> result;
    for (const std::string& featureId : body->features) {
        auto* feature = dynamic_cast<const FeatureObject*>(find(featureId));
        if (!feature) continue;
        for (std::string& ref : feature->references())
            if (ref != body->id) result.push_back(std::move(ref));
    }
    return result;
}

bool Document::isHistoryStep(const DocumentObject& object) const {
    if (auto* feature = dynamic_cast<const FeatureObject*>(&object)) return feature->standsAlone();
    if (auto* body = dynamic_cast<const GeometryObject*>(&object)) return body->hasBaseShape();
    std::string_view type = object.typeName();
    return type == "Sketch" || type == "Plane" || type == "PatternSet";
}

bool Document::isRolledBack(const DocumentObject& object) const {
    if (rollback_.empty() || !isHistoryStep(object)) return false;
    DocumentObject* marker = find(rollback_);
    if (!marker) return false;
    auto at = indexOf(object);
    auto markerAt = indexOf(*marker);
    return at && markerAt && *at >= *markerAt;
}

bool Document::isActive(const FeatureObject& feature) const {
    return !feature.suppressed && !isRolledBack(feature);
}

// ---------------------------------------------------------------- changing the list

void Document::noteIdCounter(std::string_view id) {
    std::size_t digits = 0;
    while (digits < id.size() && id[id.size() - 1 - digits] >= '0' &&
           id[id.size() - 1 - digits] <= '9')
        ++digits;
    if (digits < 1 || digits > 8 || digits == id.size()) return;
    std::string_view prefix = id.substr(0, id.size() - digits);
    int number = 0;
    std::from_chars(id.data() + prefix.size(), id.data() + id.size(), number);
    int& counter = idCounters_[std::string(prefix)];
    counter = std::max(counter, number);
}

DocumentObject* Document::add(std::unique_ptr<DocumentObject> object,
                              std::optional<std::size_t> index) {
    if (!object) return nullptr;
    noteIdCounter(object->id);

    std::string_view type = object->typeName();
    if (object->serial == 0 && object->component.empty() && !activeComponent_.empty() &&
        type != "Component" && type != "Connection")
        object->component = activeComponent_;

    if (object->serial == 0 || findBySerial(object->serial)) {
        object->serial = nextSerial_++;
    } else if (nextSerial_ <= object->serial) {
        nextSerial_ = object->serial + 1;
    }

    std::size_t at = objects_.size();
    DocumentObject* marker = rollback_.empty() ? nullptr : find(rollback_);
    if (!index && marker)
        at = *indexOf(*marker);
    else if (index)
        at = std::min(*index, objects_.size());
    objects_.insert(objects_.begin() + static_cast<std::ptrdiff_t>(at), std::move(object));

    DocumentObject* added = objects_[at].get();
    for (DocumentObserver* observer : observers_) observer->objectAdded(*added);
    return added;
}

Document::Taken Document::take(std::uint64_t serial) {
    DocumentObject* object = findBySerial(serial);
    if (!object) return {};
    for (DocumentObserver* observer : observers_) observer->objectRemoved(*object);

    std::size_t at = *indexOf(*object);
    if (rollback_ == object->id) {
        // Keep the rollback position where it was: on the next step after this one.
        rollback_.clear();
        for (std::size_t i = at + 1; i < objects_.size(); ++i) {
            if (isHistoryStep(*objects_[i])) {
                rollback_ = objects_[i]->id;
                break;
            }
        }
    }
    Taken taken{std::move(objects_[at]), at};
    objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(at));
    return taken;
}

void Document::moveObject(std::uint64_t serial, std::size_t index) {
    std::string kept = rollback_;
    Taken taken = take(serial);
    if (taken.object) {
        rollback_.clear();
        add(std::move(taken.object), std::min(index, objects_.size()));
    }
    rollback_ = std::move(kept);
}

void Document::replaceWith(Document&& other) {
    while (!objects_.empty()) take(objects_.back()->serial);
    nextSerial_ = 1;
    rollback_.clear();
    bodyCache_.clear();
    shapeCache_.clear();

    idCounters_ = other.idCounters_;
    parameters_ = std::move(other.parameters_);
    other.parameters_.clear();
    if (lengthUnit_ != other.lengthUnit_) {
        lengthUnit_ = other.lengthUnit_;
        for (DocumentObserver* observer : observers_) observer->documentChanged();
    }
    defaultMaterial_ = other.defaultMaterial_;

    // Taking the objects out one by one would walk the other's rollback forward.
    std::string otherRollback = std::move(other.rollback_);
    other.rollback_.clear();
    while (!other.objects_.empty()) {
        Taken taken = other.take(other.objects_.front()->serial);
        add(std::move(taken.object));
    }
    other.nextSerial_ = 1;
    other.idCounters_.clear();
    rollback_ = std::move(otherRollback);
}

// ---------------------------------------------------------------- settings

void Document::setLengthUnit(units::Length unit) {
    if (unit == lengthUnit_) return;
    lengthUnit_ = unit;
    for (DocumentObserver* observer : observers_) observer->documentChanged();
}

void Document::setActiveComponent(std::string id) {
    if (id == activeComponent_) return;
    activeComponent_ = std::move(id);
    for (DocumentObserver* observer : observers_) observer->documentChanged();
}

// ---------------------------------------------------------------- parameters

const Parameter* Document::findParameter(std::string_view name) const {
    for (const Parameter& p : parameters_)
        if (p.name == name) return &p;
    return nullptr;
}

Result<units::Quantity> Document::evaluateParameter(std::string_view name) const {
    const Parameter* parameter = findParameter(name);
    if (!parameter) return fail("There's no parameter '" + std::string(name) + "'.");
    if (std::find(evaluating_.begin(), evaluating_.end(), name) != evaluating_.end())
        return fail("'" + std::string(name) +
                    "' depends on itself (through the parameters it uses).");

    evaluating_.emplace_back(name);
    Result<units::Quantity> value = [&] {
        units::ScopedParameterLookup scope(parameterLookup(), units::Length::Millimeters);
        return units::parseQuantity(parameter->expression, parameter->unit, true);
    }();
    evaluating_.pop_back();
    if (!value) return fail(parameter->name + ": " + value.error());
    return value;
}

units::NameLookup Document::parameterLookup() const {
    return [this](std::string_view name) { return evaluateParameter(name); };
}

// ---------------------------------------------------------------- observers

void Document::addObserver(DocumentObserver* observer) {
    if (observer && std::find(observers_.begin(), observers_.end(), observer) == observers_.end())
        observers_.push_back(observer);
}

void Document::removeObserver(DocumentObserver* observer) {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

} // namespace cad
