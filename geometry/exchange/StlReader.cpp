// STL import: the kernel's reader (nodes merged whatever the angle), the triangle
// limit, the unit's scale, then the sewing into a solid.
#include "geometry/exchange/StlReader.h"

#include "geometry/exchange/TrianglesToSolid.h"

#include <OSD_Path.hxx>
#include <Poly_Triangulation.hxx>
#include <RWStl.hxx>
#include <Standard_Failure.hxx>

#include <cmath>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>

namespace cad::exchange {

namespace {

// True when the file is laid out exactly as a binary STL: an 80-byte header, the
// triangle count, and 50 bytes per triangle. The kernel's own test looks for bytes
// outside printable text, which a binary file of small whole coordinates with zero
// normals never has.
bool binaryLayout(const std::string& path) {
    std::error_code ec;
    const std::uintmax_t size = std::filesystem::file_size(path, ec);
    if (ec || size < 84) return false;
    std::ifstream in(path, std::ios::binary);
    unsigned char bytes[84] = {};
    if (!in.read(reinterpret_cast<char*>(bytes), sizeof bytes)) return false;
    const std::uintmax_t count = bytes[80] | (bytes[81] << 8u) | (bytes[82] << 16u) |
                                 (std::uintmax_t{bytes[83]} << 24u);
    return count > 0 && size == 84 + 50 * count;
}

Handle(Poly_Triangulation) readMesh(const std::string& path) {
    try {
        if (binaryLayout(path)) return RWStl::ReadBinary(OSD_Path(path.c_str()));
        return RWStl::ReadFile(path.c_str(), M_PI / 2);
    } catch (const Standard_Failure&) {
        return {};
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

Result<ImportedPart> readStl(const std::string& path, units::Length unit,
                             std::size_t maxTriangles) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (path.empty() || !fs::is_regular_file(fs::path(path), ec))
        return fail("No file at " + path);

    Handle(Poly_Triangulation) mesh = readMesh(path);
    if (mesh.IsNull() || mesh->NbTriangles() < 1 || mesh->NbNodes() < 3)
        return fail("Couldn't read " + path + " as STL.");
    const auto count = static_cast<std::size_t>(mesh->NbTriangles());
    if (count > maxTriangles)
        return fail(fs::path(path).filename().string() + " has " + std::to_string(count) +
                    " triangles; up to " + std::to_string(maxTriangles) +
                    " can be made into a solid. Reduce the mesh first.");

    const double scale = units::unitScale(unit);
    std::vector<Triangle> triangles;
    triangles.reserve(count);
    const int nodes = mesh->NbNodes();
    for (int i = 1; i <= mesh->NbTriangles(); ++i) {
        int a = 0, b = 0, c = 0;
        mesh->Triangle(i).Get(a, b, c);
        if (a < 1 || b < 1 || c < 1 || a > nodes || b > nodes || c > nodes) continue;
        Triangle t{mesh->Node(a), mesh->Node(b), mesh->Node(c)};
        for (gp_Pnt& p : t) p.SetXYZ(p.XYZ() * scale);
        triangles.push_back(t);
    }

    Result<TopoDS_Shape> shape = trianglesToSolid(triangles, sewingTolerance(triangles));
    if (!shape) return Error(shape);
    ImportedPart part;
    part.name = fs::path(path).stem().string();
    part.shape = std::move(shape).value();
    return part;
}

} // namespace cad::exchange
