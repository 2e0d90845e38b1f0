// Orientation of the origin planes: XY looks down +Z with sketch x along +X;
// XZ has its normal along -Y so that sketch y is +Z; YZ has its normal along +X
// with sketch x along +Y.
#include "core/OriginPlanes.h"

#include "core/TextCase.h"

namespace cad {

Vec3 PlaneFrame::yDirection() const {
    const Vec3& n = normal;
    const Vec3& x = xDirection;
    return {n[1] * x[2] - n[2] * x[1], n[2] * x[0] - n[0] * x[2], n[0] * x[1] - n[1] * x[0]};
}

PlaneFrame originPlaneFrame(OriginPlane plane) {
    switch (plane) {
    case OriginPlane::XZ:
        return {{0, 0, 0}, {0, -1, 0}, {1, 0, 0}};
    case OriginPlane::YZ:
        return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    case OriginPlane::XY:
        break;
    }
    return {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}};
}

std::string_view originPlaneName(OriginPlane plane) {
    switch (plane) {
    case OriginPlane::XZ:
        return "XZ";
    case OriginPlane::YZ:
        return "YZ";
    case OriginPlane::XY:
        break;
    }
    return "XY";
}

std::optional<OriginPlane> parseOriginPlane(std::string_view name) {
    for (OriginPlane p : {OriginPlane::XY, OriginPlane::XZ, OriginPlane::YZ}) {
        std::string_view n = originPlaneName(p);
        if (equalsIgnoringCase(name, n)) return p;
        if (name.size() == n.size() + 5 && equalsIgnoringCase(name.substr(0, 2), n) &&
            equalsIgnoringCase(name.substr(2), "Plane"))
            return p;
    }
    return std::nullopt;
}

} // namespace cad
