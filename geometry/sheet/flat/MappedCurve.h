// A curve carried from one place to another point by point (a bend's edge laid flat,
// a flat cut's outline bent back): an edge through the carried points, refined until
// it stays within a hundredth of a micrometre of the exact curve between them.
#pragma once

#include <TopoDS_Edge.hxx>
#include <gp_Pnt.hxx>

#include <functional>
#include <optional>

namespace cad::flat {

// The edge `at` traces from `first` to `last`; none when it collapses to a point or
// the kernel refuses the points. A curve that comes back to its start is closed.
std::optional<TopoDS_Edge> edgeThrough(const std::function<gp_Pnt(double)>& at, double first,
                                       double last);

} // namespace cad::flat
