// How long it takes to evaluate the lengths people type, and to run a command
// through the stack (name rewriting, argument reading, undo bookkeeping).
#include "core/ArgReader.h"
#include "core/CommandStack.h"
#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/units/ExpressionParser.h"

#include <benchmark/benchmark.h>

using namespace cad;

static void BM_EvaluateLength(benchmark::State& state) {
    for (auto _ : state) {
        auto r = units::evaluateLength(R"(1' 3 1/2" + (10 + 2mm) * 3 - 6in / 2)",
                                       units::Length::Millimeters);
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_EvaluateLength);

static void BM_EvaluateWithParameters(benchmark::State& state) {
    Document doc;
    doc.setParameters(
        {{"panel_width", "6in", units::Length::Millimeters, true, ""},
         {"margin", "0.25in", units::Length::Millimeters, true, ""},
         {"hole_x", "panel_width / 2 - margin", units::Length::Millimeters, true, ""}});
    units::ScopedParameterLookup scope(doc.parameterLookup(), units::Length::Millimeters);
    for (auto _ : state) {
        auto r = units::evaluateLength("hole_x + margin * 2", units::Length::Millimeters);
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_EvaluateWithParameters);

namespace {
class NoteCommand : public Command {
public:
    using Command::Command;
    CommandResult execute(Document& doc) override {
        Result<double> size = ArgReader(record_).length("size");
        if (!size) return CommandResult::failure(size.error());
        sizes_.push_back(*size);
        (void)doc;
        return CommandResult::success();
    }
    void undo(Document&) override { sizes_.pop_back(); }

private:
    std::vector<double> sizes_;
};
} // namespace

// One command round trip through the stack on a document of 200 objects.
static void BM_ExecuteAndUndo(benchmark::State& state) {
    Document doc;
    for (int i = 1; i <= 200; ++i) {
        auto body = std::make_unique<GeometryObject>();
        body->id = "Body" + std::to_string(i);
        doc.add(std::move(body));
    }
    CommandRegistry registry;
    registry.add("note", "",
                 {{"target", ArgType::String, true, "", {}, "object"},
                  {"size", ArgType::Length, true, "", {}, ""}},
                 [](const CommandRecord& r) -> Result<std::unique_ptr<Command>> {
                     return std::unique_ptr<Command>(std::make_unique<NoteCommand>(r));
                 });
    CommandStack stack(doc, registry);
    CommandRecord record("note");
    record.set("target", "body150").set("size", "10 + 2mm");
    for (auto _ : state) {
        benchmark::DoNotOptimize(stack.execute(record));
        stack.undo();
    }
}
BENCHMARK(BM_ExecuteAndUndo);
