// Carrying face names through the history of a kernel operation: a face that was
// modified passes its names on to what it became, a deleted face loses them.
#pragma once

#include "core/NamedShape.h"

#include <BRepBuilderAPI_MakeShape.hxx>
#include <BRepTools_History.hxx>
#include <TopTools_IndexedMapOfShape.hxx>

#include <vector>

namespace cad::geometry {

// Entries for the faces the operation made from the named faces: each maps to its
// Modified list, or to itself when it was neither modified nor deleted.
std::vector<NamingEntry> carryNames(const std::vector<NamingEntry>& entries,
                                    BRepBuilderAPI_MakeShape& operation);
std::vector<NamingEntry> carryNames(const std::vector<NamingEntry>& entries,
                                    const Handle(BRepTools_History) & history);

// Merges faces and edges that lie on the same surface or curve, keeping every name
// of a merged face (the first still wins when names are finished). The entries are
// replaced by those of the simplified shape.
TopoDS_Shape unifyWithNames(const TopoDS_Shape& shape, std::vector<NamingEntry>& entries);

// The same for the result of an operation on a shape that was simplified already:
// only faces that are not among `unchanged` can have come to lie beside a face on
// the same surface or to meet an edge on the same curve, so when none does, the
// shape is returned as it is without running the simplifier over all of it.
TopoDS_Shape unifyChangedWithNames(const TopoDS_Shape& shape, std::vector<NamingEntry>& entries,
                                   const TopTools_IndexedMapOfShape& unchanged);

// Keeps only the entries whose face is part of the shape.
void dropStaleEntries(NamedShape& named);

} // namespace cad::geometry
