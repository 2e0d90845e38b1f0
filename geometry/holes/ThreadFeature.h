// The thread feature: a standard thread on a cylindrical face of its body, outside
// a bolt or boss or inside a hole; cosmetic (drawn only) or modeled (cut).
#pragma once

#include "core/DocumentObject.h"
#include "core/NamedShape.h"
#include "geometry/holes/ThreadSizes.h"

#include <gp_Ax1.hxx>

#include <string>
#include <string_view>
#include <vector>

namespace cad {

// Where a thread goes on a face, worked out from the body around it.
struct ThreadLayout {
    bool internal = false; // inside a hole
    double radius = 0;     // the face's
    const ThreadSize* size = nullptr;
    gp_Ax1 axis;       // from the free end, along the face
    double length = 0; // threaded, from the free end
};

// The face by its persistent name in `body`; the size by name, or matched to the
// face's diameter when empty; the length when above 0 and not longer than the face,
// else the whole face.
Result<ThreadLayout> layOutThread(const geometry::NamedShape& body, std::string_view face,
                                  std::string_view size, double length);

class ThreadFeature : public FeatureObject {
public:
    std::string_view typeName() const override { return "Thread"; }
    // The face is one of the body's own, so nothing outside it.
    std::vector<std::string> references() const override { return {}; }
    Result<geometry::NamedShape> apply(const geometry::NamedShape& input,
                                       const Document& document) const override;

    std::string face;  // persistent name of a cylindrical face ("Hole1.wall")
    std::string size;  // empty = matched to the face's diameter
    double length = 0; // 0 = the whole face
    bool modeled = false;
};

} // namespace cad
