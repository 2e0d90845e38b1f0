// Splitting a body with a plane or a face: the pieces of the cut, which one the
// body keeps, and the other pieces made bodies of their own.
#pragma once

#include "core/NamedShape.h"
#include "core/Result.h"

#include <nlohmann/json.hpp>

#include <gp_Pnt.hxx>

#include <string>
#include <vector>

namespace cad {

class Document;

struct SplitPieces {
    std::vector<geometry::NamedShape> pieces; // the cut faces named "<split>.split"
    std::size_t kept = 0;                     // the piece the body keeps
};

// The pieces the split's parameters ("tool", "extend", "extend_by", "keep",
// "pieces") cut the body into.
Result<SplitPieces> splitPieces(const Document& document, const nlohmann::json& parameters,
                                const geometry::NamedShape& body, const std::string& splitName);

// "x,y,z" in millimetres.
Result<gp_Pnt> pointOf(const std::string& text);

// split_body: the body becomes its kept piece.
Result<geometry::NamedShape> computeSplitBody(const Document& document,
                                              const nlohmann::json& parameters,
                                              const geometry::NamedShape& body,
                                              const std::string& featureName);
// split_piece: another piece of a split, as a solid of its own.
Result<geometry::NamedShape> computeSplitPiece(const Document& document,
                                               const nlohmann::json& parameters,
                                               const geometry::NamedShape& body,
                                               const std::string& featureName);

} // namespace cad
