// Quantity: the value of an evaluated expression, a plain number or a length.
#pragma once

namespace cad::units {

// There is no area or volume quantity: an expression is a number or a length.
struct Quantity {
    double value = 0.0; // in millimetres when isLength is true
    bool isLength = false;
};

} // namespace cad::units
