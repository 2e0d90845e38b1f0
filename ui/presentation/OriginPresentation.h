// The origin as the view shows it: three translucent planes, three axis lines and
// the origin point, each named by the reference that picks it ("XY", "X", "Origin").
#pragma once

#include <AIS_Shape.hxx>

#include <string>
#include <vector>

namespace cad::ui {

struct OriginItem {
    std::string name; // "XY", "XZ", "YZ", "X", "Y", "Z", "Origin"
    Handle(AIS_Shape) presentation;
};

// Planes `size` wide centred on the origin, axes `size` / 2 long.
std::vector<OriginItem> makeOriginItems(double size);

} // namespace cad::ui
