// Helpers for the exchange tests: a document with the full command set, meshes made
// in the test and written as STL, volumes, and the state a failed command must keep.
#pragma once

#include "core/CommandRegistry.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "geometry/exchange/TrianglesToSolid.h"
#include "mcp/AllCommands.h"
#include "tests/mcp/McpTestSupport.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace cad::exchange::testing {

using mcp::testing::TempFolder;

inline double volumeOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.Mass();
}

inline gp_Pnt centreOf(const TopoDS_Shape& shape) {
    GProp_GProps props;
    BRepGProp::VolumeProperties(shape, props);
    return props.CentreOfMass();
}

// The 12 outward triangles of an axis-aligned box from `low` with sizes `size`.
inline std::vector<Triangle> boxTriangles(gp_Pnt low, double sx, double sy, double sz) {
    auto p = [&](int i, int j, int k) {
        return gp_Pnt(low.X() + i * sx, low.Y() + j * sy, low.Z() + k * sz);
    };
    // Each face as four corners counter-clockwise seen from outside.
    const int faces[6][4][3] = {{{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}},
                                {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
                                {{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}},
                                {{0, 1, 0}, {0, 1, 1}, {1, 1, 1}, {1, 1, 0}},
                                {{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}},
                                {{1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {1, 0, 1}}};
    std::vector<Triangle> triangles;
    for (const auto& f : faces) {
        gp_Pnt c[4];
        for (int i = 0; i < 4; ++i) c[i] = p(f[i][0], f[i][1], f[i][2]);
        triangles.push_back({c[0], c[1], c[2]});
        triangles.push_back({c[0], c[2], c[3]});
    }
    return triangles;
}

// Writes a binary STL (zero normals; readers recompute them).
inline void writeBinaryStl(const std::string& path, const std::vector<Triangle>& triangles) {
    std::ofstream out(path, std::ios::binary);
    const char header[80] = "binary STL written by a test";
    out.write(header, 80);
    const auto count = static_cast<std::uint32_t>(triangles.size());
    out.write(reinterpret_cast<const char*>(&count), 4);
    for (const Triangle& t : triangles) {
        float values[12] = {};
        for (int v = 0; v < 3; ++v)
            for (int k = 0; k < 3; ++k)
                values[3 + 3 * v + k] = static_cast<float>(t[static_cast<std::size_t>(v)].Coord(k + 1));
        out.write(reinterpret_cast<const char*>(values), sizeof values);
        const std::uint16_t attributes = 0;
        out.write(reinterpret_cast<const char*>(&attributes), 2);
    }
}

inline void writeText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// A document with every command, driven through the undo stack.
struct Model {
    Model() { mcp::registerAllCommands(registry); }
    CommandResult run(const CommandRecord& record) { return stack.execute(record); }
    CommandResult import(const std::string& path, const char* unit = nullptr) {
        CommandRecord record("import_model");
        record.set("path", path);
        if (unit) record.set("unit", unit);
        return run(record);
    }
    std::vector<const GeometryObject*> bodies() const {
        std::vector<const GeometryObject*> out;
        for (const auto& o : document.objects())
            if (auto* b = dynamic_cast<const GeometryObject*>(o.get())) out.push_back(b);
        return out;
    }
    // What a failed command must leave untouched.
    struct State {
        std::size_t objects, undo;
        std::map<std::string, int> counters;
        bool operator==(const State&) const = default;
    };
    State state() const { return {document.objects().size(), stack.undoCount(), document.idCounters()}; }

    Document document;
    CommandRegistry registry;
    CommandStack stack{document, registry};
};

} // namespace cad::exchange::testing
