// What is selected in the view and deleting it: whole bodies (the body filter, or
// a double-click on a face), asking first when other objects use what goes.
#include "ui/MainWindow.h"

#include "core/GeometryObject.h"
#include "rendering/Viewport.h"
#include "ui/presentation/DocumentPresenter.h"

#include <StdSelect_BRepOwner.hxx>

#include <QStringList>

#include <algorithm>
#include <set>

namespace cad::ui {

namespace {

// The objects outside `ids` that use one of them, or one of the features of a body
// among them (a body goes with its features), in history order.
std::vector<std::string> usersOutside(const Document& document,
                                      const std::vector<std::string>& ids) {
    std::vector<std::string> going = ids;
    for (const std::string& id : ids)
        if (const auto* body = dynamic_cast<const GeometryObject*>(document.find(id)))
            going.insert(going.end(), body->features.begin(), body->features.end());
    const auto isGoing = [&](const std::string& id) {
        return std::find(going.begin(), going.end(), id) != going.end();
    };
    std::set<std::string> found;
    for (const std::string& id : going)
        for (std::string& user : document.users(id))
            if (!isGoing(user)) found.insert(std::move(user));
    std::vector<std::string> users;
    for (const auto& object : document.objects())
        if (found.contains(object->id)) users.push_back(object->id);
    return users;
}

} // namespace

bool MainWindow::selectBodyAt(QPointF position) {
    const Handle(AIS_InteractiveContext)& context = viewport_->context();
    if (context.IsNull() || !viewport_->isReady()) return false;
    // A click selects when the view next draws: the double-click's own clicks must not
    // replace the body selected here, whenever that draw comes.
    viewport_->dropPendingClick();
    viewport_->repaint();
    const double ratio = viewport_->devicePixelRatioF();
    context->MoveTo(static_cast<int>(position.x() * ratio), static_cast<int>(position.y() * ratio),
                    viewport_->view(), false);
    if (!context->HasDetected()) return false;
    const std::string id = presenter_->objectOf(context->DetectedOwner());
    if (!dynamic_cast<const GeometryObject*>(document_.find(id))) return false;
    return presenter_->selectWholeBody(id);
}

void MainWindow::clearSelection() {
    const Handle(AIS_InteractiveContext)& context = viewport_->context();
    if (context.IsNull()) return;
    context->ClearSelected(false);
    viewport_->requestRedraw();
}

void MainWindow::deleteSelection() {
    if (editingSketch()) {
        deleteSketchSelection();
        return;
    }
    const Handle(AIS_InteractiveContext)& context = viewport_->context();
    if (context.IsNull()) return;
    std::vector<std::string> objects;
    bool parts = false;
    for (context->InitSelected(); context->MoreSelected(); context->NextSelected()) {
        const Handle(SelectMgr_EntityOwner) owner = context->SelectedOwner();
        const Handle(StdSelect_BRepOwner) shapeOwner = Handle(StdSelect_BRepOwner)::DownCast(owner);
        if (!shapeOwner.IsNull() && shapeOwner->ComesFromDecomposition()) {
            parts = true;
            continue;
        }
        const std::string id = presenter_->objectOf(owner);
        if (!id.empty() && std::find(objects.begin(), objects.end(), id) == objects.end())
            objects.push_back(id);
    }
    if (objects.empty()) {
        if (parts)
            showToast(
                QStringLiteral("A face, edge or vertex can't be deleted on its own. To delete "
                               "the body, select it in the browser."));
        return;
    }

    deleteObjects(objects);
}

void MainWindow::deleteObjects(const std::vector<std::string>& objects) {
    // Users outside the selection go too only when the user says so.
    const std::vector<std::string> outside = usersOutside(document_, objects);
    if (!outside.empty()) {
        QStringList names, users;
        for (const std::string& id : objects) names.append(QString::fromStdString(id));
        for (const std::string& id : outside) users.append(QString::fromStdString(id));
        const QString question =
            QStringLiteral("%1 is used by %2.\n\nDelete those too?")
                .arg(names.join(QStringLiteral(", ")), users.join(QStringLiteral(", ")));
        if (!prompt_->askDeleteDependents(this, question)) return;
    }

    // One step to undo, however many objects went. An object still used when its
    // turn comes takes its users along: they are selected too, or the user agreed.
    stack_.beginGroup();
    for (const std::string& id : objects) {
        if (!document_.find(id)) continue; // went with an earlier object's dependents
        CommandRecord record("delete_object");
        record.set("object", id.c_str());
        if (!usersOutside(document_, {id}).empty()) record.set("with_dependents", true);
        if (!runCommand(record).ok) break;
    }
    stack_.endGroup();
}

} // namespace cad::ui
