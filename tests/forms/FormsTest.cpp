// The feature forms over a real 3D view: pick rows counting and clearing, bad
// expressions blocking OK, one form at a time with no preview left behind, edits
// tried live on the model, withdrawn on Esc and recorded once on Enter, new
// features tried on their body, a hole placed by a click on a face, and the forms
// inside a sketch picking through the sketch and giving the view back.
#include "GeometryTestModel.h"

#include "core/units/ExpressionParser.h"
#include "geometry/holes/HoleCommands.h"
#include "geometry/param/ParamCommands.h"
#include "geometry/patterns/PatternCommands.h"
#include "geometry/patterns/PatternKinds.h"
#include "geometry/planes/PlaneObject.h"
#include "geometry/projection/ProjectionCommands.h"
#include "rendering/Viewport.h"
#include "sketch/SketchObject.h"
#include "sketch/patterns/SketchPatternCommands.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/ReferencePicker.h"
#include "ui/widgets/LengthEdit.h"

#include <AIS_InteractiveContext.hxx>
#include <AIS_ListOfInteractive.hxx>

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <memory>
#include <numbers>

namespace cad::testing {

using ui::FeatureForm;
using ui::FormController;

namespace {

class Forms : public GeometryModel {
protected:
    void SetUp() override {
        viewport = std::make_unique<rendering::Viewport>();
        viewport->resize(900, 700);
        viewport->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(viewport.get()));
        QElapsedTimer timer;
        timer.start();
        while (!viewport->isReady() && timer.elapsed() < 20000) QTest::qWait(20);
        ASSERT_TRUE(viewport->isReady());
        presenter = std::make_unique<ui::DocumentPresenter>(*viewport);
        presenter->setDocument(&document);
        picker = std::make_unique<ui::ReferencePicker>(*viewport, *presenter);
        picker->setDocument(&document);
        forms = std::make_unique<FormController>(
            viewport.get(), viewport.get(), *picker, stack,
            [this](const CommandRecord& record) { return stack.execute(record); });
        forms->setSelectionProvider([this] { return selection; });
        // As the window does: every command event refreshes the open form.
        stack.addListener([this](const CommandEvent&) {
            if (forms) forms->refresh();
        });
    }
    void TearDown() override {
        forms.reset();
        picker.reset();
        presenter.reset();
        viewport.reset();
    }

    int displayed() const {
        AIS_ListOfInteractive shown;
        viewport->context()->DisplayedObjects(shown);
        return shown.Size();
    }
    FeatureForm& form() { return *forms->form(); }
    ui::LengthEdit* lengthRow(const char* key) {
        return qobject_cast<ui::LengthEdit*>(form().editor(QString::fromLatin1(key)));
    }
    QString pickText(const char* key) {
        return qobject_cast<QPushButton*>(form().editor(QString::fromLatin1(key)))->text();
    }
    static std::string region(const std::string& sketch, int n) {
        const std::string r = "Rectangle" + std::to_string(n);
        return sketch + "/Region(" + r + ".bottom+" + r + ".left+" + r + ".right+" + r + ".top)";
    }

    std::vector<std::string> selection;
    std::unique_ptr<rendering::Viewport> viewport;
    std::unique_ptr<ui::DocumentPresenter> presenter;
    std::unique_ptr<ui::ReferencePicker> picker;
    std::unique_ptr<FormController> forms;
};

} // namespace

TEST_F(Forms, PickRowsCountToggleAndClear) {
    const std::string sketch =
        sketchWithRectangles({{0, 0, 10, 10}, {20, 0, 30, 10}, {40, 0, 50, 10}});
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Extrude")));
    EXPECT_FALSE(forms->openFeatureForm(QStringLiteral("Sketch")));
    EXPECT_EQ(form().title(), QStringLiteral("Extrude"));
    // Nothing selected: the profile row waits for a click in the view.
    EXPECT_EQ(form().activePick(), QStringLiteral("sketch"));
    EXPECT_EQ(viewport->tool(), picker.get());
    EXPECT_EQ(pickText("sketch"), QStringLiteral("Click in the view\u2026"));
    EXPECT_EQ(form().message(),
              QStringLiteral("Profile: click a closed region, a sketch or a flat face"));
    EXPECT_FALSE(form().acceptEnabled());

    for (int n = 1; n <= 3; ++n) form().picked({region(sketch, n)});
    EXPECT_EQ(pickText("sketch"), QStringLiteral("3 selected"));
    EXPECT_TRUE(form().acceptEnabled());
    EXPECT_FALSE(forms->session()->presentation().IsNull());
    // A second click drops a region; a curve stands for its whole sketch.
    form().picked({region(sketch, 2)});
    form().picked({sketch + "/Rectangle1.top"});
    EXPECT_EQ(form().references(QStringLiteral("sketch")),
              (std::vector<std::string>{region(sketch, 1), region(sketch, 3), sketch}));

    // Switching the row off hands the view back; clearing it empties it.
    QTest::mouseClick(qobject_cast<QPushButton*>(form().editor(QStringLiteral("sketch"))),
                      Qt::LeftButton);
    EXPECT_FALSE(picker->isActive());
    EXPECT_EQ(viewport->tool(), nullptr);
    EXPECT_EQ(pickText("sketch"), QStringLiteral("3 selected"));
    QTest::mouseClick(form().findChild<QToolButton*>(QStringLiteral("pickClear")), Qt::LeftButton);
    EXPECT_EQ(pickText("sketch"), QStringLiteral("None"));
    EXPECT_FALSE(form().acceptEnabled());
    EXPECT_TRUE(forms->session()->presentation().IsNull());

    // Rows that depend on others.
    EXPECT_FALSE(form().isShown(QStringLiteral("distance2")));
    EXPECT_FALSE(form().isShown(QStringLiteral("target")));
    form().setText(QStringLiteral("extent"), QStringLiteral("two_sides"));
    form().setText(QStringLiteral("operation"), QStringLiteral("cut"));
    EXPECT_TRUE(form().isShown(QStringLiteral("distance2")));
    EXPECT_TRUE(form().isShown(QStringLiteral("target")));
    EXPECT_FALSE(form().isShown(QStringLiteral("thickness")));
}

TEST_F(Forms, TypedExpressionsStayTextAndBadOnesBlockOk) {
    ok("set_parameter", {{"name", "d"}, {"expression", "8"}});
    const std::string sketch = sketchWithRectangles({{0, 0, 10, 10}});
    const std::size_t objects = document.objects().size();
    selection = {sketch + "/Rectangle1.top", "XY"};
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Extrude")));
    EXPECT_EQ(form().references(QStringLiteral("sketch")), std::vector<std::string>{sketch});
    EXPECT_TRUE(form().acceptEnabled());
    EXPECT_FALSE(forms->session()->presentation().IsNull());
    EXPECT_EQ(document.objects().size(), objects); // the preview is not in the model

    lengthRow("distance")->setText(QStringLiteral("10 +"));
    EXPECT_FALSE(form().acceptEnabled());
    EXPECT_TRUE(form().messageIsError());
    const std::string sentence = units::evaluateLength("10 +", units::Length::Millimeters).error();
    EXPECT_TRUE(form().message().contains(QString::fromStdString(sentence)))
        << form().message().toStdString();
    EXPECT_TRUE(forms->session()->presentation().IsNull());

    lengthRow("distance")->setText(QStringLiteral("d + 2"));
    EXPECT_TRUE(form().acceptEnabled());
    EXPECT_TRUE(form().message().isEmpty());
    EXPECT_TRUE(forms->accept());
    EXPECT_FALSE(forms->isOpen());
    EXPECT_NEAR(volumeOf("Body1"), 1000, 1e-6);
    ok("set_parameter", {{"name", "d"}, {"expression", "18"}});
    EXPECT_NEAR(volumeOf("Body1"), 2000, 1e-6);

    // The box starts beside the body; a refused command keeps the form open.
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Box")));
    EXPECT_EQ(form().length(QStringLiteral("x")).value(), 30.0);
    form().setText(QStringLiteral("name"), QStringLiteral("Body1"));
    const std::size_t steps = stack.undoCount();
    EXPECT_FALSE(forms->accept());
    ASSERT_TRUE(forms->isOpen());
    EXPECT_EQ(form().message(), QStringLiteral("An object named 'Body1' already exists."));
    EXPECT_EQ(stack.undoCount(), steps);
    EXPECT_FALSE(forms->session()->presentation().IsNull());
}

TEST_F(Forms, OneFormAtATimeLeavesNoPreviewBehind) {
    const std::string sketch = sketchWithRectangles({{0, 0, 10, 10}});
    selection = {sketch};
    const int before = displayed();
    const std::size_t objects = document.objects().size();
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Extrude")));
    const opencascade::handle<AIS_Shape> first = forms->session()->presentation();
    ASSERT_FALSE(first.IsNull());
    EXPECT_EQ(displayed(), before + 1);
    QPointer<FeatureForm> firstForm = forms->form();

    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Box")));
    EXPECT_EQ(form().title(), QStringLiteral("Box"));
    EXPECT_FALSE(viewport->context()->IsDisplayed(first));
    EXPECT_EQ(displayed(), before + 1); // the box's preview alone
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(firstForm.isNull());

    // Esc in the view cancels.
    QTest::keyClick(viewport.get(), Qt::Key_Escape);
    EXPECT_FALSE(forms->isOpen());
    EXPECT_EQ(displayed(), before);
    EXPECT_EQ(document.objects().size(), objects);
    EXPECT_EQ(stack.undoCount(), 2u); // the sketch and its rectangle only
}

TEST_F(Forms, EditsAreTriedLiveWithdrawnOnEscAndRecordedOnce) {
    const std::string sketch = sketchWithRectangles({{0, 0, 10, 10}});
    ok("extrude", {{"sketch", sketch}, {"distance", 10.0}});
    const auto boundsBefore = bounds(body("Body1")->shape.shape());
    const int facesBefore = count(body("Body1")->shape.shape(), TopAbs_FACE);
    const std::size_t steps = stack.undoCount();

    ASSERT_TRUE(forms->openEditForm("Extrude1"));
    EXPECT_FALSE(forms->openEditForm("Body1"));
    EXPECT_EQ(form().title(), QStringLiteral("Edit Extrude1"));
    EXPECT_FALSE(form().has(QStringLiteral("target")));
    EXPECT_FALSE(form().editor(QStringLiteral("sketch"))->isEnabled());
    EXPECT_FALSE(form().acceptEnabled()); // nothing changed yet

    lengthRow("distance")->setText(QStringLiteral("20"));
    EXPECT_TRUE(stack.hasTrial());
    EXPECT_NEAR(volumeOf("Body1"), 2000, 1e-6);
    EXPECT_EQ(stack.undoCount(), steps);
    // Another command withdraws the trial first; the form tries it again after.
    ok("set_parameter", {{"name", "p"}, {"expression", "1"}});
    EXPECT_TRUE(stack.hasTrial());
    EXPECT_NEAR(volumeOf("Body1"), 2000, 1e-6);

    QTest::keyClick(lengthRow("distance"), Qt::Key_Escape);
    EXPECT_FALSE(forms->isOpen());
    EXPECT_FALSE(stack.hasTrial());
    EXPECT_NEAR(volumeOf("Body1"), 1000, 1e-9);
    EXPECT_EQ(bounds(body("Body1")->shape.shape()), boundsBefore);
    EXPECT_EQ(count(body("Body1")->shape.shape(), TopAbs_FACE), facesBefore);
    EXPECT_EQ(stack.undoCount(), steps + 1); // the parameter only
    EXPECT_FALSE(stack.canRedo());

    ASSERT_TRUE(forms->openEditForm("Extrude1"));
    lengthRow("distance")->setText(QStringLiteral("15"));
    QTest::keyClick(lengthRow("distance"), Qt::Key_Return);
    EXPECT_FALSE(forms->isOpen());
    EXPECT_FALSE(stack.hasTrial());
    EXPECT_EQ(stack.undoCount(), steps + 2);
    ASSERT_NE(stack.undoRecord(), nullptr);
    EXPECT_EQ(stack.undoRecord()->name, "edit_feature");
    EXPECT_EQ(stack.undoRecord()->find("distance")->index(), 3u); // as typed, a string
    EXPECT_NEAR(volumeOf("Body1"), 1500, 1e-6);
    stack.undo();
    EXPECT_NEAR(volumeOf("Body1"), 1000, 1e-9);
}

TEST_F(Forms, AnEditCarriesOnlyWhatChanged) {
    ok("create_box", {{"width", 40.0}, {"depth", 40.0}, {"height", 10.0}});
    const std::string sketch = sketchWithRectangles({{10, 10, 30, 30}}, 10);
    ok("extrude",
       {{"sketch", sketch}, {"distance", -3.0}, {"operation", "cut"}, {"target", "Box1"}});
    EXPECT_NEAR(volumeOf("Box1"), 16000 - 1200, 1e-6);

    // A cut can become a join, never a new body.
    ASSERT_TRUE(forms->openEditForm("Extrude1"));
    EXPECT_EQ(qobject_cast<QComboBox*>(form().editor(QStringLiteral("operation")))->count(), 2);
    form().setText(QStringLiteral("operation"), QStringLiteral("join"));
    EXPECT_NEAR(volumeOf("Box1"), 16000, 1e-6);
    form().setFlag(QStringLiteral("thin"), true);
    ASSERT_TRUE(forms->accept());
    const CommandRecord* edit = stack.undoRecord();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->toCall(), "edit_feature(feature=\"Extrude1\", operation=\"join\", "
                              "thickness=\"2\", thin_side=\"inside\")");

    // Back to solid: the wall's thickness goes to 0.
    ASSERT_TRUE(forms->openEditForm("Extrude1"));
    EXPECT_TRUE(form().flag(QStringLiteral("thin")));
    form().setText(QStringLiteral("operation"), QStringLiteral("cut"));
    form().setFlag(QStringLiteral("thin"), false);
    ASSERT_TRUE(forms->accept());
    EXPECT_EQ(stack.undoRecord()->toCall(),
              "edit_feature(feature=\"Extrude1\", operation=\"cut\", thickness=0)");
    EXPECT_NEAR(volumeOf("Box1"), 16000 - 1200, 1e-6);
}

TEST_F(Forms, ClicksInTheViewFillTheProfileThenTheTarget) {
    ok("create_box", {{"width", 40.0}, {"depth", 40.0}, {"height", 10.0}});
    const std::string sketch = sketchWithRectangles({{10, 10, 30, 30}}, 12);
    presenter->setOriginVisible(false);
    viewport->setStandardView(V3d_Zpos, false);
    // Drawn once first, so the view has its size before it is fitted.
    for (int i = 0; i < 2; ++i) {
        viewport->repaint();
        QCoreApplication::processEvents();
        viewport->fitAll();
    }
    const auto at = [&](double x, double y, double z) {
        int px = 0, py = 0;
        viewport->view()->Convert(x, y, z, px, py);
        const double ratio = viewport->devicePixelRatioF();
        return QPoint(static_cast<int>(px / ratio), static_cast<int>(py / ratio));
    };

    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Extrude")));
    QTest::mouseClick(viewport.get(), Qt::LeftButton, {}, at(15, 22, 12));
    EXPECT_EQ(form().references(QStringLiteral("sketch")),
              std::vector<std::string>{region(sketch, 1)});
    EXPECT_EQ(form().activePick(), QStringLiteral("sketch")); // more may follow

    // The target takes one body, from any face of it, and hands the view back.
    form().setText(QStringLiteral("operation"), QStringLiteral("cut"));
    lengthRow("distance")->setText(QStringLiteral("-5"));
    QTest::mouseClick(qobject_cast<QPushButton*>(form().editor(QStringLiteral("target"))),
                      Qt::LeftButton);
    EXPECT_EQ(pickText("target"), QStringLiteral("Click in the view\u2026"));
    QTest::mouseClick(viewport.get(), Qt::LeftButton, {}, at(36, 36, 10));
    EXPECT_EQ(form().references(QStringLiteral("target")), std::vector<std::string>{"Box1"});
    EXPECT_TRUE(form().activePick().isEmpty());
    EXPECT_EQ(viewport->tool(), nullptr);

    EXPECT_TRUE(forms->accept());
    EXPECT_NEAR(volumeOf("Box1"), 40 * 40 * 10 - 20 * 20 * 3, 1e-6);
    EXPECT_EQ(viewport->tool(), nullptr);
}

TEST_F(Forms, NewFeaturesAreTriedOnTheirBodyAndAClickedHoleIsOneStep) {
    registerHoleCommands(registry);
    ok("create_box", {{"width", 20.0}, {"depth", 20.0}, {"height", 10.0}});
    const geometry::NamedShape& box = body("Box1")->shape;
    std::string corner; // the vertical edge at x = y = 20
    for (TopExp_Explorer e(box.shape(), TopAbs_EDGE); e.More() && corner.empty(); e.Next()) {
        const auto b = bounds(e.Current());
        if (b[0] > 19.9 && b[1] > 19.9 && b[5] - b[2] > 9.9)
            corner = "Box1/" + box.nameOf(e.Current());
    }
    ASSERT_FALSE(corner.empty());
    const std::size_t steps = stack.undoCount();

    // The fillet panel rounds the selected edge on the model while it is open.
    selection = {corner};
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Fillet")));
    EXPECT_EQ(form().objectName(), QStringLiteral("filletPanel"));
    EXPECT_TRUE(stack.hasTrial());
    const double rounded = 4000 - (4 - std::numbers::pi) * 10;
    EXPECT_NEAR(volumeOf("Box1"), rounded, 1e-6);
    lengthRow("radius")->setText(QStringLiteral("30"));
    EXPECT_FALSE(form().acceptEnabled());
    EXPECT_TRUE(form().message().startsWith(QStringLiteral("The fillet couldn't be built")))
        << form().message().toStdString();
    EXPECT_NEAR(volumeOf("Box1"), 4000, 1e-6);
    lengthRow("radius")->setText(QStringLiteral("2"));
    ok("set_parameter", {{"name", "p"}, {"expression", "1"}}); // withdraws the trial first
    ASSERT_TRUE(forms->accept());
    EXPECT_NE(document.find("Fillet1"), nullptr); // the trials left the name free
    EXPECT_NEAR(volumeOf("Box1"), rounded, 1e-6);
    EXPECT_EQ(stack.undoCount(), steps + 2);

    // A click on the top face places a hole there: sketch, point and hole in one step.
    presenter->setOriginVisible(false);
    viewport->setStandardView(V3d_Zpos, false);
    for (int i = 0; i < 2; ++i) {
        viewport->repaint();
        QCoreApplication::processEvents();
        viewport->fitAll();
    }
    int px = 0, py = 0;
    viewport->view()->Convert(5.0, 6.0, 10.0, px, py);
    const double ratio = viewport->devicePixelRatioF();
    selection.clear();
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Hole")));
    EXPECT_EQ(form().activePick(), QStringLiteral("position"));
    QTest::mouseClick(viewport.get(), Qt::LeftButton, {},
                      QPoint(static_cast<int>(px / ratio), static_cast<int>(py / ratio)));
    ASSERT_EQ(form().references(QStringLiteral("position")).size(), 1u);
    EXPECT_TRUE(form().acceptEnabled()) << form().message().toStdString();
    EXPECT_FALSE(forms->session()->presentation().IsNull()); // the hole's tool, in red
    ASSERT_TRUE(forms->accept());
    EXPECT_EQ(stack.undoCount(), steps + 3);
    ASSERT_NE(document.findAs<SketchObject>("Sketch1"), nullptr);
    const auto& point = document.findAs<SketchObject>("Sketch1")->entities.front();
    EXPECT_NEAR(document.findAs<SketchObject>("Sketch1")->toModel(
                    std::get<SketchPoint>(point.geometry).position)[0],
                5.0, 0.2);
    EXPECT_LT(volumeOf("Box1"), rounded - 100);
    stack.undo();
    EXPECT_EQ(document.find("Sketch1"), nullptr);
    EXPECT_NEAR(volumeOf("Box1"), rounded, 1e-6);
}

TEST_F(Forms, RowsOfEveryKindFoldAndKeys) {
    FeatureForm card(&document);
    QSignalSpy accepted(&card, &FeatureForm::acceptRequested);
    QSignalSpy cancelled(&card, &FeatureForm::cancelRequested);
    card.addSection(QStringLiteral("more"), QStringLiteral("More"));
    card.addInteger(QStringLiteral("count"), QStringLiteral("Count"), {}, 3, 1, 50);
    card.addNumber(QStringLiteral("angle"), QStringLiteral("Angle"), {}, QStringLiteral("90 / 2"));
    card.addFlag(QStringLiteral("flip"), QStringLiteral("Flip"), {}, false);
    card.addText(QStringLiteral("note"), QStringLiteral("Note"), {}, {});
    card.showWhen(QStringLiteral("note"), QStringLiteral("flip"), {QStringLiteral("true")});
    EXPECT_EQ(card.integer(QStringLiteral("count")), 3);
    EXPECT_EQ(card.number(QStringLiteral("angle")).value(), 45.0);
    EXPECT_FALSE(card.isShown(QStringLiteral("note")));
    card.setFlag(QStringLiteral("flip"), true);
    EXPECT_TRUE(card.isShown(QStringLiteral("note")));
    // A section folds the rows below it.
    QTest::mouseClick(qobject_cast<QPushButton*>(card.editor(QStringLiteral("more"))),
                      Qt::LeftButton);
    EXPECT_FALSE(card.isShown(QStringLiteral("count")));
    EXPECT_FALSE(card.isShown(QStringLiteral("note")));

    auto* message = card.findChild<QLabel*>(QStringLiteral("panelMessage"));
    EXPECT_TRUE(message->isHidden());
    card.showMessage(QStringLiteral("Not yet."), true);
    EXPECT_FALSE(message->isHidden());
    EXPECT_TRUE(message->property("error").toBool());
    card.showMessage({});
    EXPECT_TRUE(message->isHidden());

    // Enter accepts only while OK is enabled; Esc cancels.
    card.setAcceptEnabled(false);
    QTest::keyClick(card.editor(QStringLiteral("angle")), Qt::Key_Return);
    EXPECT_EQ(accepted.count(), 0);
    card.setAcceptEnabled(true);
    QTest::keyClick(card.editor(QStringLiteral("angle")), Qt::Key_Return);
    EXPECT_EQ(accepted.count(), 1);
    QTest::keyClick(card.editor(QStringLiteral("angle")), Qt::Key_Escape);
    EXPECT_EQ(cancelled.count(), 1);
}

TEST_F(Forms, TableFormsPlanesAndPatternsOpenTryAndCancel) {
    addPatternKinds();
    registerPatternCommands(registry);
    registerParamCommands(registry);
    ok("create_box", {{"width", 10.0}, {"depth", 10.0}, {"height", 10.0}, {"x", 100.0}});
    const std::string sketch = sketchWithRectangles({{10, 0, 20, 10}});
    const auto counters = document.idCounters();
    const std::size_t steps = stack.undoCount();
    for (const auto& [name, title] : {std::pair{"Sweep", "Sweep"},
                                      {"Loft", "Loft"},
                                      {"Combine", "Combine"},
                                      {"DeleteFaces", "Delete Faces"},
                                      {"RectangularPattern", "Rectangular Pattern"},
                                      {"SplitBody", "Split"}}) {
        ASSERT_TRUE(forms->openFeatureForm(QString::fromLatin1(name))) << name;
        EXPECT_EQ(form().title(), QString::fromLatin1(title));
    }
    EXPECT_FALSE(forms->openFeatureForm(QStringLiteral("Frozen"))); // made by agents only
    EXPECT_FALSE(forms->openPatternForm(QStringLiteral("spiral")));
    ASSERT_TRUE(forms->openMirrorForm());
    EXPECT_EQ(form().title(), QStringLiteral("Mirror"));

    // A split with no tool yet: the command's own request is a prompt, not an error.
    selection = {"Box1"};
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("SplitBody")));
    EXPECT_EQ(form().references(QStringLiteral("body")), std::vector<std::string>{"Box1"});
    EXPECT_EQ(form().message(), QStringLiteral("Pick what splits the body: a plane or a face."));
    EXPECT_FALSE(form().messageIsError());
    EXPECT_FALSE(form().acceptEnabled());

    // A revolve is tried as a new body while it is filled in; Esc takes it all back.
    selection = {sketch};
    ASSERT_TRUE(forms->openFeatureForm(QStringLiteral("Revolve")));
    EXPECT_EQ(form().activePick(), QStringLiteral("axis"));
    form().picked({"Y"});
    EXPECT_TRUE(stack.hasTrial());
    EXPECT_NEAR(volumeOf("Body1"), 100 * 15 * 2 * std::numbers::pi, 1e-6);
    QTest::keyClick(viewport.get(), Qt::Key_Escape);
    EXPECT_FALSE(forms->isOpen());
    EXPECT_EQ(body("Body1"), nullptr);
    EXPECT_EQ(document.idCounters(), counters);
    EXPECT_EQ(stack.undoCount(), steps);

    // A plane made, then its edit tried live and withdrawn; sections and features too.
    selection = {"XY"};
    ASSERT_TRUE(forms->openPlaneForm());
    lengthRow("distance")->setText(QStringLiteral("10"));
    ASSERT_TRUE(forms->accept());
    const auto height = [&] {
        return document.findAs<PlaneObject>("Plane1")->placement.Location().Z();
    };
    EXPECT_NEAR(height(), 10, 1e-9);
    ASSERT_TRUE(forms->openEditForm("Plane1"));
    EXPECT_EQ(form().title(), QStringLiteral("Edit Plane1"));
    lengthRow("distance")->setText(QStringLiteral("20"));
    EXPECT_NEAR(height(), 20, 1e-9);
    forms->cancel();
    EXPECT_NEAR(height(), 10, 1e-9);

    selection = {"Plane1"};
    ASSERT_TRUE(forms->openSectionForm());
    ASSERT_TRUE(forms->accept());
    ASSERT_TRUE(forms->openEditForm("Section1"));
    EXPECT_EQ(form().title(), QStringLiteral("Edit Section1"));
    ok("revolve", {{"sketch", sketch}, {"axis", "Y"}});
    ASSERT_TRUE(forms->openEditForm("Revolve1"));
    EXPECT_EQ(form().title(), QStringLiteral("Edit Revolve1"));
    ok("pattern_bodies",
       {{"bodies", "Box1"}, {"pattern", "rectangular"}, {"direction", "X"}, {"spacing", 20.0}});
    ASSERT_TRUE(forms->openEditForm("PatternSet1"));
    EXPECT_EQ(form().title(), QStringLiteral("Edit PatternSet1"));
}

TEST_F(Forms, SketchFormsPickInTheSketchTryOnItAndGiveTheViewBack) {
    registerSketchPatternCommands(registry);
    registerProjectionCommands(registry);
    ok("create_sketch", {{"plane", "XY"}});
    ok("add_line", {{"sketch", "Sketch1"}, {"x1", 0.0}, {"y1", 0.0}, {"x2", 5.0}, {"y2", 0.0}});
    const auto entities = [&] { return document.findAs<SketchObject>("Sketch1")->entities.size(); };

    // The session's part: a tool the view goes back to, and the picks asked of it.
    struct Resting : rendering::ViewportTool {
        bool mousePress(QPointF, Qt::KeyboardModifiers) override { return false; }
        void mouseMove(QPointF, Qt::KeyboardModifiers) override {}
        void leave() override {}
    } resting;
    std::vector<ui::SketchPick> asked;
    std::function<void(const std::string&)> pick;
    int stopped = 0;
    ui::SketchFormHost host;
    host.sketch = [] { return std::string("Sketch1"); };
    host.startPick = [&](ui::SketchPick what, std::function<void(const std::string&)> picked,
                         std::function<std::vector<std::string>()>) {
        asked.push_back(what);
        pick = std::move(picked);
    };
    host.stopPick = [&] { ++stopped; };
    host.restingTool = [&]() -> rendering::ViewportTool* { return &resting; };
    forms->setSketchHost(std::move(host));
    viewport->setTool(&resting);
    QSignalSpy tried(forms.get(), &FormController::trialChanged);
    const std::size_t steps = stack.undoCount();

    // The geometry row picks in the sketch; the copies are tried at once, off the record.
    ASSERT_TRUE(forms->openSketchPatternForm(0));
    ASSERT_EQ(asked, std::vector<ui::SketchPick>{ui::SketchPick::Entities});
    EXPECT_EQ(viewport->tool(), &resting);
    pick("Line1");
    EXPECT_EQ(form().references(QStringLiteral("entities")), std::vector<std::string>{"Line1"});
    EXPECT_EQ(entities(), 2u);
    EXPECT_GE(tried.size(), 1);
    EXPECT_EQ(stack.undoCount(), steps);
    forms->cancel();
    EXPECT_EQ(entities(), 1u);
    EXPECT_GE(stopped, 1);

    ASSERT_TRUE(forms->openSketchPatternForm(1));
    pick("Line1");
    ASSERT_TRUE(forms->accept());
    EXPECT_EQ(entities(), 2u);
    EXPECT_EQ(stack.undoCount(), steps + 1);
    EXPECT_TRUE(forms->openSketchPatternEditForm("Pattern1"));
    forms->cancel();

    // Project picks across objects in the view, then the view is the session's again.
    ASSERT_TRUE(forms->openProjectForm());
    EXPECT_EQ(viewport->tool(), picker.get());
    forms->cancel();
    EXPECT_EQ(viewport->tool(), &resting);
}

} // namespace cad::testing
