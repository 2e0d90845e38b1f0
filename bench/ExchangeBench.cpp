// The W6 exchange workload: importing screw.step and linkrods.step through the
// import command, exporting the W3 plate (K = 100) to STEP and to STL at the default
// deflection, and sewing a generated sphere mesh of up to 150,000 triangles into a
// solid from a binary STL, alone and through the whole import command.
#include "PlateWorkload.h"

#include "geometry/exchange/ExchangeCommands.h"
#include "geometry/exchange/ExportBodies.h"
#include "geometry/exchange/StepWriter.h"
#include "geometry/exchange/StlReader.h"
#include "geometry/exchange/StlWriter.h"

#include <TopExp_Explorer.hxx>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>

using namespace cad;

namespace {

namespace fs = std::filesystem;

const std::string kSamples = "/usr/share/opencascade/data/step/";

std::string scratch(const std::string& name) {
    return (fs::temp_directory_path() / ("korvel-bench-" + name)).string();
}

// import_model of the file, repeated; the undo between runs stays out of the timing.
void importRepeatedly(benchmark::State& state, const std::string& path) {
    Document document;
    CommandRegistry registry;
    exchange::registerExchangeCommands(registry);
    CommandStack stack(document, registry);
    for (auto _ : state) {
        CommandResult done = stack.execute(CommandRecord("import_model").set("path", path));
        if (!done.ok) {
            state.SkipWithError(done.message.c_str());
            break;
        }
        state.PauseTiming();
        stack.undo();
        stack.clear();
        state.ResumeTiming();
    }
}

void importStep(benchmark::State& state, const std::string& file) {
    const std::string path = kSamples + file;
    if (!fs::exists(path)) {
        state.SkipWithError(("no " + path).c_str());
        return;
    }
    importRepeatedly(state, path);
}

void BM_W6_ImportScrew(benchmark::State& state) { importStep(state, "screw.step"); }
void BM_W6_ImportLinkrods(benchmark::State& state) { importStep(state, "linkrods.step"); }

const std::vector<exchange::ExportBody>& plateBodies() {
    static const std::vector<exchange::ExportBody> bodies = [] {
        workloads::Plate plate(100);
        if (!plate.volumeIsRight()) throw std::runtime_error("the W3 plate has the wrong volume");
        return exchange::collectBodies(plate.document(), {}).value();
    }();
    return bodies;
}

void BM_W6_ExportPlateStep(benchmark::State& state) {
    const auto& bodies = plateBodies();
    const std::string path = scratch("plate.step");
    for (auto _ : state)
        if (Result<void> ok = exchange::writeStep(bodies, path); !ok) {
            state.SkipWithError(ok.error().c_str());
            break;
        }
    state.counters["bytes"] = static_cast<double>(fs::file_size(path));
    fs::remove(path);
}

void BM_W6_ExportPlateStl(benchmark::State& state) {
    const auto& bodies = plateBodies();
    const std::string path = scratch("plate.stl");
    for (auto _ : state)
        if (Result<void> ok = exchange::writeStl(bodies, path, exchange::StlExportOptions()); !ok) {
            state.SkipWithError(ok.error().c_str());
            break;
        }
    state.counters["triangles"] = static_cast<double>((fs::file_size(path) - 84) / 50);
    fs::remove(path);
}

// A closed UV sphere of radius 50 with `triangles` triangles (rounded to the grid),
// written as binary STL.
std::string sphereStl(std::int64_t triangles) {
    const int stacks = static_cast<int>(std::sqrt(static_cast<double>(triangles) / 2.4)) + 1;
    const int slices = static_cast<int>(triangles / (2 * (stacks - 1)));
    const std::string path = scratch("sphere-" + std::to_string(triangles) + ".stl");
    std::ofstream out(path, std::ios::binary);
    char header[80] = "sphere";
    out.write(header, 80);
    const auto count = static_cast<std::uint32_t>(2 * slices * (stacks - 1));
    out.write(reinterpret_cast<const char*>(&count), 4);
    // Corners shared exactly, poles and seam included, as a mesh exporter writes them.
    auto at = [&](int i, int j) {
        if (j == 0 || j == stacks) return std::array<float, 3>{0, 0, j == 0 ? 50.0f : -50.0f};
        const double theta = M_PI * j / stacks, phi = 2 * M_PI * (i % slices) / slices;
        return std::array<float, 3>{static_cast<float>(50 * std::sin(theta) * std::cos(phi)),
                                    static_cast<float>(50 * std::sin(theta) * std::sin(phi)),
                                    static_cast<float>(50 * std::cos(theta))};
    };
    auto facet = [&](std::array<float, 3> a, std::array<float, 3> b, std::array<float, 3> c) {
        const float normal[3] = {0, 0, 0};
        out.write(reinterpret_cast<const char*>(normal), 12);
        for (const auto& p : {a, b, c}) out.write(reinterpret_cast<const char*>(p.data()), 12);
        const std::uint16_t attributes = 0;
        out.write(reinterpret_cast<const char*>(&attributes), 2);
    };
    for (int i = 0; i < slices; ++i)
        for (int j = 0; j < stacks; ++j) {
            if (j > 0) facet(at(i, j), at(i, j + 1), at(i + 1, j));
            if (j + 1 < stacks) facet(at(i, j + 1), at(i + 1, j + 1), at(i + 1, j));
        }
    return path;
}

void BM_W6_ImportStlSphere(benchmark::State& state) {
    const std::string path = sphereStl(state.range(0));
    bool solid = false;
    for (auto _ : state) {
        Result<exchange::ImportedPart> part = exchange::readStl(path, units::Length::Millimeters);
        if (!part) {
            state.SkipWithError(part.error().c_str());
            break;
        }
        solid = TopExp_Explorer(part->shape, TopAbs_SOLID).More();
    }
    state.counters["triangles"] = static_cast<double>((fs::file_size(path) - 84) / 50);
    state.counters["solid"] = solid ? 1 : 0;
    fs::remove(path);
}

// The same mesh through the whole import command: sewing, then naming every face.
void BM_W6_ImportStlCommand(benchmark::State& state) {
    const std::string path = sphereStl(state.range(0));
    importRepeatedly(state, path);
    fs::remove(path);
}

} // namespace

BENCHMARK(BM_W6_ImportScrew)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_W6_ImportLinkrods)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_W6_ExportPlateStep)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_W6_ExportPlateStl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_W6_ImportStlSphere)
    ->Arg(10000)
    ->Arg(40000)
    ->Arg(150000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_W6_ImportStlCommand)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);
