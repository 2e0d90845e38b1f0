// Small DXF texts for the reader's tests: groups written one per line, wrapped in
// the sections a file needs.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace cad::drawingimport::test {

// Code and value lines alternate: {"0", "LINE", "10", "1", ...}.
inline std::string lines(std::initializer_list<std::string_view> items) {
    std::string out;
    for (std::string_view item : items) {
        out += item;
        out += '\n';
    }
    return out;
}

inline std::string entitiesFile(const std::string& entities, const std::string& blocks = {},
                                int insUnits = -1) {
    std::string out;
    if (insUnits >= 0) {
        out += lines({"0", "SECTION", "2", "HEADER", "9", "$INSUNITS", "70"});
        out += std::to_string(insUnits) + "\n" + lines({"0", "ENDSEC"});
    }
    if (!blocks.empty())
        out += lines({"0", "SECTION", "2", "BLOCKS"}) + blocks + lines({"0", "ENDSEC"});
    out += lines({"0", "SECTION", "2", "ENTITIES"}) + entities + lines({"0", "ENDSEC", "0", "EOF"});
    return out;
}

inline std::string line(double x0, double y0, double x1, double y1) {
    return "0\nLINE\n8\n0\n10\n" + std::to_string(x0) + "\n20\n" + std::to_string(y0) + "\n11\n" +
           std::to_string(x1) + "\n21\n" + std::to_string(y1) + "\n";
}

inline std::string block(const std::string& name, double baseX, double baseY,
                         const std::string& entities) {
    return "0\nBLOCK\n2\n" + name + "\n10\n" + std::to_string(baseX) + "\n20\n" +
           std::to_string(baseY) + "\n" + entities + "0\nENDBLK\n";
}

} // namespace cad::drawingimport::test
