// Welds corners with identical coordinates, pairs the triangles' edges, and builds
// one vertex per corner, one edge per pair and one planar face per triangle, so
// neighbouring faces share their edge as a sewn shell would. Edges that do not
// pair are made once per triangle.
#include "geometry/exchange/MeshShells.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRep_Builder.hxx>
#include <Geom_Plane.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>
#include <gp_Pln.hxx>
#include <gp_Vec.hxx>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <unordered_map>

namespace cad::exchange {

namespace {

struct PointKey {
    std::array<std::uint64_t, 3> bits;
    bool operator==(const PointKey&) const = default;
};

struct PointKeyHash {
    std::size_t operator()(const PointKey& key) const {
        std::uint64_t h = 1469598103934665603ULL;
        for (std::uint64_t b : key.bits) h = (h ^ b) * 1099511628211ULL ^ (b >> 29);
        return static_cast<std::size_t>(h);
    }
};

PointKey keyOf(const gp_Pnt& p) {
    PointKey key{};
    const double xyz[3] = {p.X() == 0 ? 0.0 : p.X(), p.Y() == 0 ? 0.0 : p.Y(),
                           p.Z() == 0 ? 0.0 : p.Z()}; // -0 and 0 are one corner
    for (int k = 0; k < 3; ++k) std::memcpy(&key.bits[static_cast<std::size_t>(k)], &xyz[k], 8);
    return key;
}

std::uint64_t edgeKey(std::uint32_t a, std::uint32_t b) {
    return a < b ? (std::uint64_t{a} << 32 | b) : (std::uint64_t{b} << 32 | a);
}

struct EdgeUse {
    int count = 0;
    bool paired = true;                  // two triangles, wound against each other
    bool sameWay = false;                // the second triangle runs along it as the first does
    std::uint32_t from = 0;              // the first user's direction
    std::uint32_t first = 0, second = 0; // the triangles using it
    TopoDS_Edge edge;                    // from the lower corner to the higher
};

struct Pieces {
    std::vector<std::uint32_t> parent;
    explicit Pieces(std::size_t n) : parent(n) { std::iota(parent.begin(), parent.end(), 0u); }
    std::uint32_t root(std::uint32_t i) {
        while (parent[i] != i) i = parent[i] = parent[parent[i]];
        return i;
    }
    void join(std::uint32_t a, std::uint32_t b) { parent[root(a)] = root(b); }
};

// Neighbours whose planes meet at under a millionth of a radian: the merging may
// take them as one plane, so it has to look.
bool nearlyCoplanar(const Triangle& a, const Triangle& b) {
    const gp_Vec na = gp_Vec(a[0], a[1]).Crossed(gp_Vec(a[0], a[2]));
    const gp_Vec nb = gp_Vec(b[0], b[1]).Crossed(gp_Vec(b[0], b[2]));
    return na.Crossed(nb).Magnitude() <= 1e-6 * na.Magnitude() * nb.Magnitude();
}

using Edges = std::unordered_map<std::uint64_t, EdgeUse>;

Edges pairEdges(const std::vector<std::array<std::uint32_t, 3>>& indexed) {
    Edges edges;
    edges.reserve(indexed.size() * 2);
    for (std::uint32_t i = 0; i < indexed.size(); ++i)
        for (std::size_t k = 0; k < 3; ++k) {
            const std::uint32_t a = indexed[i][k], b = indexed[i][(k + 1) % 3];
            EdgeUse& use = edges[edgeKey(a, b)];
            if (use.count == 0) {
                use.from = a;
                use.first = i;
            } else if (use.count > 1) {
                use.paired = false; // three triangles on one edge
            } else {
                use.second = i;
                use.sameWay = use.from == a;
                use.paired = !use.sameWay;
            }
            ++use.count;
        }
    for (auto& [key, use] : edges) use.paired = use.paired && use.count == 2;
    return edges;
}

// Turns triangles so that neighbours run along their shared edge in opposite
// directions, walking out from one triangle of each piece. A one-sided surface
// (where no winding agrees everywhere) keeps what the walk reached first.
// Answers whether any triangle was turned.
bool agreeWindings(std::vector<std::array<std::uint32_t, 3>>& indexed, const Edges& edges) {
    std::vector<std::vector<std::pair<std::uint32_t, bool>>> neighbours(indexed.size());
    bool anySameWay = false;
    for (const auto& [key, use] : edges)
        if (use.count == 2) {
            neighbours[use.first].emplace_back(use.second, use.sameWay);
            neighbours[use.second].emplace_back(use.first, use.sameWay);
            anySameWay = anySameWay || use.sameWay;
        }
    if (!anySameWay) return false;
    std::vector<signed char> turn(indexed.size(), -1);
    std::vector<std::uint32_t> queue;
    bool turned = false;
    for (std::uint32_t seed = 0; seed < indexed.size(); ++seed) {
        if (turn[seed] >= 0) continue;
        turn[seed] = 0;
        queue.assign(1, seed);
        while (!queue.empty()) {
            const std::uint32_t t = queue.back();
            queue.pop_back();
            for (const auto& [n, sameWay] : neighbours[t]) {
                if (turn[n] >= 0) continue;
                turn[n] = static_cast<signed char>(sameWay ? 1 - turn[t] : turn[t]);
                queue.push_back(n);
            }
        }
    }
    for (std::size_t i = 0; i < indexed.size(); ++i)
        if (turn[i] == 1) {
            std::swap(indexed[i][1], indexed[i][2]);
            turned = true;
        }
    return turned;
}

} // namespace

MeshShells meshShells(const std::vector<Triangle>& triangles) {
    MeshShells result;
    std::unordered_map<PointKey, std::uint32_t, PointKeyHash> corners;
    std::vector<gp_Pnt> points;
    std::vector<std::array<std::uint32_t, 3>> indexed;
    corners.reserve(triangles.size());
    indexed.reserve(triangles.size());
    for (const Triangle& t : triangles) {
        std::array<std::uint32_t, 3> ids{};
        for (std::size_t k = 0; k < 3; ++k) {
            auto [at, added] =
                corners.try_emplace(keyOf(t[k]), static_cast<std::uint32_t>(points.size()));
            if (added) points.push_back(t[k]);
            ids[k] = at->second;
        }
        indexed.push_back(ids);
    }

    Edges edges = pairEdges(indexed);
    if (agreeWindings(indexed, edges)) edges = pairEdges(indexed);
    Pieces pieces(indexed.size());
    for (const auto& [key, use] : edges)
        if (use.paired) pieces.join(use.first, use.second);

    BRep_Builder builder;
    std::vector<TopoDS_Vertex> vertices(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        builder.MakeVertex(vertices[i], points[i], Precision::Confusion());
    auto edgeFrom = [&](std::uint32_t low, std::uint32_t high) {
        return BRepBuilderAPI_MakeEdge(vertices[low], vertices[high]).Edge();
    };
    for (auto& [key, use] : edges)
        if (use.paired)
            use.edge =
                edgeFrom(static_cast<std::uint32_t>(key >> 32), static_cast<std::uint32_t>(key));

    std::unordered_map<std::uint32_t, std::size_t> shellOf;
    std::vector<MeshShell>& shells = result.shells;
    std::vector<gp_XYZ> origins; // one corner of each shell: volumes are summed about it
    for (std::uint32_t i = 0; i < indexed.size(); ++i) {
        TopoDS_Wire wire;
        builder.MakeWire(wire);
        bool closed = true;
        for (std::size_t k = 0; k < 3; ++k) {
            const std::uint32_t a = indexed[i][k], b = indexed[i][(k + 1) % 3];
            const EdgeUse& use = edges.at(edgeKey(a, b));
            if (!use.paired) {
                closed = false;
                result.unpaired.push_back({points[a], points[b]});
            }
            const TopoDS_Edge edge =
                use.paired ? use.edge : edgeFrom(std::min(a, b), std::max(a, b));
            builder.Add(wire, a < b ? edge : TopoDS::Edge(edge.Reversed()));
        }
        wire.Closed(true);
        // The triangle's own plane, its normal along the winding: the wire runs
        // counter-clockwise on it, an outer boundary as it stands.
        const Triangle t{points[indexed[i][0]], points[indexed[i][1]], points[indexed[i][2]]};
        const gp_Vec normal = gp_Vec(t[0], t[1]).Crossed(gp_Vec(t[0], t[2]));
        TopoDS_Face face;
        builder.MakeFace(face, new Geom_Plane(gp_Pln(t[0], gp_Dir(normal))),
                         Precision::Confusion());
        builder.Add(face, wire);

        const std::uint32_t piece = pieces.root(i);
        auto [at, added] = shellOf.try_emplace(piece, shells.size());
        if (added) {
            shells.emplace_back();
            builder.MakeShell(shells.back().shell);
            origins.push_back(t[0].XYZ());
        }
        MeshShell& shell = shells[at->second];
        builder.Add(shell.shell, face);
        shell.closed = shell.closed && closed;
        // The tetrahedron from the shell's origin to the triangle, signed by winding.
        const gp_XYZ o = origins[at->second];
        shell.volume += (t[0].XYZ() - o).Dot((t[1].XYZ() - o).Crossed(t[2].XYZ() - o)) / 6;
    }
    for (MeshShell& shell : shells) shell.shell.Closed(shell.closed);
    for (const auto& [key, use] : edges)
        if (use.paired && nearlyCoplanar(triangles[use.first], triangles[use.second]))
            shells[shellOf.at(pieces.root(use.first))].coplanarNeighbours = true;
    return result;
}

} // namespace cad::exchange
