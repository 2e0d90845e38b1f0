// libFuzzer target: any triangles sewn into a solid must come back as a shape or as
// a sentence, never as a crash or a hang. The first byte picks how the rest reads:
// even, 9 signed bytes a triangle on a half-millimetre grid (so corners meet and
// meshes close); odd, 9 raw floats a triangle (any value, NaN and infinity too).
#include "geometry/exchange/TrianglesToSolid.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t kMostTriangles = 200;

std::vector<cad::exchange::Triangle> triangles(const std::uint8_t* data, std::size_t size) {
    std::vector<cad::exchange::Triangle> out;
    if (size < 1) return out;
    const bool grid = data[0] % 2 == 0;
    ++data;
    --size;
    const std::size_t stride = grid ? 9 : 36;
    for (std::size_t at = 0; at + stride <= size && out.size() < kMostTriangles; at += stride) {
        double c[9];
        for (std::size_t k = 0; k < 9; ++k) {
            if (grid) {
                c[k] = static_cast<std::int8_t>(data[at + k]) * 0.5;
            } else {
                float f;
                std::memcpy(&f, data + at + 4 * k, sizeof f);
                c[k] = f;
            }
        }
        out.push_back({gp_Pnt(c[0], c[1], c[2]), gp_Pnt(c[3], c[4], c[5]), gp_Pnt(c[6], c[7], c[8])});
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<cad::exchange::Triangle> mesh = triangles(data, size);
    cad::Result<TopoDS_Shape> shape =
        cad::exchange::trianglesToSolid(mesh, cad::exchange::sewingTolerance(mesh));
    if (shape && shape->IsNull()) std::abort(); // success always carries a shape
    if (!shape && shape.error().empty()) std::abort(); // a failure always says why
    return 0;
}
