// Camera arithmetic of the 3D view that needs no display: up-vector repair, the cube
// buttons' nudges, snapping to principal axes for the user's front, the stored home
// and front values, the turntable orbit and its cursor-warp rules.
#pragma once

#include <gp_Dir.hxx>
#include <gp_Lin.hxx>
#include <gp_Mat.hxx>
#include <gp_Pln.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>

#include <QPoint>
#include <QRect>
#include <QVariant>

#include <optional>
#include <vector>

namespace cad::rendering::camera {

// Where a camera looks (eye towards target) and which way is up on screen.
struct Pose {
    gp_Dir direction;
    gp_Dir up;
};

// The default front: looking along +Y at the model's front, Z up (OpenCASCADE's V3d_Yneg).
Pose defaultFront();

// A new up vector when up has become parallel to the direction (|d·u| > 0.999999):
// +Y for views along Z, else +Z, made orthogonal to the direction. None when up is fine.
std::optional<gp_Dir> repairedUp(const gp_Dir& direction, const gp_Dir& up);

// Up made orthogonal to the direction; repaired as above when the two are parallel.
gp_Dir orthogonalUp(const gp_Dir& direction, const gp_Dir& up);

// The cube buttons: 0 turn left, 1 turn right, 2 turn up, 3 turn down, 4 roll left,
// 5 roll right. Any other step leaves the pose as it is.
Pose nudged(const Pose& pose, int step);

// The principal axis (±X, ±Y, ±Z) nearest to a vector.
gp_Dir nearestAxis(const gp_Vec& vector);
// Direction and up snapped to principal axes; the up axis is always orthogonal to the
// snapped direction.
Pose snappedToAxes(const Pose& pose);
// The rotation that takes the default front onto a pose whose vectors are orthogonal.
gp_Mat rotationFromDefaultFront(const Pose& pose);
// A pose turned by a rotation.
Pose rotated(const Pose& pose, const gp_Mat& rotation);

// Numbers of a stored setting (a list of numbers or numeric strings); none when the
// value is not such a list or an entry is not a number.
std::optional<std::vector<double>> numbersOf(const QVariant& value);
// "view/home": six numbers (direction, up), both vectors longer than 1e-9 and not
// parallel; up is returned orthogonalised.
std::optional<Pose> homeFromValues(const std::vector<double>& values);
std::vector<double> homeValues(const Pose& pose);
// "view/front": nine numbers, a rotation matrix row by row; lists with fewer numbers,
// or numbers that are not a rotation, are ignored.
std::optional<gp_Mat> frontFromValues(const std::vector<double>& values);
std::vector<double> frontValues(const gp_Mat& rotation);

// The turntable: yaw about world Z through the pivot after pitch about the start
// camera's side axis (direction × up) through the pivot.
gp_Trsf orbitTransform(const gp_Pnt& pivot, const Pose& start, double yaw, double pitch);
// Radians per pixel of mouse travel while orbiting.
inline constexpr double orbitRadiansPerPixel = 0.003;
// A mouse delta larger than this on either axis is a jump, not a motion.
inline constexpr int orbitDiscontinuityPixels = 250;
bool isDiscontinuousDelta(QPoint delta);
// True when the cursor has left the widget rectangle shrunk by 40 pixels on each side.
bool needsWarp(QPoint position, QRect widgetRect);
// A pending warp ends at the first move within 4 pixels (Manhattan) of the target,
// after 50 ms, or after 8 moves.
bool warpEnded(QPoint position, QPoint target, qint64 elapsedMs, int moves);

// Where a line meets a plane; none when they run parallel (|d·n| < 1e-12).
std::optional<gp_Pnt> intersect(const gp_Lin& line, const gp_Pln& plane);

} // namespace cad::rendering::camera
