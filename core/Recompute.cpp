// Bringing results up to date: change propagation in dependency order, the full
// recompute with its bounded settling passes, and the body rebuild with its two
// incremental shortcuts (a feature added at the end, the last feature dropped).
#include "core/Document.h"
#include "core/GeometryObject.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <functional>
#include <set>

namespace cad {

namespace {

constexpr int kSettlingPasses = 8;
constexpr const char* kNotComputed = "Not computed because an earlier feature failed.";

bool isFeature(const DocumentObject& o) {
    return dynamic_cast<const FeatureObject*>(&o) != nullptr;
}

bool contains(const std::vector<std::string>& list, std::string_view id) {
    return std::find(list.begin(), list.end(), id) != list.end();
}

} // namespace

void Document::tellObservers(DocumentObject& object) {
    for (DocumentObserver* observer : observers_) observer->objectChanged(object);
}

std::vector<DocumentObject*>
Document::dependencyOrder(const std::vector<DocumentObject*>& subset) const {
    std::set<const DocumentObject*> inSubset(subset.begin(), subset.end());
    std::set<const DocumentObject*> visited;
    std::vector<DocumentObject*> order;
    std::function<void(DocumentObject*)> visit = [&](DocumentObject* object) {
        if (!visited.insert(object).second) return;
        for (const std::string& id : dependenciesOf(*object)) {
            DocumentObject* dependency = find(id);
            if (dependency && inSubset.count(dependency)) visit(dependency);
        }
        order.push_back(object);
    };
    for (DocumentObject* object : subset) visit(object);
    return order;
}

void Document::notifyChanged(const DocumentObject& changed) {
    if (DocumentObject* object = findBySerial(changed.serial)) propagate({object}, false);
}

void Document::notifyValuesChanged(const std::vector<DocumentObject*>& objects) {
    propagate(objects, true);
}

void Document::propagate(const std::vector<DocumentObject*>& sources, bool rebuildOwners) {
    for (DocumentObject* source : sources) tellObservers(*source);
    if (notifyDepth_ >= 1) return;
    ++notifyDepth_;
    // A body can be built from what follows it (a sketch on its own face, or on a
    // plane from that face): what moved after the body was built moves it again, a
    // bounded number of times, so two objects that keep moving each other stop.
    std::vector<DocumentObject*> next = sources;
    for (int pass = 0; pass <= kSettlingPasses && !next.empty(); ++pass)
        next = propagatePass(next, rebuildOwners && pass == 0);
    --notifyDepth_;
}

std::vector<DocumentObject*> Document::propagatePass(const std::vector<DocumentObject*>& sources,
                                                     bool rebuildOwners) {
    // Everything that depends on the sources, directly or through others.
    std::set<std::string, std::less<>> changedIds;
    std::vector<DocumentObject*> affected;
    std::set<const DocumentObject*> seen;
    std::deque<std::string> queue;
    for (DocumentObject* source : sources) {
        seen.insert(source);
        changedIds.insert(source->id);
        queue.push_back(source->id);
    }
    auto reach = [&](DocumentObject* object) {
        if (!seen.insert(object).second) return;
        affected.push_back(object);
        queue.push_back(object->id);
    };
    // Features whose own values changed; each is computed again by its body.
    std::set<std::string, std::less<>> changedFeatures;
    if (rebuildOwners)
        for (DocumentObject* source : sources)
            if (isFeature(*source))
                if (GeometryObject* body = bodyOfFeature(source->id)) {
                    changedFeatures.insert(source->id);
                    reach(body);
                }
    while (!queue.empty()) {
        std::string id = std::move(queue.front());
        queue.pop_front();
        for (const auto& other : objects_) {
            if (seen.count(other.get()) || isFeature(*other)) continue;
            if (contains(dependenciesOf(*other), id)) reach(other.get());
        }
    }

    auto reachesChange = [&](const std::vector<std::string>& uses) {
        return std::any_of(uses.begin(), uses.end(),
                           [&](const std::string& id) { return changedIds.count(id) > 0; });
    };
    // The first feature of a body that changed or uses a change, else empty.
    auto firstReached = [&](const GeometryObject& body) {
        for (const std::string& featureId : body.features) {
            auto* feature = dynamic_cast<const FeatureObject*>(find(featureId));
            if (!feature) continue;
            // Its own features are brought up to date by whoever changed them (the
            // body is rebuilt from the changed one): only what lies outside counts.
            std::vector<std::string> uses = feature->references();
            std::erase_if(uses, [&body](const std::string& use) {
                return use == body.id || contains(body.features, use);
            });
            if (changedFeatures.count(featureId) || reachesChange(uses)) return featureId;
        }
        return std::string();
    };
    auto rebuild = [&](GeometryObject& body, const std::string& first) {
        (void)rebuildBodyFrom(body, first);
        changedIds.insert(body.id);
        tellObservers(body);
        for (const std::string& featureId : body.features)
            if (DocumentObject* feature = findByName(featureId)) tellObservers(*feature);
    };

    std::vector<DocumentObject*> again;
    std::set<std::string, std::less<>> done; // objects brought up to date in this pass
    for (DocumentObject* target : dependencyOrder(affected)) {
        if (auto* body = dynamic_cast<GeometryObject*>(target)) {
            // Only the features from the first one that changed or uses a change on.
            std::string first = firstReached(*body);
            if (first.empty()) continue;
            rebuild(*body, first);
            // Something already brought up to date uses it: that goes again.
            for (const std::string& user : users(body->id))
                if (done.count(user) && !isFeature(*find(user))) {
                    again.push_back(body);
                    break;
                }
        } else if (reachesChange(dependenciesOf(*target)) && target->recompute(*this)) {
            changedIds.insert(target->id);
            tellObservers(*target);
        }
        done.insert(target->id);
    }
    // A source body that uses what moved because of it is built again from there.
    changedFeatures.clear();
    for (DocumentObject* other : sources) changedIds.erase(other->id);
    for (DocumentObject* source : sources) {
        auto* body = dynamic_cast<GeometryObject*>(source);
        if (!body) continue;
        std::string first = firstReached(*body);
        if (first.empty()) continue;
        rebuild(*body, first);
        again.push_back(body);
    }
    return again;
}

void Document::recomputeAll() {
    std::vector<DocumentObject*> all;
    for (const auto& o : objects_) all.push_back(o.get());
    std::vector<DocumentObject*> settling;
    for (DocumentObject* object : dependencyOrder(all)) {
        if (auto* body = dynamic_cast<GeometryObject*>(object)) {
            (void)rebuildBody(*body);
        } else if (!isFeature(*object)) {
            object->recompute(*this);
            settling.push_back(object);
        }
    }
    // Bounded, so two objects that keep moving each other cannot loop forever.
    for (int pass = 0; pass < kSettlingPasses; ++pass) {
        bool moved = false;
        for (DocumentObject* object : settling) moved = object->recompute(*this) || moved;
        if (!moved) break;
    }
}

void Document::setRollback(std::string id, bool recompute) {
    if (!id.empty() && !find(id)) id.clear();
    if (id == rollback_) return;
    rollback_ = std::move(id);
    if (recompute) recomputeAllAndNotify();
}

void Document::recomputeAllAndNotify() {
    recomputeAll();
    for (const auto& o : objects_) tellObservers(*o);
}

Result<geometry::NamedShape> Document::applyFeature(const GeometryObject& body,
                                                    const FeatureObject& feature,
                                                    const geometry::NamedShape& input) {
    computeStack_.emplace_back(body.id, &input);
    // A rebuild that starts at this feature starts from its cached input itself.
    if (geometry::NamedShape& before = shapeCache_[feature.id]; &before != &input) before = input;
    Result<geometry::NamedShape> result = [&]() -> Result<geometry::NamedShape> {
        try {
            return feature.apply(input, *this);
        } catch (const std::exception& e) {
            // Features turn kernel failures into sentences; this keeps a slip contained.
            return fail(std::string("The geometry kernel failed: ") + e.what());
        } catch (...) {
            return fail("The geometry kernel failed.");
        }
    }();
    computeStack_.pop_back();
    return result;
}

Result<void> Document::rebuildBody(GeometryObject& body) {
    std::vector<std::string> active;
    for (const std::string& id : body.features) {
        auto* feature = dynamic_cast<FeatureObject*>(find(id));
        if (!feature || isActive(*feature)) active.push_back(id);
    }

    auto cached = bodyCache_.find(body.id);
    if (cached != bodyCache_.end() && !active.empty() &&
        body.shape.shape().IsEqual(cached->second.shape)) {
        std::vector<std::string>& was = cached->second.active;
        // A feature was added at the end: compute only that one.
        if (was.size() + 1 == active.size() && std::equal(was.begin(), was.end(), active.begin())) {
            auto* feature = dynamic_cast<FeatureObject*>(find(active.back()));
            if (feature) {
                Result<geometry::NamedShape> result = applyFeature(body, *feature, body.shape);
                if (!result) {
                    feature->error = result.error();
                    bodyCache_.erase(cached);
                    return fail(feature->id + ": " + result.error());
                }
                feature->error.clear();
                body.shape = std::move(result).value();
                cached->second = {active, body.shape.shape()};
                return {};
            }
        }
        // The last feature was dropped (suppressed, rolled back or deleted).
        if (active.size() + 1 == was.size() &&
            std::equal(active.begin(), active.end(), was.begin())) {
            auto before = shapeCache_.find(was.back());
            if (before != shapeCache_.end()) {
                body.shape = before->second;
                cached->second = {active, body.shape.shape()};
                return {};
            }
        }
    }

    return rebuildFeatures(body, 0, body.baseShape, std::move(active));
}

bool Document::cacheMatches(const GeometryObject& body) const {
    auto cached = bodyCache_.find(body.id);
    return cached != bodyCache_.end() && body.shape.shape().IsEqual(cached->second.shape);
}

Result<void> Document::rebuildBodyFrom(GeometryObject& body, std::string_view featureId) {
    auto at = std::find(body.features.begin(), body.features.end(), featureId);
    auto before = shapeCache_.find(featureId);
    if (at == body.features.end() || before == shapeCache_.end() || !cacheMatches(body))
        return rebuildBody(body);
    std::vector<std::string> active;
    for (const std::string& id : body.features) {
        auto* feature = dynamic_cast<FeatureObject*>(find(id));
        if (!feature || isActive(*feature)) active.push_back(id);
    }
    return rebuildFeatures(body, static_cast<std::size_t>(at - body.features.begin()),
                           before->second, std::move(active));
}

Result<void> Document::rebuildFeatures(GeometryObject& body, std::size_t start,
                                       const geometry::NamedShape& input,
                                       std::vector<std::string> active) {
    // The shape so far: `input` until a feature computes, then the latest result.
    geometry::NamedShape shape;
    const geometry::NamedShape* current = &input;
    std::string failure;
    for (std::size_t i = start; i < body.features.size(); ++i) {
        const std::string& id = body.features[i];
        auto* feature = dynamic_cast<FeatureObject*>(find(id));
        if (!feature) {
            if (failure.empty()) failure = "Feature '" + id + "' is missing.";
            continue;
        }
        if (!failure.empty()) {
            feature->error = kNotComputed;
            continue;
        }
        if (!isActive(*feature)) {
            if (geometry::NamedShape& before = shapeCache_[id]; &before != current)
                before = *current;
            feature->error.clear();
            continue;
        }
        Result<geometry::NamedShape> result = applyFeature(body, *feature, *current);
        if (result) {
            feature->error.clear();
            shape = std::move(result).value();
            current = &shape;
        } else {
            feature->error = result.error();
            failure = feature->id + ": " + result.error();
        }
    }
    if (current == &shape)
        body.shape = std::move(shape);
    else
        body.shape = *current;
    if (failure.empty()) {
        bodyCache_[body.id] = {std::move(active), body.shape.shape()};
        return {};
    }
    bodyCache_.erase(body.id);
    return fail(failure);
}

const geometry::NamedShape* Document::shapeBefore(std::string_view featureId) const {
    auto it = shapeCache_.find(featureId);
    return it == shapeCache_.end() ? nullptr : &it->second;
}

const geometry::NamedShape* Document::shapeInProgress(std::string_view bodyId) const {
    for (auto it = computeStack_.rbegin(); it != computeStack_.rend(); ++it)
        if (it->first == bodyId) return it->second;
    return nullptr;
}

} // namespace cad
