// Connected blocks of a sketch's equations by union-find over the parameters.
#include "sketch/solver/BlockPartition.h"

#include <numeric>

namespace cad::solver {

namespace {

struct UnionFind {
    std::vector<int> parent;
    explicit UnionFind(int n) : parent(static_cast<std::size_t>(n)) {
        std::iota(parent.begin(), parent.end(), 0);
    }
    int find(int i) {
        while (parent[static_cast<std::size_t>(i)] != i) {
            int& p = parent[static_cast<std::size_t>(i)];
            p = parent[static_cast<std::size_t>(p)];
            i = p;
        }
        return i;
    }
    void unite(int a, int b) {
        a = find(a);
        b = find(b);
        if (a != b) parent[static_cast<std::size_t>(std::max(a, b))] = std::min(a, b);
    }
};

} // namespace

Partition partitionSystem(const SolverSystem& system, const std::vector<char>& free,
                          const std::vector<char>& include) {
    const int n = system.parameterCount();
    const int count = static_cast<int>(system.constraints.size());
    auto included = [&](int c) { return include.empty() || include[static_cast<std::size_t>(c)]; };
    auto isFree = [&](int p) { return free[static_cast<std::size_t>(p)] != 0; };

    UnionFind sets(n);
    std::vector<int> first(static_cast<std::size_t>(count),
                           -1); // a free parameter of each constraint
    for (int c = 0; c < count; ++c) {
        if (!included(c)) continue;
        int& anchor = first[static_cast<std::size_t>(c)];
        forEachParameter(system.constraints[static_cast<std::size_t>(c)], [&](int p) {
            if (!isFree(p)) return;
            if (anchor < 0)
                anchor = p;
            else
                sets.unite(anchor, p);
        });
    }

    Partition out;
    std::vector<int> blockOf(static_cast<std::size_t>(n), -1);
    for (int c = 0; c < count; ++c) {
        if (!included(c)) continue;
        const int anchor = first[static_cast<std::size_t>(c)];
        if (anchor < 0) {
            out.pinned.push_back(c);
            continue;
        }
        int& b = blockOf[static_cast<std::size_t>(sets.find(anchor))];
        if (b < 0) {
            b = static_cast<int>(out.blocks.size());
            out.blocks.emplace_back();
        }
        Block& block = out.blocks[static_cast<std::size_t>(b)];
        block.constraints.push_back(c);
        block.rows += system.constraints[static_cast<std::size_t>(c)].rows;
    }
    for (int p = 0; p < n; ++p) {
        if (!isFree(p)) continue;
        const int b = blockOf[static_cast<std::size_t>(sets.find(p))];
        if (b >= 0) out.blocks[static_cast<std::size_t>(b)].params.push_back(p);
    }
    return out;
}

} // namespace cad::solver
