// The residual equations of every constraint type, written once for plain numbers
// and for numbers with derivatives. A constraint holds when all its residuals are 0.
#pragma once

#include "sketch/solver/CompiledConstraint.h"

namespace cad::solver {

// Writes c.rows residuals to `out` from the values of the constraint's local slots.
// Fix on a whole entity is evaluated by the system (it spans the entity's parameters).
template <class T>
void constraintResiduals(const CompiledConstraint& c, const T* local, double scale, T* out);

extern template void constraintResiduals<double>(const CompiledConstraint&, const double*, double,
                                                 double*);
extern template void constraintResiduals<Dual<4>>(const CompiledConstraint&, const Dual<4>*, double,
                                                  Dual<4>*);
extern template void constraintResiduals<Dual<8>>(const CompiledConstraint&, const Dual<8>*, double,
                                                  Dual<8>*);
extern template void constraintResiduals<Dual<16>>(const CompiledConstraint&, const Dual<16>*,
                                                   double, Dual<16>*);

// Wraps an angle into [−π, π).
double wrapAngle(double a);

} // namespace cad::solver
