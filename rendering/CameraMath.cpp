// Camera arithmetic of the 3D view, kept free of any display so it is tested directly.
#include "rendering/CameraMath.h"

#include <gp_Ax1.hxx>
#include <gp_Vec.hxx>

#include <QStringList>

#include <cmath>
#include <numbers>

namespace cad::rendering::camera {

Pose defaultFront() { return {gp_Dir(0, 1, 0), gp_Dir(0, 0, 1)}; }

std::optional<gp_Dir> repairedUp(const gp_Dir& direction, const gp_Dir& up) {
    if (std::abs(direction.Dot(up)) <= 0.999999) return std::nullopt;
    const gp_Dir fallback = std::abs(direction.Z()) > 0.99 ? gp_Dir(0, 1, 0) : gp_Dir(0, 0, 1);
    const gp_Vec d(direction);
    const gp_Vec f(fallback);
    return gp_Dir(f - d * f.Dot(d));
}

gp_Dir orthogonalUp(const gp_Dir& direction, const gp_Dir& up) {
    if (auto repaired = repairedUp(direction, up)) return *repaired;
    const gp_Vec d(direction);
    const gp_Vec u(up);
    return gp_Dir(u - d * u.Dot(d));
}

Pose nudged(const Pose& pose, int step) {
    const gp_Dir& d = pose.direction;
    const gp_Dir& u = pose.up;
    const gp_Dir s = d.Crossed(u); // screen right
    Pose result = pose;
    switch (step) {
    case 0:
        result = {s, u};
        break;
    case 1:
        result = {s.Reversed(), u};
        break;
    case 2:
        result = {u.Reversed(), d};
        break;
    case 3:
        result = {u, d.Reversed()};
        break;
    case 4:
        result = {d, s};
        break;
    case 5:
        result = {d, s.Reversed()};
        break;
    default:
        return pose;
    }
    result.up = orthogonalUp(result.direction, result.up);
    return result;
}

gp_Dir nearestAxis(const gp_Vec& vector) {
    const double x = vector.X(), y = vector.Y(), z = vector.Z();
    if (std::abs(x) >= std::abs(y) && std::abs(x) >= std::abs(z))
        return gp_Dir(x < 0 ? -1 : 1, 0, 0);
    if (std::abs(y) >= std::abs(z)) return gp_Dir(0, y < 0 ? -1 : 1, 0);
    return gp_Dir(0, 0, z < 0 ? -1 : 1);
}

Pose snappedToAxes(const Pose& pose) {
    const gp_Dir direction = nearestAxis(gp_Vec(pose.direction));
    // Drop the component along the snapped direction so up lands on another axis.
    gp_Vec up(pose.up);
    up -= gp_Vec(direction) * up.Dot(gp_Vec(direction));
    if (up.Magnitude() < 1e-9) return {direction, orthogonalUp(direction, direction)};
    return {direction, nearestAxis(up)};
}

namespace {

// The matrix whose columns are direction, up and direction × up.
gp_Mat frameOf(const Pose& pose) {
    const gp_Dir side = pose.direction.Crossed(pose.up);
    return gp_Mat(pose.direction.XYZ(), pose.up.XYZ(), side.XYZ());
}

} // namespace

gp_Mat rotationFromDefaultFront(const Pose& pose) {
    return frameOf(pose).Multiplied(frameOf(defaultFront()).Transposed());
}

Pose rotated(const Pose& pose, const gp_Mat& rotation) {
    const gp_XYZ d = pose.direction.XYZ().Multiplied(rotation);
    const gp_XYZ u = pose.up.XYZ().Multiplied(rotation);
    return {gp_Dir(d), orthogonalUp(gp_Dir(d), gp_Dir(u))};
}

std::optional<std::vector<double>> numbersOf(const QVariant& value) {
    QVariantList items;
    if (value.typeId() == QMetaType::QVariantList)
        items = value.toList();
    else if (value.typeId() == QMetaType::QStringList)
        for (const QString& text : value.toStringList()) items.append(text);
    else
        return std::nullopt;
    std::vector<double> numbers;
    numbers.reserve(static_cast<size_t>(items.size()));
    for (const QVariant& item : items) {
        bool ok = false;
        const double number = item.toDouble(&ok);
        if (!ok || !std::isfinite(number)) return std::nullopt;
        numbers.push_back(number);
    }
    return numbers;
}

std::optional<Pose> homeFromValues(const std::vector<double>& values) {
    if (values.size() != 6) return std::nullopt;
    const gp_Vec direction(values[0], values[1], values[2]);
    const gp_Vec up(values[3], values[4], values[5]);
    if (direction.Magnitude() <= 1e-9 || up.Magnitude() <= 1e-9) return std::nullopt;
    const double angle = direction.Angle(up);
    if (angle < 1e-6 || angle > std::numbers::pi - 1e-6) return std::nullopt;
    const gp_Dir d(direction);
    return Pose{d, orthogonalUp(d, gp_Dir(up))};
}

std::vector<double> homeValues(const Pose& pose) {
    return {pose.direction.X(), pose.direction.Y(), pose.direction.Z(),
            pose.up.X(),        pose.up.Y(),        pose.up.Z()};
}

std::optional<gp_Mat> frontFromValues(const std::vector<double>& values) {
    if (values.size() < 9) return std::nullopt;
    gp_Mat matrix;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            matrix.SetValue(row, column, values[static_cast<size_t>((row - 1) * 3 + column - 1)]);
    // Only a proper rotation (orthonormal, determinant +1) is a front.
    const gp_Mat identity = matrix.Multiplied(matrix.Transposed());
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            if (std::abs(identity.Value(row, column) - (row == column ? 1.0 : 0.0)) > 1e-6)
                return std::nullopt;
    if (std::abs(matrix.Determinant() - 1.0) > 1e-6) return std::nullopt;
    return matrix;
}

std::vector<double> frontValues(const gp_Mat& rotation) {
    std::vector<double> values;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) values.push_back(rotation.Value(row, column));
    return values;
}

gp_Trsf orbitTransform(const gp_Pnt& pivot, const Pose& start, double yaw, double pitch) {
    gp_Trsf turn;
    turn.SetRotation(gp_Ax1(pivot, gp_Dir(0, 0, 1)), yaw);
    gp_Trsf tilt;
    tilt.SetRotation(gp_Ax1(pivot, start.direction.Crossed(start.up)), pitch);
    return turn.Multiplied(tilt);
}

bool isDiscontinuousDelta(QPoint delta) {
    return std::abs(delta.x()) > orbitDiscontinuityPixels ||
           std::abs(delta.y()) > orbitDiscontinuityPixels;
}

bool needsWarp(QPoint position, QRect widgetRect) {
    return !widgetRect.adjusted(40, 40, -40, -40).contains(position);
}

bool warpEnded(QPoint position, QPoint target, qint64 elapsedMs, int moves) {
    return (position - target).manhattanLength() <= 4 || elapsedMs >= 50 || moves >= 8;
}

std::optional<gp_Pnt> intersect(const gp_Lin& line, const gp_Pln& plane) {
    const gp_Vec d(line.Direction());
    const gp_Vec n(plane.Axis().Direction());
    const double denominator = d.Dot(n);
    if (std::abs(denominator) < 1e-12) return std::nullopt;
    const double t = gp_Vec(line.Location(), plane.Location()).Dot(n) / denominator;
    return line.Location().Translated(d * t);
}

} // namespace cad::rendering::camera
