// The document's three origin planes. Each is right-handed with
// sketch y = normal x sketch x.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace cad {

using Vec3 = std::array<double, 3>;

struct PlaneFrame {
    Vec3 origin{0, 0, 0};
    Vec3 normal{0, 0, 1};
    Vec3 xDirection{1, 0, 0};
    Vec3 yDirection() const; // normal x xDirection
};

enum class OriginPlane { XY, XZ, YZ };

PlaneFrame originPlaneFrame(OriginPlane plane);
std::string_view originPlaneName(OriginPlane plane);
// "XY", "XZ", "YZ", "XYPlane", "XZPlane", "YZPlane", in any letter case.
std::optional<OriginPlane> parseOriginPlane(std::string_view name);

} // namespace cad
