// A path made of a sketch's own curves joined end to end, walked by arc length: where
// a path pattern puts each copy and which way the path runs there.
#pragma once

#include "core/Result.h"
#include "sketch/SketchEntity.h"

#include <Geom2d_Curve.hxx>

#include <string>
#include <vector>

namespace cad {

class PatternPath {
public:
    // The curves of the named entities in the order given, each turned so that it
    // starts where the one before ends.
    static Result<PatternPath> build(const std::vector<SketchEntity>& entities,
                                     const std::vector<std::string>& ids);

    double length() const { return length_; }
    // Whether the path ends where it starts.
    bool closed() const { return closed_; }

    struct Place {
        Point2 point;
        double direction = 0; // degrees from the sketch's x axis
    };
    // The place at arc length s from the start (clamped to the path).
    Place at(double s) const;

private:
    struct Piece {
        Handle(Geom2d_Curve) curve;
        bool reversed = false;
        double length = 0;
    };
    std::vector<Piece> pieces_;
    double length_ = 0;
    bool closed_ = false;
};

} // namespace cad
