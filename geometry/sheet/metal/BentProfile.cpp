// Bent parts from chains of lines: the chain walked from its start, each corner's
// bend placed so both walls touch it tangentially, and the closed cross-section
// (one sheet face out, the other back, a cap at each end) run out for the width.
#include "geometry/sheet/metal/BentProfile.h"

#include "core/units/Format.h"
#include "geometry/Naming.h"
#include "geometry/sheet/metal/SectionOutline.h"

#include <BRepCheck_Analyzer.hxx>
#include <Standard_Failure.hxx>
#include <gp_Vec2d.hxx>

#include <array>
#include <cmath>
#include <numbers>

namespace cad::sheet {

using geometry::NamedShape;

namespace {

constexpr double kMeet = 1e-6;      // line ends closer than this are joined
constexpr double kNoLength = 1e-7;  // a line shorter than this has no length
constexpr double kStraight = 1e-9;  // a turn smaller than this (radians) needs no bend
constexpr double kFoldsBack = 1e-7; // a turn this close to half a turn folds back
constexpr double kFlatLeft = 1e-6;  // the least flat a wall keeps between its bends
constexpr const char* kFailed = "The geometry kernel could not make the bent sheet.";

// A line as the chain walks it.
struct Walked {
    std::string name;
    gp_Pnt2d from, to;
};

// The lines in walking order, each turned to run from the previous one's end.
Result<std::vector<Walked>> walkChain(const std::vector<ProfileLine>& lines) {
    for (const ProfileLine& line : lines)
        if (line.start.Distance(line.end) < kNoLength) return fail(line.name + " has no length.");

    std::vector<gp_Pnt2d> nodes;
    auto nodeOf = [&nodes](const gp_Pnt2d& p) {
        for (std::size_t i = 0; i < nodes.size(); ++i)
            if (nodes[i].Distance(p) < kMeet) return i;
        nodes.push_back(p);
        return nodes.size() - 1;
    };
    std::vector<std::array<std::size_t, 2>> ends;
    for (const ProfileLine& line : lines) ends.push_back({nodeOf(line.start), nodeOf(line.end)});
    std::vector<int> degree(nodes.size(), 0);
    for (const auto& e : ends) {
        ++degree[e[0]];
        ++degree[e[1]];
    }
    for (int d : degree)
        if (d > 2) return fail("The profile branches: it must be one chain of lines.");

    // Every line reached from the first through shared ends.
    std::vector<bool> reached(lines.size(), false);
    std::vector<std::size_t> todo{0};
    reached[0] = true;
    while (!todo.empty()) {
        const std::size_t at = todo.back();
        todo.pop_back();
        for (std::size_t j = 0; j < lines.size(); ++j) {
            if (reached[j]) continue;
            for (std::size_t a : ends[at])
                for (std::size_t b : ends[j])
                    if (a == b && !reached[j]) {
                        reached[j] = true;
                        todo.push_back(j);
                    }
        }
    }
    for (bool r : reached)
        if (!r) return fail("The profile's lines aren't joined end to end in one chain.");

    // Start at the free end of the first line drawn that has one.
    std::size_t node = nodes.size();
    for (std::size_t i = 0; i < lines.size() && node == nodes.size(); ++i)
        for (std::size_t n : ends[i])
            if (degree[n] == 1) {
                node = n;
                break;
            }
    if (node == nodes.size())
        return fail("The profile is closed: a closed sketch makes a flat plate; an open one a "
                    "bent part.");

    std::vector<Walked> walked;
    std::vector<bool> used(lines.size(), false);
    for (std::size_t step = 0; step < lines.size(); ++step) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (used[i] || (ends[i][0] != node && ends[i][1] != node)) continue;
            used[i] = true;
            const bool forward = ends[i][0] == node;
            walked.push_back({lines[i].name, forward ? lines[i].start : lines[i].end,
                              forward ? lines[i].end : lines[i].start});
            node = forward ? ends[i][1] : ends[i][0];
            break;
        }
    }
    return walked;
}

// Where a corner's bend sits: its centre, how far its tangent points are from the
// corner along both lines, and the offset (from the lines) of its centre.
struct Corner {
    bool bend = false;
    gp_Pnt2d centre;
    gp_Vec2d bisector; // unit, from the centre's side of the corner outwards
    double centreOffset = 0;
    double setback = 0;
};

gp_Vec2d leftOf(const gp_Vec2d& d) { return gp_Vec2d(-d.Y(), d.X()); }

} // namespace

Result<NamedShape> makeBentProfile(const BentProfile& profile, std::string_view featureName) {
    if (profile.lines.empty())
        return fail("Draw the flange's profile: lines joined end to end (an L, a U...).");
    Result<std::vector<Walked>> walked = walkChain(profile.lines);
    if (!walked) return Error(walked);
    const std::vector<Walked>& lines = *walked;
    const std::size_t n = lines.size();
    const double t = profile.thickness, r = profile.bendRadius;

    // The sheet lies between offsets a and b from the lines (positive to the left).
    const double a = profile.side == ThicknessSide::Left    ? 0
                     : profile.side == ThicknessSide::Right ? -t
                                                            : -t / 2;
    const double b = a + t;

    std::vector<gp_Vec2d> d, l;
    std::vector<double> lengths;
    for (const Walked& line : lines) {
        gp_Vec2d v(line.from, line.to);
        lengths.push_back(v.Magnitude());
        d.push_back(v.Normalized());
        l.push_back(leftOf(d.back()));
    }
    // corners[k] sits where line k-1 ends and line k starts; the chain's ends have none.
    std::vector<Corner> corners(n + 1);
    for (std::size_t k = 1; k < n; ++k) {
        const double turn = std::atan2(d[k - 1].Crossed(d[k]), d[k - 1].Dot(d[k]));
        if (std::numbers::pi - std::abs(turn) < kFoldsBack)
            return fail("The profile folds back on itself between " + lines[k - 1].name + " and " +
                        lines[k].name + ".");
        if (std::abs(turn) < kStraight) continue;
        Corner& c = corners[k];
        c.bend = true;
        // A left turn bends about a centre on the left, its inner face the leftmost.
        c.centreOffset = turn > 0 ? b + r : a - r;
        c.setback = std::abs(c.centreOffset) * std::tan(std::abs(turn) / 2);
        const gp_Vec2d sum = l[k - 1] + l[k];
        c.centre = lines[k].from.Translated(sum * (c.centreOffset / (1 + d[k - 1].Dot(d[k]))));
        c.bisector = sum.Normalized();
    }
    for (std::size_t i = 0; i < n; ++i) {
        const double needed = corners[i].setback + corners[i + 1].setback;
        if (lengths[i] <= needed + kFlatLeft)
            return fail(lines[i].name + " is too short for its bends: it needs to be longer than " +
                        units::formatNumber(needed, units::Length::Millimeters) + " mm.");
    }

    const std::string f(featureName);
    // The face on the lines (the right-hand one when centred) keeps the plain names.
    const double near = profile.side == ThicknessSide::Right ? b : a;
    auto layerName = [&](const std::string& base, double offset) {
        return offset == near ? base : base + ".opposite";
    };
    auto wallStart = [&](std::size_t i, double offset) {
        return lines[i].from.Translated(d[i] * corners[i].setback + l[i] * offset);
    };
    auto wallEnd = [&](std::size_t i, double offset) {
        return lines[i].to.Translated(d[i] * -corners[i + 1].setback + l[i] * offset);
    };
    auto bendName = [&](std::size_t k) {
        return f + ".Bend(" + lines[k - 1].name + "," + lines[k].name + ")";
    };
    auto arcMiddle = [&](std::size_t k, double offset) {
        const Corner& c = corners[k];
        return c.centre.Translated(c.bisector * (offset - c.centreOffset));
    };

    try {
        gp_Ax3 plane = profile.plane;
        plane.Translate(gp_Vec(plane.Direction()) * profile.widthFrom);
        SectionOutline outline(plane);
        outline.start(wallStart(0, a));
        for (std::size_t i = 0; i < n; ++i) {
            outline.lineTo(wallEnd(i, a), layerName(f + "." + lines[i].name, a));
            if (i + 1 < n && corners[i + 1].bend)
                outline.arcTo(arcMiddle(i + 1, a), wallStart(i + 1, a),
                              layerName(bendName(i + 1), a));
        }
        outline.lineTo(wallEnd(n - 1, b), f + ".end_cap");
        for (std::size_t i = n; i-- > 0;) {
            outline.lineTo(wallStart(i, b), layerName(f + "." + lines[i].name, b));
            if (i > 0 && corners[i].bend)
                outline.arcTo(arcMiddle(i, b), wallEnd(i - 1, b), layerName(bendName(i), b));
        }
        outline.close(f + ".start_cap");

        const gp_Vec width =
            gp_Vec(profile.plane.Direction()) * (profile.widthTo - profile.widthFrom);
        Result<NamedShape> made =
            sweepOutline(outline, width, {f + ".cap", "", f + ".cap.opposite", ""}, kFailed);
        if (!made) return made;
        if (!BRepCheck_Analyzer(made->shape()).IsValid())
            return fail("The bent sheet runs into itself: move the profile's lines further apart.");
        geometry::finishNames(*made);
        return made;
    } catch (const Standard_Failure&) {
        return fail(kFailed);
    }
}

} // namespace cad::sheet
