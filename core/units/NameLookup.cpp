// The resolver pair and the chain of scoped overrides. Plain globals without locks:
// all evaluation that can reach a name runs on the user-interface thread.
#include "core/units/NameLookup.h"

#include <cassert>
#include <string>
#include <utility>

namespace cad::units {

namespace {

NameLookup& defaultLookup() {
    static NameLookup lookup;
    return lookup;
}

UnitProvider& defaultUnitProvider() {
    static UnitProvider provider;
    return provider;
}

// The innermost override; each override remembers the one it replaced.
ScopedParameterLookup* innermostOverride = nullptr;

} // namespace

void installDefaultResolver(NameLookup lookup, UnitProvider unitProvider) {
    defaultLookup() = std::move(lookup);
    defaultUnitProvider() = std::move(unitProvider);
}

Length currentLengthUnit() {
    if (innermostOverride) return innermostOverride->unit_;
    if (defaultUnitProvider()) {
        const UnitProvider provider = defaultUnitProvider();
        return provider();
    }
    return Length::Millimeters;
}

cad::Result<Quantity> resolveName(std::string_view name) {
    // An override installed without a function leaves names to the default lookup.
    if (innermostOverride && innermostOverride->lookup_) return innermostOverride->lookup_(name);
    if (defaultLookup()) {
        // A copy, so that the lookup may reinstall the resolver while it runs.
        const NameLookup lookup = defaultLookup();
        return lookup(name);
    }
    return cad::fail("Unknown unit or parameter '" + std::string(name) +
                     "' (units: mm, cm, m, in, ft).");
}

ScopedParameterLookup::ScopedParameterLookup(NameLookup lookup, Length unit)
    : lookup_(std::move(lookup)), unit_(unit), previous_(innermostOverride) {
    innermostOverride = this;
}

ScopedParameterLookup::~ScopedParameterLookup() {
    assert(innermostOverride == this && "scoped parameter lookups must nest");
    innermostOverride = previous_;
}

} // namespace cad::units
