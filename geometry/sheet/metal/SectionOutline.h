// A closed cross-section drawn edge by edge on a plane, each edge named for the face
// it makes, and run straight out into a named solid: the walls and bends of sheet
// parts, folds on edges and relief slots are all made this way.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <TopoDS_Edge.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Ax3.hxx>
#include <gp_Pnt2d.hxx>
#include <gp_Vec.hxx>

#include <string>
#include <utility>
#include <vector>

namespace cad::sheet {

// Points are (x, y) on the plane. Drawing ends where it started with close().
// Throws Standard_Failure when the kernel can't make an edge; sweepOutline catches it.
class SectionOutline {
public:
    explicit SectionOutline(const gp_Ax3& plane) : plane_(plane) {}

    void start(const gp_Pnt2d& p);
    void lineTo(const gp_Pnt2d& p, std::string name);
    // An arc from the last point through `through` to `p`.
    void arcTo(const gp_Pnt2d& through, const gp_Pnt2d& p, std::string name);
    void close(std::string name);

    const gp_Ax3& plane() const { return plane_; }
    const std::vector<std::pair<TopoDS_Edge, std::string>>& edges() const { return edges_; }

private:
    TopoDS_Vertex vertexAt(const gp_Pnt2d& p) const;

    gp_Ax3 plane_;
    TopoDS_Vertex first_, last_;
    gp_Pnt2d firstPoint_;
    std::vector<std::pair<TopoDS_Edge, std::string>> edges_;
};

// The names of the faces at the two ends of the run, with the tags that tell equal
// names apart (the first in tag order keeps the bare name).
struct SweptEnds {
    std::string start, startTag, end, endTag;
};

// The outline's face run along `vector` into a solid: each edge's face takes the
// edge's name (none for an empty one), the ends those of `ends`. `failure` is the
// sentence when the kernel can't make it. The names are not finished.
Result<geometry::NamedShape> sweepOutline(const SectionOutline& outline, const gp_Vec& vector,
                                          const SweptEnds& ends, const std::string& failure);

} // namespace cad::sheet
