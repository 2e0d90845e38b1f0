// What a feature sweeps: planar faces (regions of sketches or flat faces of bodies)
// with the names of their boundary edges, and the names regions are picked by.
#pragma once

#include <TopoDS_Edge.hxx>
#include <TopoDS_Face.hxx>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cad::geometry {

struct Profile {
    std::vector<TopoDS_Face> faces; // in the order they were found
    // Every boundary edge that came from a sketch curve ("Line1", "Line1[2]") or from
    // a body (its persistent edge name).
    std::vector<std::pair<TopoDS_Edge, std::string>> edgeNames;

    // The name of an edge (matched regardless of orientation); empty when unnamed.
    std::string edgeName(const TopoDS_Shape& edge) const;
    void append(const Profile& other);
};

// "Region(Arc1+Line1+Line2)": the curves round the outer boundary, each cut at its
// first '[', distinct, in byte order, joined with '+'. Empty without an outer wire.
std::string regionName(const Profile& profile, const TopoDS_Face& face);

// The one-face profile of the first region with that name, or nothing.
std::optional<Profile> findRegion(const Profile& profile, std::string_view name);

} // namespace cad::geometry
