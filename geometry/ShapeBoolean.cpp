// The named boolean: one plain attempt, one fuzzy retry, each under its own
// deadline; face names follow the kernel's history and the simplifier's.
#include "geometry/ShapeBoolean.h"

#include "geometry/NameHistory.h"
#include "geometry/Naming.h"

#include <BOPAlgo_Alerts.hxx>
#include <BRepAlgoAPI_BooleanOperation.hxx>
#include <Message_Report.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>

#include <atomic>
#include <memory>

namespace cad::geometry {

namespace {

std::atomic<bool> parallelMode{true};

BOPAlgo_Operation operationOf(BooleanKind kind) {
    switch (kind) {
    case BooleanKind::Cut:
        return BOPAlgo_CUT;
    case BooleanKind::Intersect:
        return BOPAlgo_COMMON;
    case BooleanKind::Join:
        break;
    }
    return BOPAlgo_FUSE;
}

struct Attempt {
    std::unique_ptr<BRepAlgoAPI_BooleanOperation> operation;
    bool timedOut = false;
    bool failed = false;
};

Attempt runAttempt(const TopoDS_Shape& body, const TopoDS_Shape& tool, BooleanKind kind,
                   double fuzzy, std::chrono::nanoseconds limit) {
    Attempt attempt;
    attempt.operation = std::make_unique<BRepAlgoAPI_BooleanOperation>();
    BRepAlgoAPI_BooleanOperation& op = *attempt.operation;
    TopTools_ListOfShape arguments, tools;
    arguments.Append(body);
    tools.Append(tool);
    op.SetArguments(arguments);
    op.SetTools(tools);
    op.SetOperation(operationOf(kind));
    op.SetRunParallel(parallelMode.load());
    // Bodies and tools come out of prisms and booleans, never inside out.
    op.SetCheckInverted(Standard_False);
    if (fuzzy > 0) op.SetFuzzyValue(fuzzy);
    Handle(Deadline) deadline = new Deadline(limit);
    try {
        op.Build(deadline->Start());
    } catch (const Standard_Failure&) {
        attempt.failed = true;
    }
    attempt.timedOut =
        op.HasError(STANDARD_TYPE(BOPAlgo_AlertUserBreak)) || (deadline->expired() && !op.IsDone());
    if (!op.IsDone() || op.HasErrors() || !op.GetReport()->GetAlerts(Message_Fail).IsEmpty())
        attempt.failed = true;
    return attempt;
}

const char* failureText(BooleanKind kind) {
    switch (kind) {
    case BooleanKind::Cut:
        return "The geometry kernel could not cut the extrusion from the body.";
    case BooleanKind::Intersect:
        return "The geometry kernel could not intersect the shapes.";
    case BooleanKind::Join:
        break;
    }
    return "The geometry kernel could not join the extrusion to the body.";
}

const char* nothingLeftText(BooleanKind kind) {
    switch (kind) {
    case BooleanKind::Cut:
        return "The cut removes the entire body.";
    case BooleanKind::Intersect:
        return "The shapes don't overlap: nothing is left.";
    case BooleanKind::Join:
        break;
    }
    return "The join produced no solid.";
}

} // namespace

void setParallelBooleans(bool parallel) { parallelMode.store(parallel); }
bool parallelBooleans() { return parallelMode.load(); }

Result<NamedShape> shapeBoolean(const NamedShape& body, const NamedShape& tool, BooleanKind kind,
                                std::chrono::nanoseconds attemptLimit, MergeFaces merge) {
    if (body.isNull() || tool.isNull()) {
        // Nothing to meet: joining onto nothing is the tool itself.
        if (kind == BooleanKind::Join && !tool.isNull()) {
            NamedShape result = tool;
            finishNames(result);
            return result;
        }
        return fail(nothingLeftText(kind));
    }

    Attempt attempt = runAttempt(body.shape(), tool.shape(), kind, 0.0, attemptLimit);
    if (attempt.timedOut || attempt.failed) {
        attempt = runAttempt(body.shape(), tool.shape(), kind, kRetryFuzzyValue, attemptLimit);
        if (attempt.timedOut)
            return fail("The geometry kernel took too long working out where the shapes meet.");
        if (attempt.failed) return fail(failureText(kind));
    }
    BRepAlgoAPI_BooleanOperation& op = *attempt.operation;

    try {
        std::vector<NamingEntry> entries = carryNames(body.entries(), op);
        std::vector<NamingEntry> toolEntries = carryNames(tool.entries(), op);
        entries.insert(entries.end(), toolEntries.begin(), toolEntries.end());
        // The body was simplified when it was made; only what the boolean touched can merge.
        TopTools_IndexedMapOfShape mapped;
        const TopTools_IndexedMapOfShape* bodyFaces = &body.index().faces;
        if (merge == MergeFaces::Yes && bodyFaces->IsEmpty()) {
            TopExp::MapShapes(body.shape(), TopAbs_FACE, mapped);
            bodyFaces = &mapped;
        }
        TopoDS_Shape simplified = merge == MergeFaces::Yes
                                      ? unifyChangedWithNames(op.Shape(), entries, *bodyFaces)
                                      : op.Shape();

        int solids = 0;
        TopoDS_Shape onlySolid;
        for (TopExp_Explorer e(simplified, TopAbs_SOLID); e.More(); e.Next()) {
            ++solids;
            onlySolid = e.Current();
        }
        if (solids == 0) return fail(nothingLeftText(kind));

        NamedShape result(solids == 1 ? onlySolid : simplified);
        result.entries() = std::move(entries);
        dropStaleEntries(result);
        finishNames(result);
        return result;
    } catch (const Standard_Failure&) {
        return fail(failureText(kind));
    }
}

} // namespace cad::geometry
