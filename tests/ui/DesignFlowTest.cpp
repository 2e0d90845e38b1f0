// A part designed by hand, start to finish, with mouse clicks and keys at window
// coordinates (never calls into the sketch session or the forms), and after every
// step the document read back by an agent on the window's socket: a sketch on XY, a
// rectangle by two clicks with its width typed, a dimension placed by clicking, the
// extrude form, a rename in the browser, the history rolled back and forward by
// dragging its marker, and an action run from the palette; then an edge of a box
// rounded by hand, and the fillet's edit opened from the history and cancelled.
#include "tests/ui/AgentClient.h"

#include "mcp/SocketPath.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormController.h"
#include "ui/panels/HistoryPanel.h"
#include "ui/panels/ObjectBrowser.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/sketch/SketchSession.h"

#include <V3d_View.hxx>

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QToolButton>

#include <cstdlib>
#include <numbers>

namespace cad::ui::testing {
namespace {

class DesignFlowTest : public AgentTest {
protected:
    void SetUp() override {
        AgentTest::SetUp();
        window->resize(1400, 900);
        ASSERT_TRUE(waitUntil([this] { return window->viewport().width() > 800; }));
        // Keys go where a person's would: to the active window's focused widget.
        window->activateWindow();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        agent = std::make_unique<AgentClient>(mcp::mcpSocketPath());
        ASSERT_TRUE(agent->connected());
        agent->request("initialize", {{"protocolVersion", "2025-06-18"}});
    }
    void TearDown() override {
        agent.reset();
        AgentTest::TearDown();
    }

    // What the agent reads: get_sketch and get_document as JSON.
    json read(const std::string& tool, json arguments = json::object()) {
        const json result = agent->call(tool, arguments);
        return json::parse(AgentClient::text(result), nullptr, false);
    }
    json sketch() { return read("get_sketch", {{"sketch", "Sketch1"}}); }
    json settings() {
        const json document = read("get_document");
        return document.contains("document") ? document["document"]["settings"] : json::object();
    }
    json object(const std::string& id) {
        const json document = read("get_document");
        if (!document.contains("document")) return json();
        for (const json& o : document["document"]["objects"])
            if (o.value("name", std::string()) == id) return o;
        return json();
    }
    static int count(const json& list, const std::string& key, const std::string& value) {
        int n = 0;
        for (const json& item : list)
            if (item.value(key, std::string()) == value) ++n;
        return n;
    }

    QWidget& view() { return window->viewport(); }
    QPoint pixelOf(double x, double y, double z) {
        Standard_Integer px = 0, py = 0;
        window->viewport().view()->Convert(x, y, z, px, py);
        const double ratio = window->viewport().devicePixelRatioF();
        return QPoint(static_cast<int>(px / ratio), static_cast<int>(py / ratio));
    }
    // A sketch point on the XY plane, where the view shows it.
    QPoint at(double x, double y) { return pixelOf(x, y, 0); }
    void moveTo(QPoint p) {
        QTest::mouseMove(&view(), p);
        QTest::qWait(20);
    }
    void clickAt(QPoint p) {
        moveTo(p);
        QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, p);
        QTest::qWait(30);
    }
    void key(int k, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(k), modifiers);
        QTest::qWait(20);
    }
    // Each key goes to whatever has the focus when it is pressed, as typing does.
    void type(const QString& text) {
        for (const QChar c : text) {
            ASSERT_NE(QApplication::focusWidget(), nullptr);
            QTest::keyClicks(QApplication::focusWidget(), QString(c));
        }
        QTest::qWait(20);
    }
    void clickButton(QAbstractButton* button) {
        ASSERT_NE(button, nullptr);
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, button->rect().center());
        QTest::qWait(30);
    }
    QToolButton* toolButton(const QString& actionName) {
        for (auto* button : window->findChildren<QToolButton*>())
            if (button->isVisible() && button->defaultAction() &&
                button->defaultAction()->objectName() == actionName)
                return button;
        return nullptr;
    }
    // Where a picture of the window goes when KORVEL_TEST_SHOTS names a folder.
    void shot(const char* name) {
        const QString folder = qEnvironmentVariable("KORVEL_TEST_SHOTS");
        if (!folder.isEmpty()) window->grab().save(folder + "/" + name + ".png");
    }
    // Drops a history row (or the marker) before another row, or after the last.
    void dropInHistory(QListWidgetItem* dragged, QListWidgetItem* before) {
        auto* history = window->findChild<HistoryPanel*>();
        QListWidget* list = history->list();
        std::unique_ptr<QMimeData> mime(
            list->model()->mimeData({list->model()->index(list->row(dragged), 0)}));
        const QPoint point = before ? list->visualItemRect(before).center() - QPoint(0, 2)
                                    : list->visualItemRect(list->item(list->count() - 1))
                                              .bottomLeft() +
                                          QPoint(4, 20);
        QDragEnterEvent enter(point, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &enter);
        QDropEvent drop(point, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &drop);
        QTest::qWait(50);
    }

    std::unique_ptr<AgentClient> agent;
};

TEST_F(DesignFlowTest, APartIsDrawnDimensionedExtrudedRenamedAndRolledBackByHand) {
    // The Sketch button asks for a plane; a click on the XY plane starts the sketch.
    clickButton(toolButton(QStringLiteral("sketchAction")));
    ASSERT_TRUE(window->pickingPlane());
    moveTo(at(20, 15));
    clickAt(at(20, 15));
    ASSERT_TRUE(waitUntil([this] { return window->editingSketch(); }, 5000));
    EXPECT_EQ(sketch().value("support", std::string()), "XY");
    QTest::qWait(100); // the view turns to face the sketch

    // R, two clicks, the width typed between them: four lines held by constraints, and
    // the typed width left as a dimension.
    key(Qt::Key_R);
    clickAt(at(0, 0));
    moveTo(at(30, 20));
    type(QStringLiteral("40 + 2mm"));
    shot("sketch-typing");
    clickAt(at(30, 20));
    json drawn = sketch();
    ASSERT_EQ(drawn["entities"].size(), 4u) << drawn.dump();
    EXPECT_EQ(count(drawn["entities"], "kind", "line"), 4);
    EXPECT_EQ(count(drawn["constraints"], "type", "coincident"), 5); // four corners, the origin
    EXPECT_EQ(count(drawn["constraints"], "type", "horizontal"), 2);
    EXPECT_EQ(count(drawn["constraints"], "type", "vertical"), 2);
    ASSERT_EQ(count(drawn["constraints"], "type", "length"), 1);
    EXPECT_NEAR(drawn["entities"][0]["end"][0].get<double>(), 42.0, 1e-6);
    EXPECT_NEAR(drawn["entities"][1]["end"][1].get<double>(), 20.0, 1e-6);
    // The whole rectangle is one step to undo.
    EXPECT_EQ(window->commandStack().undoRecord()->name, "add_constraint");

    // D, the right side, then a click beside it places its length.
    key(Qt::Key_D);
    moveTo(at(42, 10));
    clickAt(at(42, 10));
    moveTo(at(52, 10));
    shot("sketch-dimension");
    clickAt(at(52, 10));
    drawn = sketch();
    ASSERT_EQ(count(drawn["constraints"], "type", "length"), 2) << drawn.dump();
    EXPECT_TRUE(drawn["constraints"].back().contains("label"));
    EXPECT_EQ(drawn["analysis"].value("degrees_of_freedom", -1), 0);

    // An agent draws into the open sketch: the line shows and the session goes on;
    // the person undoes it from the keyboard.
    const json added = agent->call("add_line", {{"sketch", "Sketch1"}, {"x1", -30}, {"y1", -30},
                                                {"x2", -10}, {"y2", -30}});
    EXPECT_FALSE(added.value("isError", true)) << added.dump();
    EXPECT_TRUE(window->editingSketch());
    EXPECT_EQ(sketch()["entities"].size(), 5u);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(sketch()["entities"].size(), 4u);
    EXPECT_TRUE(window->editingSketch());

    // Finish, then E: the extrude form picks the region clicked in the view and
    // extrudes it by the distance typed.
    clickButton(window->findChild<QToolButton*>(QStringLiteral("finishSketch")));
    ASSERT_FALSE(window->editingSketch());
    key(Qt::Key_E);
    ASSERT_TRUE(window->forms().isOpen());
    clickAt(at(21, 10));
    auto* distance = qobject_cast<QLineEdit*>(window->forms().form()->editor("distance"));
    ASSERT_NE(distance, nullptr);
    QTest::mouseDClick(distance, Qt::LeftButton);
    distance->selectAll();
    type(QStringLiteral("10"));
    shot("extrude-form");
    QTest::keyClick(distance, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return !window->forms().isOpen(); }, 5000));
    const json body = read("get_body", {{"body", "Body1"}});
    ASSERT_TRUE(body.contains("measured")) << body.dump();
    EXPECT_NEAR(body["measured"].value("volume_mm3", 0.0), 42 * 20 * 10, 1e-3);

    // The browser renames the body.
    auto* browser = window->findChild<ObjectBrowser*>();
    ASSERT_NE(browser, nullptr);
    QTest::qWait(50);
    QTreeWidgetItem* row = browser->itemFor("Body1");
    ASSERT_NE(row, nullptr);
    std::unique_ptr<QMenu> menu(browser->contextMenuFor(row));
    QAction* rename = menu->findChild<QAction*>(QStringLiteral("renameObject"));
    ASSERT_NE(rename, nullptr);
    rename->trigger();
    ASSERT_TRUE(waitUntil([] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); }));
    qobject_cast<QLineEdit*>(QApplication::focusWidget())->selectAll();
    type(QStringLiteral("Plate"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::qWait(50);
    const json plate = object("Body1");
    ASSERT_TRUE(plate.is_object());
    EXPECT_EQ(plate.value("label", std::string()), "Plate") << plate.dump();
    shot("browser-history");

    // The history's marker dragged to the top rolls everything back, and to the end
    // builds everything again.
    auto* history = window->findChild<HistoryPanel*>();
    ASSERT_NE(history, nullptr);
    dropInHistory(history->marker(), history->itemFor("Sketch1"));
    EXPECT_EQ(settings().value("rollback", std::string()), "Sketch1");
    dropInHistory(history->marker(), nullptr);
    EXPECT_FALSE(settings().contains("rollback"));

    // Ctrl+K, a few letters of an action's name and Enter run it.
    key(Qt::Key_K, Qt::ControlModifier);
    type(QStringLiteral("box"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QTest::qWait(50);
    EXPECT_FALSE(object("Box1").is_null());

    // A body picked in the browser is selected whole in the view, and Delete takes it.
    QTest::qWait(50);
    QTreeWidgetItem* boxRow = browser->itemFor("Box1");
    ASSERT_NE(boxRow, nullptr);
    const QRect rowRect = browser->visualItemRect(boxRow);
    QTest::mouseClick(browser->viewport(), Qt::LeftButton, Qt::NoModifier, rowRect.center());
    QTest::qWait(30);
    EXPECT_EQ(window->presenter().selectedObjects(), std::vector<std::string>{"Box1"});
    window->activateWindow();
    key(Qt::Key_Delete);
    EXPECT_TRUE(object("Box1").is_null());

    // Every step went through the command log as a call, and undoes.
    const std::size_t steps = window->commandStack().undoCount();
    EXPECT_GE(steps, 6u);
    for (std::size_t i = 0; i < steps; ++i) key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(window->document().objects().empty());
}

TEST_F(DesignFlowTest, AnEdgeIsRoundedByHandAndAnEditCancelledFromTheHistory) {
    CommandRecord box("create_box");
    box.set("width", 20.0).set("depth", 20.0).set("height", 10.0);
    ASSERT_TRUE(window->runCommand(box).ok);
    window->viewport().setStandardView(V3d_XposYnegZpos, false);
    window->viewport().fitAll();
    QTest::qWait(100);
    const auto volume = [this] {
        const json body = read("get_body", {{"body", "Box1"}});
        return body.contains("measured") ? body["measured"].value("volume_mm3", 0.0) : 0.0;
    };
    // A radius r along the 10 mm edge takes r * r * (1 - pi / 4) off each millimetre.
    const auto rounded = [](double r) { return 4000 - r * r * (4 - std::numbers::pi) / 4 * 10; };

    // Edges only, then a click on the box's front right edge selects it.
    clickButton(toolButton(QStringLiteral("edgesFilter")));
    clickButton(toolButton(QStringLiteral("facesFilter")));
    ASSERT_TRUE(window->presenter().edgesSelectable());
    ASSERT_FALSE(window->presenter().facesSelectable());
    clickAt(pixelOf(20, 0, 5));
    ASSERT_TRUE(waitUntil([this] { return window->viewport().context()->NbSelected() == 1; }));

    // Fillet opens on that edge; the radius typed, OK rounds it.
    clickButton(toolButton(QStringLiteral("edgeFillet")));
    ASSERT_TRUE(window->forms().isOpen());
    FeatureForm* form = window->forms().form();
    EXPECT_EQ(form->objectName(), QStringLiteral("filletPanel"));
    ASSERT_EQ(form->references(QStringLiteral("edges")).size(), 1u);
    auto* radius = qobject_cast<QLineEdit*>(form->editor(QStringLiteral("radius")));
    ASSERT_NE(radius, nullptr);
    // With the edge already picked, the keyboard is in the radius, ready to replace it.
    ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == radius; }));
    type(QStringLiteral("2"));
    shot("fillet-panel");
    clickButton(form->primaryButton());
    ASSERT_TRUE(waitUntil([this] { return !window->forms().isOpen(); }, 5000));
    EXPECT_NE(window->document().find("Fillet1"), nullptr);
    EXPECT_EQ(window->commandStack().undoRecord()->name, "fillet");
    EXPECT_NEAR(volume(), rounded(2), 1e-3);
    const std::size_t steps = window->commandStack().undoCount();

    // A double-click on its history row opens its edit; a bigger radius shows at once
    // and Cancel takes it back.
    auto* history = window->findChild<HistoryPanel*>();
    ASSERT_NE(history, nullptr);
    QListWidgetItem* row = history->itemFor("Fillet1");
    ASSERT_NE(row, nullptr);
    // A double-click comes after a click, as from a real mouse.
    const QPoint at = history->list()->visualItemRect(row).center();
    QTest::mouseClick(history->list()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(history->list()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    ASSERT_TRUE(waitUntil([this] { return window->forms().isOpen(); }, 5000));
    form = window->forms().form();
    EXPECT_EQ(form->title(), QStringLiteral("Edit Fillet1"));
    radius = qobject_cast<QLineEdit*>(form->editor(QStringLiteral("radius")));
    ASSERT_NE(radius, nullptr);
    EXPECT_EQ(radius->text(), QStringLiteral("2"));
    QTest::mouseDClick(radius, Qt::LeftButton);
    radius->selectAll();
    type(QStringLiteral("3"));
    EXPECT_NEAR(volume(), rounded(3), 1e-3);
    shot("fillet-edit");
    clickButton(form->cancelButton());
    EXPECT_FALSE(window->forms().isOpen());
    EXPECT_NEAR(volume(), rounded(2), 1e-3);
    EXPECT_EQ(window->commandStack().undoCount(), steps);
    EXPECT_FALSE(window->commandStack().canRedo());
}

} // namespace
} // namespace cad::ui::testing
