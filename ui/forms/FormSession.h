// The live preview of what an open form would do. A new feature's form draws the
// shape it would make as a translucent presentation over the model, or tries its
// command on the body; a form that edits an existing feature tries its edit command
// on the model itself. Trials stay outside the history and are withdrawn unless OK
// runs the command for real.
#pragma once

#include "core/Command.h"
#include "core/CommandRecord.h"

#include <AIS_Shape.hxx>
#include <TopoDS_Shape.hxx>

#include <map>
#include <optional>
#include <string>

namespace cad {
class CommandStack;
}
namespace cad::rendering {
class Viewport;
}

namespace cad::ui {

// The shape a new feature's form draws while it is filled in.
struct FormPreview {
    TopoDS_Shape shape;   // null: nothing to draw
    bool removes = false; // a cut: drawn red instead of the accent colour
};

class FormSession {
public:
    // A live trial: the feature edited, or the body a new feature is tried on. The
    // form has nothing left to do once that object is gone.
    struct Handle {
        std::string featureId;
    };

    // Without a view nothing is drawn; without a handle nothing is tried on the model.
    FormSession(rendering::Viewport* view, CommandStack& stack,
                std::optional<Handle> handle = std::nullopt);
    // Ends the session: the preview goes and the trial edit is withdrawn.
    ~FormSession();
    FormSession(const FormSession&) = delete;
    FormSession& operator=(const FormSession&) = delete;

    bool isEditing() const { return handle_.has_value(); }
    const std::optional<Handle>& handle() const { return handle_; }

    // Draws this shape in place of the one drawn before (a null shape: none).
    void showPreview(const FormPreview& preview);
    // Withdraws the last trial and tries this edit on the model instead.
    CommandResult tryEdit(const CommandRecord& record);
    // Takes the preview away and withdraws the trial: the model is as it was.
    void withdraw();

    // What is drawn now; null when nothing is.
    const opencascade::handle<AIS_Shape>& presentation() const { return presentation_; }
    bool isTrying() const { return trying_; }

private:
    void removePresentation();

    rendering::Viewport* view_;
    CommandStack& stack_;
    std::optional<Handle> handle_;
    opencascade::handle<AIS_Shape> presentation_;
    bool trying_ = false;
    // The document's ID counters before and just after the trial: a withdrawn
    // "Fillet1" leaves the name free for the real one.
    std::map<std::string, int> countersBefore_, countersTried_;
};

} // namespace cad::ui
