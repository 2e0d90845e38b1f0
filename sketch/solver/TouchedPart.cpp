// Finding the part of a sketch a new constraint reaches, in time proportional to
// the sketch's size: sweeps over the constraints gather the entities they link,
// and a sketch whose links run against its list order (each sweep finding only a
// few more) is joined with a union-find instead.
#include "sketch/solver/TouchedPart.h"

#include <numeric>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace cad::solver {

namespace {

// The origin and the axes are fixed: they link nothing.
bool linksEntities(std::string_view name) {
    return !name.empty() && name != "Origin" && name != "XAxis" && name != "YAxis";
}

// A set of entity names: a short list while it is small (most constraints reach a
// handful of entities), a hash set once it grows.
class NameSet {
public:
    bool contains(std::string_view name) const {
        if (!large_.empty()) return large_.count(name) != 0;
        for (std::string_view n : small_)
            if (n == name) return true;
        return false;
    }
    void insert(std::string_view name) {
        if (contains(name)) return;
        if (large_.empty() && small_.size() < 24) {
            small_.push_back(name);
            return;
        }
        if (large_.empty()) large_.insert(small_.begin(), small_.end());
        large_.insert(name);
    }
    std::size_t size() const { return large_.empty() ? small_.size() : large_.size(); }

private:
    std::vector<std::string_view> small_;
    std::unordered_set<std::string_view> large_;
};

// The set never holds the origin or the axes.
bool touches(const SketchConstraint& c, const NameSet& names) {
    for (const SketchRef& ref : c.refs)
        if (names.contains(ref.entity)) return true;
    return false;
}

// Every entity's component through every constraint, for sketches the sweeps would
// take too long over.
TouchedPart joinAll(const std::vector<SketchEntity>& entities,
                    const std::vector<SketchConstraint>& constraints,
                    const SketchConstraint& added) {
    std::unordered_map<std::string_view, std::size_t> index;
    index.reserve(entities.size());
    for (std::size_t i = 0; i < entities.size(); ++i) index.emplace(entities[i].id, i);
    std::vector<std::size_t> parent(entities.size());
    std::iota(parent.begin(), parent.end(), std::size_t{0});
    auto root = [&](std::size_t i) {
        while (parent[i] != i) i = parent[i] = parent[parent[i]];
        return i;
    };
    // The first linked entity of a constraint, or none.
    auto anchor = [&](const SketchConstraint& c) -> std::optional<std::size_t> {
        std::optional<std::size_t> first;
        for (const SketchRef& ref : c.refs) {
            if (!linksEntities(ref.entity)) continue;
            auto found = index.find(ref.entity);
            if (found == index.end()) continue;
            if (!first)
                first = root(found->second);
            else
                parent[root(found->second)] = *first;
        }
        return first;
    };
    for (const SketchConstraint& c : constraints) anchor(c);
    const std::optional<std::size_t> start = anchor(added);

    TouchedPart part;
    if (!start) return part;
    const std::size_t component = root(*start);
    for (std::size_t i = 0; i < entities.size(); ++i)
        if (root(i) == component) part.entities.push_back(i);
    for (std::size_t i = 0; i < constraints.size(); ++i)
        for (const SketchRef& ref : constraints[i].refs) {
            if (!linksEntities(ref.entity)) continue;
            auto found = index.find(ref.entity);
            if (found != index.end() && root(found->second) == component) {
                part.constraints.push_back(i);
                break;
            }
        }
    return part;
}

} // namespace

TouchedPart touchedPart(const std::vector<SketchEntity>& entities,
                        const std::vector<SketchConstraint>& constraints,
                        const SketchConstraint& added) {
    NameSet names;
    for (const SketchRef& ref : added.refs)
        if (linksEntities(ref.entity)) names.insert(ref.entity);

    // Go round the constraints until a whole round adds nothing. Constraints usually
    // follow the order the geometry was drawn in, so this is a little more than one
    // round; links running against the list order fall back to joining everything.
    const std::size_t n = constraints.size();
    std::vector<char> taken(n, 0);
    constexpr std::size_t kMostRounds = 4;
    std::size_t quiet = 0; // constraints looked at since the set last grew
    for (std::size_t step = 0, i = 0; quiet < n; ++step, i = i + 1 == n ? 0 : i + 1) {
        if (step == kMostRounds * n) return joinAll(entities, constraints, added);
        ++quiet;
        if (taken[i] || !touches(constraints[i], names)) continue;
        taken[i] = 1;
        const std::size_t before = names.size();
        for (const SketchRef& ref : constraints[i].refs)
            if (linksEntities(ref.entity)) names.insert(ref.entity);
        if (names.size() != before) quiet = 0;
    }

    TouchedPart part;
    for (std::size_t i = 0; i < entities.size(); ++i)
        if (names.contains(entities[i].id)) part.entities.push_back(i);
    for (std::size_t i = 0; i < constraints.size(); ++i)
        if (taken[i]) part.constraints.push_back(i);
    return part;
}

} // namespace cad::solver
