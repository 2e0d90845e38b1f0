// Profiles: edge-name lookup and region names.
#include "geometry/Profile.h"

#include <BRepTools.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Wire.hxx>

#include <algorithm>

namespace cad::geometry {

std::string Profile::edgeName(const TopoDS_Shape& edge) const {
    for (const auto& [e, name] : edgeNames)
        if (e.IsSame(edge)) return name;
    return {};
}

void Profile::append(const Profile& other) {
    faces.insert(faces.end(), other.faces.begin(), other.faces.end());
    edgeNames.insert(edgeNames.end(), other.edgeNames.begin(), other.edgeNames.end());
}

std::string regionName(const Profile& profile, const TopoDS_Face& face) {
    TopoDS_Wire outer = BRepTools::OuterWire(face);
    if (outer.IsNull()) return {};
    std::vector<std::string> curves;
    for (TopExp_Explorer e(outer, TopAbs_EDGE); e.More(); e.Next()) {
        std::string name = profile.edgeName(e.Current());
        if (name.empty()) continue;
        curves.push_back(name.substr(0, name.find('[')));
    }
    std::sort(curves.begin(), curves.end());
    curves.erase(std::unique(curves.begin(), curves.end()), curves.end());
    std::string text = "Region(";
    for (std::size_t i = 0; i < curves.size(); ++i) text += (i ? "+" : "") + curves[i];
    return text + ")";
}

std::optional<Profile> findRegion(const Profile& profile, std::string_view name) {
    for (const TopoDS_Face& face : profile.faces) {
        if (regionName(profile, face) != name) continue;
        Profile one;
        one.faces.push_back(face);
        for (TopExp_Explorer e(face, TopAbs_EDGE); e.More(); e.Next()) {
            std::string edge = profile.edgeName(e.Current());
            if (!edge.empty()) one.edgeNames.emplace_back(TopoDS::Edge(e.Current()), edge);
        }
        return one;
    }
    return std::nullopt;
}

} // namespace cad::geometry
