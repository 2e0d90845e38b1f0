// How names in expressions are resolved: a process-wide default resolver (the
// current document's parameters and unit) and scoped overrides for code that
// evaluates on behalf of one particular document.
#pragma once

#include "core/Result.h"
#include "core/units/Length.h"
#include "core/units/Quantity.h"

#include <functional>
#include <string_view>

namespace cad::units {

using NameLookup = std::function<cad::Result<Quantity>(std::string_view)>;
using UnitProvider = std::function<Length()>;

// Installs the default lookup and unit provider, replacing both. Empty functions
// uninstall them: names are then unknown and the unit is millimetres.
void installDefaultResolver(NameLookup lookup, UnitProvider unitProvider);

// The unit of the innermost scoped override, else the default provider's unit,
// else Millimeters.
Length currentLengthUnit();

// Resolves a name through the innermost scoped override, else the default lookup.
// With neither installed the name is reported as unknown.
cad::Result<Quantity> resolveName(std::string_view name);

// Installs a lookup and unit for the lifetime of the object, restoring the previous
// override (or none) when it goes out of scope. Overrides nest last-in, first-out
// and are only used from the user-interface thread.
class ScopedParameterLookup {
public:
    ScopedParameterLookup(NameLookup lookup, Length unit);
    ~ScopedParameterLookup();

    ScopedParameterLookup(const ScopedParameterLookup&) = delete;
    ScopedParameterLookup& operator=(const ScopedParameterLookup&) = delete;
    ScopedParameterLookup(ScopedParameterLookup&&) = delete;
    ScopedParameterLookup& operator=(ScopedParameterLookup&&) = delete;

private:
    friend Length currentLengthUnit();
    friend cad::Result<Quantity> resolveName(std::string_view name);

    NameLookup lookup_;
    Length unit_;
    ScopedParameterLookup* previous_;
};

} // namespace cad::units
