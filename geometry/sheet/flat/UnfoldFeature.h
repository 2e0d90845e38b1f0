// The Unfold step of a body's history: from it on the body is its blank, the fixed
// face where it was. Also what the Fold and the flat pattern need to lay a body flat
// again exactly as an Unfold did.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"
#include "geometry/sheet/flat/Unfolding.h"

#include <nlohmann/json.hpp>

#include <string>

namespace cad {
class Document;
class GeometryObject;
class ParamFeature;
} // namespace cad

namespace cad::flat {

// How a body's sheet is laid flat: with its sheet metal rules when it has them
// (their thickness as given), else with its material's K-factor and the thickness
// measured. `body` may be null (no rules, K 0.44).
UnfoldOptions unfoldOptionsFor(const Document& document, const GeometryObject* body,
                               const std::string& fixedFace);

// The blank with names: the fixed face and the face across from it keep the part's
// names (else <feature>.fixed and <feature>.back), its edges are <feature>.side.
geometry::NamedShape namedBlank(const Unfolding& unfolding, const std::string& featureName);

// The Unfold kind's compute. "There's nothing to unfold." for no shape or a part
// without bends.
Result<geometry::NamedShape> computeUnfold(const Document& document,
                                           const nlohmann::json& parameters,
                                           const geometry::NamedShape& body,
                                           const std::string& featureName);

// The body just before `unfold`, laid flat as that Unfold lays it; "<Unfold> hasn't
// been worked out yet." when it hasn't computed.
Result<Unfolding> unfoldingOf(const Document& document, const ParamFeature& unfold);

// The Unfold that leaves the body flat as it stands now: the last active one not
// followed by a Fold that closes it; null when the body is folded (or never unfolded).
const ParamFeature* openUnfold(const Document& document, const GeometryObject& body);

} // namespace cad::flat
