// libFuzzer target: any bytes given to the project reader must come back as a
// document or as a sentence, never as a crash, a hang or a huge allocation.
#include "core/ProjectFile.h"
#include "geometry/GeometryTypes.h"
#include "geometry/holes/HoleTypes.h"
#include "geometry/param/ParamTypes.h"
#include "geometry/patterns/PatternCommands.h"
#include "geometry/sheet/flat/FlatKinds.h"
#include "geometry/sheet/metal/SheetMetalKinds.h"
#include "sketch/SketchJson.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const cad::ObjectTypes types = [] {
        cad::ObjectTypes t;
        cad::registerSketchTypes(t);
        cad::registerGeometryTypes(t);
        cad::registerHoleTypes(t);
        cad::registerPatternTypes(t);
        cad::addSheetMetalKinds();
        cad::addFlatKinds();
        cad::registerParamTypes(t);
        return t;
    }();
    auto result = cad::readProjectBytes(cad::Bytes(reinterpret_cast<const char*>(data), size),
                                        "fuzz.kv3", types);
    (void)result;
    return 0;
}
