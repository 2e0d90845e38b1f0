// Draws a form's preview shape translucent in the accent colour (red for a cut) and
// keeps a form's trial edit on the command stack until it is withdrawn.
#include "ui/forms/FormSession.h"

#include "core/CommandStack.h"
#include "core/Document.h"
#include "rendering/Viewport.h"
#include "ui/presentation/Tessellation.h"

#include <AIS_InteractiveContext.hxx>
#include <Quantity_Color.hxx>
#include <Standard_Failure.hxx>

namespace cad::ui {

namespace {

constexpr double kPreviewTransparency = 0.55;

Quantity_Color previewColour(bool removes) {
    // The accent (#d08045), or a red that reads as material taken away.
    return removes ? Quantity_Color(0.86, 0.30, 0.26, Quantity_TOC_sRGB)
                   : Quantity_Color(0.816, 0.502, 0.271, Quantity_TOC_sRGB);
}

} // namespace

FormSession::FormSession(rendering::Viewport* view, CommandStack& stack,
                         std::optional<Handle> handle)
    : view_(view), stack_(stack), handle_(std::move(handle)) {}

FormSession::~FormSession() { withdraw(); }

void FormSession::showPreview(const FormPreview& preview) {
    removePresentation();
    if (preview.shape.IsNull() || !view_ || view_->context().IsNull()) return;
    const Handle(AIS_InteractiveContext)& context = view_->context();
    try {
        opencascade::handle<AIS_Shape> shape = new AIS_Shape(preview.shape);
        applyTessellation(preview.shape, shape->Attributes());
        shape->SetColor(previewColour(preview.removes));
        shape->SetTransparency(kPreviewTransparency);
        // Shaded and not selectable: clicks go through it to the model.
        context->Display(shape, AIS_Shaded, -1, false);
        presentation_ = shape;
    } catch (const Standard_Failure&) {
        presentation_.Nullify(); // no preview is better than a broken one
    }
    view_->requestRedraw();
}

CommandResult FormSession::tryEdit(const CommandRecord& record) {
    removePresentation();
    withdraw();
    countersBefore_ = stack_.document().idCounters();
    CommandResult result = stack_.tryOut(record);
    trying_ = result.ok;
    countersTried_ = stack_.document().idCounters();
    return result;
}

void FormSession::withdraw() {
    removePresentation();
    if (!trying_) return;
    trying_ = false;
    Document& document = stack_.document();
    if (stack_.withdrawTrial()) {
        document.setIdCounters(countersBefore_);
        return;
    }
    // Another command withdrew the trial before it ran: the names that command took
    // stay taken, the ones only the trial counted are free again.
    std::map<std::string, int> counters = document.idCounters();
    for (const auto& [prefix, tried] : countersTried_) {
        auto now = counters.find(prefix);
        if (now == counters.end() || now->second != tried) continue;
        auto before = countersBefore_.find(prefix);
        if (before == countersBefore_.end())
            counters.erase(now);
        else
            now->second = before->second;
    }
    document.setIdCounters(std::move(counters));
}

void FormSession::removePresentation() {
    if (presentation_.IsNull()) return;
    if (view_ && !view_->context().IsNull()) {
        view_->context()->Remove(presentation_, false);
        view_->requestRedraw();
    }
    presentation_.Nullify();
}

} // namespace cad::ui
