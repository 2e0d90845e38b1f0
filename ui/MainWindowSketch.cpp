// Sketching from the window: the Sketch action and its plane pick, the sketch
// strip with its tools, constraints and modify commands, entering and finishing a
// sketch (banner, prompt, finish button, camera, grid), the text panel, and Esc,
// which backs out of whatever is going on.
#include "ui/MainWindow.h"

#include "core/GeometryObject.h"
#include "core/units/Length.h"
#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/LooksPanel.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/sketch/SketchSession.h"
#include "ui/sketch/TextPanel.h"
#include "ui/sketch/ViewportSketchView.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/OverlayPanel.h"
#include "ui/widgets/ToolGroup.h"
#include "ui/widgets/ToolStrip.h"
#include "ui/widgets/WindowTexts.h"

#include <BRepAdaptor_Surface.hxx>
#include <StdSelect_BRepOwner.hxx>
#include <TopoDS.hxx>
#include <gp_Ax3.hxx>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSettings>
#include <QToolButton>

#include <algorithm>
#include <array>
#include <cmath>

namespace cad::ui {

namespace {

QString banner(const QString& title, const QString& middle, const QString& tail) {
    return QStringLiteral("<span style='color:#d08045;font-weight:700;letter-spacing:1px'>%1</span>"
                          "&nbsp;&nbsp;%2&nbsp;&nbsp;<span style='color:#a0978c'>·&nbsp; %3</span>")
        .arg(title, middle, tail);
}

// The constraint tools in the order the strip shows them, with the kind each sets.
struct ConstraintTool {
    const char* label;
    const char* iconName;
    int kind;
};
constexpr std::array<ConstraintTool, 12> kConstraintTools{{
    {"Fix", "fix", 0},
    {"Coincident", "coincident", 1},
    {"Horizontal", "horizontal", 2},
    {"Vertical", "vertical", 3},
    {"Parallel", "parallel", 4},
    {"Perpendicular", "perpendicular", 5},
    {"Tangent", "tangent", 10},
    {"Equal", "equal", 7},
    {"Concentric", "concentric", 8},
    {"Midpoint", "midpoint", 9},
    {"Collinear", "collinear", 6},
    {"Symmetric", "symmetric", 11},
}};

// The drawing tools: label, icon, shortcut, tool index.
struct DrawingTool {
    const char* label;
    const char* iconName;
    const char* shortcut;
    int tool;
};
constexpr std::array<DrawingTool, 18> kDrawingTools{{
    {"Select", "select", "", SketchSession::Select},
    {"Line", "line", "L", SketchSession::Line},
    {"Rectangle", "rectangle", "R", SketchSession::Rectangle},
    {"Center Rectangle", "rectangle-center", "Shift+R", SketchSession::CenterRectangle},
    {"Circle", "circle", "C", SketchSession::Circle},
    {"Arc", "arc", "A", SketchSession::Arc},
    {"Center Arc", "arc-center", "Shift+A", SketchSession::CenterArc},
    {"Polygon", "polygon", "G", SketchSession::Polygon},
    {"Slot", "slot", "Shift+S", SketchSession::Slot},
    {"Spline", "spline", "S", SketchSession::Spline},
    {"Point", "point", "P", SketchSession::Point},
    {"Text", "text", "", SketchSession::Text},
    {"Trim", "trim", "T", SketchSession::Trim},
    {"Extend", "extend", "", SketchSession::Extend},
    {"Offset", "offset", "O", SketchSession::Offset},
    {"Mirror", "mirror", "", SketchSession::Mirror},
    {"Fillet", "fillet", "", SketchSession::Fillet},
    {"Chamfer", "chamfer", "", SketchSession::Chamfer},
}};

// The sketch patterns: label, icon, object name; the kind is the place in the list.
constexpr std::array<std::array<const char*, 3>, 3> kSketchPatterns{{
    {"Rectangular Pattern", "pattern-rect", "sketchRectPattern"},
    {"Circular Pattern", "pattern-circ", "sketchCircPattern"},
    {"Path Pattern", "pattern-path", "sketchPathPattern"},
}};

void setShortcutShown(QAction* action, const QString& keys) {
    action->setShortcut(QKeySequence(keys));
    action->setToolTip(actionTooltip(action->text(), keys));
}

gp_Ax3 axesOf(const SketchObject& sketch) {
    const PlaneFrame frame = sketch.frame();
    return gp_Ax3(gp_Pnt(frame.origin[0], frame.origin[1], frame.origin[2]),
                  gp_Dir(frame.normal[0], frame.normal[1], frame.normal[2]),
                  gp_Dir(frame.xDirection[0], frame.xDirection[1], frame.xDirection[2]));
}

} // namespace

void MainWindow::buildSketchActions() {
    Actions& a = actions_;
    a.sketch = makeWindowAction(QStringLiteral("sketch"), QStringLiteral("Sketch"),
                                QStringLiteral("sketchAction"),
                                QStringLiteral("On the selected flat face, or click a plane or "
                                               "flat face in the view"));
    connect(a.sketch, &QAction::triggered, this, &MainWindow::startSketch);

    a.finishSketch = makeWindowAction(QStringLiteral("check"), QStringLiteral("Finish Sketch"),
                                      QStringLiteral("finishSketchAction"));
    a.finishSketch->setToolTip(actionTooltip(QStringLiteral("Finish Sketch"), QStringLiteral("Esc")));
    a.finishSketch->setEnabled(false);
    connect(a.finishSketch, &QAction::triggered, this, &MainWindow::finishSketch);

    // The tools are one exclusive set: the session says which one is active.
    auto* tools = new QActionGroup(this);
    tools->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const DrawingTool& tool : kDrawingTools) {
        const QString label = QString::fromLatin1(tool.label);
        QAction* action = makeWindowAction(QString::fromLatin1(tool.iconName), label,
                                           QStringLiteral("sketchTool") + QString::number(tool.tool));
        action->setCheckable(true);
        action->setEnabled(false);
        const QString keys = QString::fromLatin1(tool.shortcut);
        if (!keys.isEmpty()) action->setShortcut(QKeySequence(keys));
        action->setToolTip(actionTooltip(
            label, tool.tool == SketchSession::Select ? QStringLiteral("Esc") : keys));
        tools->addAction(action);
        const int index = tool.tool;
        // A second click on the active tool puts it down, as Esc would.
        connect(action, &QAction::triggered, this, [this, index](bool checked) {
            sketchSession_->setTool(checked ? index : int(SketchSession::Select));
            viewport_->setFocus(Qt::OtherFocusReason);
        });
        sketchToolActions_.emplace_back(action, index);
    }

    a.dimension = makeWindowAction(QStringLiteral("dimension"), QStringLiteral("Dimension"),
                                   QStringLiteral("dimensionTool"));
    a.dimension->setCheckable(true);
    a.dimension->setEnabled(false);
    a.dimension->setShortcut(QKeySequence(QStringLiteral("D")));
    a.dimension->setToolTip(actionTooltip(QStringLiteral("Dimension"), QStringLiteral("D")));
    tools->addAction(a.dimension);
    connect(a.dimension, &QAction::triggered, this, [this](bool checked) {
        sketchSession_->setTool(checked ? int(SketchSession::Dimension) : int(SketchSession::Select));
    });
    sketchToolActions_.emplace_back(a.dimension, int(SketchSession::Dimension));

    for (const ConstraintTool& tool : kConstraintTools) {
        const QString label = QString::fromLatin1(tool.label);
        QAction* action = makeWindowAction(QString::fromLatin1(tool.iconName), label,
                                           QStringLiteral("constraint") + label);
        action->setCheckable(true);
        action->setEnabled(false);
        tools->addAction(action);
        const int kind = tool.kind;
        connect(action, &QAction::triggered, this, [this, kind](bool checked) {
            if (checked)
                sketchSession_->setTool(SketchSession::Constraint, kind);
            else
                sketchSession_->setTool(SketchSession::Select);
        });
        constraintActions_.emplace_back(action, kind);
    }

    a.construction = makeWindowAction(QStringLiteral("construction"), QStringLiteral("Construction"),
                                      QStringLiteral("constructionAction"));
    a.construction->setCheckable(true);
    a.construction->setEnabled(false);
    a.construction->setShortcut(QKeySequence(QStringLiteral("X")));
    a.construction->setToolTip(actionTooltip(QStringLiteral("Construction"), QStringLiteral("X")));
    connect(a.construction, &QAction::triggered, this, &MainWindow::toggleConstruction);

    a.chainSelection = makeWindowAction({}, QStringLiteral("Chain Selection"),
                                        QStringLiteral("chainSelection"));
    a.chainSelection->setCheckable(true);
    a.chainSelection->setChecked(
        QSettings().value(QStringLiteral("sketch/chainSelection"), false).toBool());
    connect(a.chainSelection, &QAction::toggled, this, [this](bool on) {
        sketchSession_->setChainSelection(on);
        QSettings().setValue(QStringLiteral("sketch/chainSelection"), on);
    });

    a.groupSketch = makeWindowAction({}, QStringLiteral("Group"), QStringLiteral("groupSketch"));
    setShortcutShown(a.groupSketch, QStringLiteral("Ctrl+G"));
    connect(a.groupSketch, &QAction::triggered, this, [this] { groupSketchSelection(true); });
    a.ungroupSketch =
        makeWindowAction({}, QStringLiteral("Ungroup"), QStringLiteral("ungroupSketch"));
    setShortcutShown(a.ungroupSketch, QStringLiteral("Ctrl+Shift+G"));
    connect(a.ungroupSketch, &QAction::triggered, this, [this] { groupSketchSelection(false); });

    a.convertToOutlines = makeWindowAction(QStringLiteral("outlines"),
                                           QStringLiteral("Convert to Outlines"),
                                           QStringLiteral("convertToOutlines"),
                                           QStringLiteral("Turn the selected text into lines and "
                                                          "curves"));
    connect(a.convertToOutlines, &QAction::triggered, this, &MainWindow::convertToOutlines);

    QAction** patterns[] = {&a.sketchRectPattern, &a.sketchCircPattern, &a.sketchPathPattern};
    for (int kind = 0; kind < 3; ++kind) {
        const auto& [label, iconName, name] = kSketchPatterns[static_cast<std::size_t>(kind)];
        QAction* action = makeWindowAction(QString::fromLatin1(iconName), QString::fromLatin1(label),
                                           QString::fromLatin1(name));
        connect(action, &QAction::triggered, this, [this, kind] {
            forms_->openSketchPatternForm(kind);
        });
        *patterns[kind] = action;
    }

    a.projectGeometry = makeWindowAction(QStringLiteral("project"), QStringLiteral("Project"),
                                         QStringLiteral("projectGeometry"));
    connect(a.projectGeometry, &QAction::triggered, this, [this] { forms_->openProjectForm(); });
    a.importDrawing = makeWindowAction(QStringLiteral("import"), QStringLiteral("Import Drawing"),
                                       QStringLiteral("importDrawing"));
    connect(a.importDrawing, &QAction::triggered, this, &MainWindow::importDrawingFromUser);
    buildFootprintActions();
    updateSketchActions();
}

void MainWindow::updateSketchActions() {
    const bool sketching = editingSketch();
    const Actions& a = actions_;
    for (QAction* action : {a.groupSketch, a.ungroupSketch, a.convertToOutlines,
                            a.sketchRectPattern, a.sketchCircPattern, a.sketchPathPattern,
                            a.projectGeometry, a.importDrawing, a.insertFootprint,
                            a.saveFootprint})
        if (action) action->setEnabled(sketching);
}

ToolStrip* MainWindow::buildSketchStrip(QWidget* parent) {
    Actions& a = actions_;
    auto tool = [this](int index) -> QAction* {
        for (const auto& [action, i] : sketchToolActions_)
            if (i == index) return action;
        return nullptr;
    };
    // Rectangle and Center Rectangle share a button, as do Arc and Center Arc; the
    // variant last used becomes its face.
    const auto shared = [this](const QString& label, QAction* first, QAction* second) {
        auto* holder = new QAction(first->icon(), label, this);
        holder->setObjectName(label.toLower() + QStringLiteral("Variants"));
        auto* menu = new QMenu(this);
        menu->addAction(first);
        menu->addAction(second);
        holder->setMenu(menu);
        return holder;
    };
    QAction* rectangles = shared(QStringLiteral("Rectangle"), tool(SketchSession::Rectangle),
                                 tool(SketchSession::CenterRectangle));
    QAction* arcs = shared(QStringLiteral("Arc"), tool(SketchSession::Arc),
                           tool(SketchSession::CenterArc));

    auto* strip = new ToolStrip(QStringLiteral("sketchTools"), parent);
    // Select has no button: Esc, or a second click on the active tool, returns to it.
    strip->addGroup(new ToolGroup(
        QStringLiteral("sketch.create"), QStringLiteral("CREATE"),
        {tool(SketchSession::Line), rectangles, tool(SketchSession::Circle), arcs,
         tool(SketchSession::Polygon), tool(SketchSession::Slot), tool(SketchSession::Spline),
         tool(SketchSession::Point), tool(SketchSession::Text), a.projectGeometry,
         a.importDrawing, a.insertFootprint, a.saveFootprint},
        {QStringLiteral("Line"), QStringLiteral("Rectangle"), QStringLiteral("Circle"),
         QStringLiteral("Arc")}));
    strip->addGroup(new ToolGroup(
        QStringLiteral("sketch.modify"), QStringLiteral("MODIFY"),
        {tool(SketchSession::Trim), tool(SketchSession::Extend), tool(SketchSession::Offset),
         a.chainSelection, tool(SketchSession::Mirror), tool(SketchSession::Fillet),
         tool(SketchSession::Chamfer), a.sketchRectPattern, a.sketchCircPattern,
         a.sketchPathPattern, a.convertToOutlines, a.groupSketch, a.ungroupSketch, a.construction,
         a.parameters},
        {QStringLiteral("Trim"), QStringLiteral("Offset"), QStringLiteral("Mirror"),
         QStringLiteral("Fillet")}));
    QList<QAction*> constrain{a.dimension};
    QStringList pinned{QStringLiteral("Dimension")};
    for (const auto& [action, kind] : constraintActions_) {
        constrain.append(action);
        pinned.append(action->text());
    }
    strip->addGroup(
        new ToolGroup(QStringLiteral("sketch.constrain"), QStringLiteral("CONSTRAIN"), constrain,
                      pinned));
    strip->hide();
    return strip;
}

void MainWindow::connectSketchSession() {
    SketchSession& session = *sketchSession_;
    session.setDocument(&document_);
    session.setCommandRunner([this](const CommandRecord& record) { return runCommand(record).ok; });
    session.setGroupHooks([this] { stack_.beginGroup(); }, [this] { stack_.endGroup(); });
    connect(&session, &SketchSession::toolChanged, this, [this](int tool) {
        const int kind = sketchSession_->constraintKind();
        for (const auto& [action, index] : sketchToolActions_) action->setChecked(index == tool);
        for (const auto& [action, k] : constraintActions_)
            action->setChecked(tool == SketchSession::Constraint && k == kind);
    });
    connect(&session, &SketchSession::constructionModeChanged, this,
            [this](bool on) { actions_.construction->setChecked(on); });
    connect(&session, &SketchSession::activeChanged, this, [this](bool active) {
        if (!active) {
            closeTextPanel();
            closeFootprintPanel();
            if (hud_) hud_->hide();
            leaveSketchMode();
        }
        updateSketchActions();
    });
    session.setChainSelection(actions_.chainSelection->isChecked());
    // The prompt of the tool's step heads the view, below the banner.
    connect(&session, &SketchSession::statusChanged, this, [this](const QString& text) {
        if (!hud_) return;
        hud_->setText(text);
        hud_->setVisible(editingSketch() && !text.isEmpty());
        layoutOverlays();
    });
    connect(&session, &SketchSession::textPlacementRequested, this,
            [this](const QPointF& at) { openTextPanel(at); });
    connect(&session, &SketchSession::editTextRequested, this,
            [this](const QString& entity) { editText(entity.toStdString()); });
    connect(&session, &SketchSession::editPatternRequested, this, [this](const QString& pattern) {
        forms_->openSketchPatternEditForm(pattern.toStdString());
    });

    // Forms inside the sketch pick its geometry through the session, and the view goes
    // back to the session when they stop picking in it.
    SketchFormHost host;
    host.sketch = [this] { return editedSketch(); };
    host.selection = [this] {
        return editingSketch() ? sketchSession_->selectedEntities() : std::vector<std::string>();
    };
    host.startPick = [this](SketchPick what, std::function<void(const std::string&)> picked,
                            std::function<std::vector<std::string>()> marked) {
        if (!editingSketch()) return;
        const auto kind = what == SketchPick::Points   ? SketchSession::FormPick::Points
                          : what == SketchPick::Curves ? SketchSession::FormPick::Curves
                                                       : SketchSession::FormPick::Entities;
        viewport_->setTool(sketchSession_.get());
        sketchSession_->startFormPick(kind, std::move(picked), std::move(marked));
    };
    host.stopPick = [this] { sketchSession_->stopFormPick(); };
    host.restingTool = [this]() -> rendering::ViewportTool* {
        return editingSketch() ? sketchSession_.get() : nullptr;
    };
    forms_->setSketchHost(std::move(host));
    // A form's live trial changes the sketch without a command event.
    const auto redraw = [this] {
        if (editingSketch()) sketchSession_->refresh();
    };
    connect(forms_.get(), &FormController::trialChanged, this, redraw);
    connect(forms_.get(), &FormController::closed, this, redraw);
}

void MainWindow::groupSketchSelection(bool group) {
    if (!editingSketch()) return;
    std::string list;
    for (const std::string& id : sketchSession_->selectedEntities())
        list += (list.empty() ? "" : "; ") + id;
    // An empty list gets the command's own sentence ("Choose what to group.").
    runCommand(CommandRecord(group ? "group" : "ungroup")
                   .set("sketch", editedSketch().c_str())
                   .set("entities", list.c_str()));
}

void MainWindow::convertToOutlines() {
    if (!editingSketch()) return;
    // The selected text entities; other selected geometry is left alone.
    const auto* sketch = document_.findAs<SketchObject>(editedSketch());
    std::vector<std::string> texts;
    for (const std::string& id : sketchSession_->selectedEntities())
        if (const SketchEntity* e = sketch ? sketch->findEntity(id) : nullptr;
            e && entityKindName(*e) == "Text")
            texts.push_back(id);
    if (texts.empty()) {
        showToast(QStringLiteral("Select the text, then Convert to Outlines."));
        return;
    }
    stack_.beginGroup();
    for (const std::string& id : texts)
        if (!runCommand(CommandRecord("text_to_outlines")
                            .set("sketch", editedSketch().c_str())
                            .set("entity", id.c_str()))
                 .ok)
            break;
    stack_.endGroup();
}

void MainWindow::openTextPanel(QPointF at) {
    if (!editingSketch()) return;
    if (!textCard_) {
        textPanel_ = new TextPanel;
        textCard_ = new OverlayPanel(QStringLiteral("text"), QStringLiteral("Text"), textPanel_,
                                     viewport_);
        textCard_->setObjectName(QStringLiteral("textCard"));
        connect(textPanel_, &TextPanel::cancelled, this, &MainWindow::closeTextPanel);
        connect(textPanel_, &TextPanel::accepted, this, [this] {
            const Result<CommandRecord> record = textPanel_->record();
            if (record && runCommand(*record).ok) closeTextPanel();
        });
    }
    if (forms_->isOpen()) forms_->cancel();
    textPanel_->startNew(editedSketch(), Point2{at.x(), at.y()});
    placeTextPanel();
}

void MainWindow::editText(const std::string& entity) {
    const auto* sketch = document_.findAs<SketchObject>(editedSketch());
    const SketchEntity* text = sketch ? sketch->findEntity(entity) : nullptr;
    if (!text || entityKindName(*text) != "Text") return;
    openTextPanel({});
    textPanel_->startEdit(editedSketch(), entity, textPanelValues(*text, document_.lengthUnit()));
}

void MainWindow::placeTextPanel() {
    if (!textCard_) return;
    // Where forms go: the right of the view, below the cube.
    const int corner = static_cast<int>(viewport_->cubeCornerSize() /
                                        std::max(1.0, viewport_->devicePixelRatioF()));
    textCard_->setFixedWidth(std::min(300, std::max(200, viewport_->width() - 24)));
    textCard_->adjustSize();
    textCard_->move(std::max(12, viewport_->width() - textCard_->width() - 12),
                    std::min(corner + 40, std::max(12, viewport_->height() - textCard_->height() - 12)));
    textCard_->show();
    textCard_->raise();
    textPanel_->entry()->setFocus(Qt::OtherFocusReason);
}

void MainWindow::closeTextPanel() {
    if (!textCard_ || textCard_->isHidden()) return;
    const bool hadFocus = textCard_->isAncestorOf(QApplication::focusWidget());
    textCard_->hide();
    if (hadFocus) viewport_->setFocus(Qt::OtherFocusReason);
}

bool MainWindow::editingSketch() const { return sketchSession_ && sketchSession_->isActive(); }

std::string MainWindow::editedSketch() const {
    return editingSketch() ? sketchSession_->sketchId() : std::string();
}

void MainWindow::showBanner(const QString& text) {
    modeBanner_->setText(text);
    modeBanner_->setVisible(!text.isEmpty());
    layoutOverlays();
}

void MainWindow::startSketch() {
    if (editingSketch()) finishSketch();
    if (forms_ && forms_->isOpen()) forms_->cancel();
    // A selected face: the sketch goes on it when it is flat.
    const Handle(AIS_InteractiveContext)& context = viewport_->context();
    if (!context.IsNull()) {
        for (context->InitSelected(); context->MoreSelected(); context->NextSelected()) {
            const auto owner = Handle(StdSelect_BRepOwner)::DownCast(context->SelectedOwner());
            if (owner.IsNull() || !owner->HasShape() ||
                owner->Shape().ShapeType() != TopAbs_FACE)
                continue;
            const std::string id = presenter_->objectOf(context->SelectedOwner());
            const auto* body = dynamic_cast<const GeometryObject*>(document_.find(id));
            const std::string name = body ? body->shape.nameOf(owner->Shape()) : std::string();
            if (name.empty()) continue;
            if (BRepAdaptor_Surface(TopoDS::Face(owner->Shape())).GetType() != GeomAbs_Plane) {
                showToast(QStringLiteral("Sketches need a flat face. Select a planar face, or clear "
                                         "the selection to choose a plane."));
                return;
            }
            createSketchOn(id + "/" + name);
            return;
        }
    }
    beginPlanePick();
}

void MainWindow::beginPlanePick() {
    closeLooks();
    pickingPlane_ = true;
    showBanner(banner(QStringLiteral("SKETCH"), QStringLiteral("Click a plane or a flat face"),
                      QStringLiteral("Esc to cancel")));
    // The origin planes are what most sketches start on: show them while choosing.
    presenter_->setOriginVisible(true);
    viewport_->requestRedraw();
    picker_->activate(PickPlane | PickFace, [this](const std::vector<std::string>& picked) {
        if (picked.empty()) return;
        createSketchOn(picked.front());
    });
}

void MainWindow::endPlanePick() {
    if (!pickingPlane_) return;
    pickingPlane_ = false;
    if (picker_->isActive()) picker_->deactivate();
    presenter_->setOriginVisible(actions_.origin->isChecked());
    viewport_->requestRedraw();
    showBanner({});
}

void MainWindow::createSketchOn(const std::string& reference) {
    const std::size_t before = document_.objects().size();
    if (!runCommand(CommandRecord("create_sketch").set("on", reference.c_str())).ok)
        return; // the toast says why; a plane pick goes on
    endPlanePick();
    if (document_.objects().size() <= before) return;
    // The new sketch is the last object the command added.
    for (auto it = document_.objects().rbegin(); it != document_.objects().rend(); ++it)
        if (dynamic_cast<const SketchObject*>(it->get())) {
            editSketch((*it)->id);
            return;
        }
}

void MainWindow::editSketch(const std::string& id) {
    const auto* sketch = dynamic_cast<const SketchObject*>(document_.find(id));
    if (!sketch) return;
    endPlanePick();
    closeLooks();
    if (forms_ && forms_->isOpen()) forms_->cancel();
    if (editingSketch()) sketchSession_->end();
    clearSelection();

    modelingTools_->hide();
    sheetTools_->hide();
    sketchTools_->show();
    finishSketchButton_->show();
    showBanner(banner(QStringLiteral("SKETCH"), QString::fromStdString(sketch->displayName()),
                      QStringLiteral("Esc to finish")));

    // Face the sketch, sized to what it holds (or a sensible area when empty).
    double size = 100.0;
    for (const SketchEntity& entity : sketch->entities)
        for (double value : entityParameters(entity)) size = std::max(size, 2.2 * std::abs(value));
    viewport_->lookAtPlane(axesOf(*sketch), std::min(size, 5000.0));
    const double step = gridStep(document_.lengthUnit());
    viewport_->showGrid(axesOf(*sketch), 10 * step, std::max(500.0, 4 * size));

    presenter_->setOriginPlanesHidden(true);
    sketchSession_->begin(id);
    viewport_->setTool(sketchSession_.get());
    // Typed values and Esc go to the session through the view's keyboard focus.
    viewport_->setFocus(Qt::OtherFocusReason);
    updateUndoRedo();
}

void MainWindow::finishSketch() {
    if (!editingSketch()) return;
    sketchSession_->end(); // activeChanged(false) leaves the mode
}

void MainWindow::leaveSketchMode() {
    if (viewport_->tool() == sketchSession_.get()) viewport_->setTool(nullptr);
    viewport_->hideGrid();
    presenter_->setOriginPlanesHidden(false);
    sketchTools_->hide();
    designStrip()->show();
    finishSketchButton_->hide();
    showBanner({});
    updateUndoRedo();
}

void MainWindow::toggleConstruction(bool checked) {
    if (!editingSketch()) return;
    const std::vector<std::string> selected = sketchSession_->selectedEntities();
    if (selected.empty()) {
        // Nothing picked: the switch says whether what is drawn next is construction.
        sketchSession_->setConstruction(checked);
        return;
    }
    // The selection flips: construction when any of it is normal geometry.
    const auto* sketch = dynamic_cast<const SketchObject*>(document_.find(editedSketch()));
    bool anyNormal = false;
    for (const std::string& id : selected)
        if (const SketchEntity* entity = sketch ? sketch->findEntity(id) : nullptr)
            anyNormal = anyNormal || !entity->construction;
    stack_.beginGroup();
    for (const std::string& id : selected)
        if (!runCommand(CommandRecord("set_construction")
                            .set("sketch", editedSketch().c_str())
                            .set("entity", id.c_str())
                            .set("construction", anyNormal))
                 .ok)
            break;
    stack_.endGroup();
    actions_.construction->setChecked(sketchSession_->construction());
}

void MainWindow::deleteSketchSelection() {
    const std::string sketch = editedSketch();
    const std::vector<std::string> constraints = sketchSession_->selectedConstraints();
    const std::vector<std::string> entities = sketchSession_->selectedEntities();
    if (constraints.empty() && entities.empty()) return;
    stack_.beginGroup();
    bool ok = true;
    for (const std::string& id : constraints) {
        const auto* object = dynamic_cast<const SketchObject*>(document_.find(sketch));
        if (!object || !object->findConstraint(id)) continue; // went with an entity
        ok = runCommand(CommandRecord("delete_constraint")
                            .set("sketch", sketch.c_str())
                            .set("constraint", id.c_str()))
                 .ok;
        if (!ok) break;
    }
    for (const std::string& id : entities) {
        if (!ok) break;
        ok = runCommand(CommandRecord("delete_sketch_entity")
                            .set("sketch", sketch.c_str())
                            .set("entity", id.c_str()))
                 .ok;
    }
    stack_.endGroup();
}

void MainWindow::escape() {
    // The current mode backs out: a pick or a tool step, then a form, then the
    // sketch, then the selection.
    if (pickingPlane_) {
        endPlanePick();
        return;
    }
    if (forms_ && forms_->isOpen()) {
        forms_->cancel();
        return;
    }
    if (looks_ && looks_->isVisible()) {
        closeLooks();
        return;
    }
    if (footprintClicking()) {
        setFootprintClicking(false);
        closeFootprintPanel();
        return;
    }
    if (editingSketch()) {
        if (!sketchSession_->cancel()) finishSketch();
        return;
    }
    clearSelection();
}

} // namespace cad::ui
