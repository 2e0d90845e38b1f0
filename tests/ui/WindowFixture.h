// A shown main window with its boxes answered by the test, its 3D view ready, and
// settings emptied first so that tests don't see each other's recent files.
#pragma once

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "rendering/Viewport.h"
#include "tests/ui/FakePrompt.h"
#include "ui/MainWindow.h"

#include <BRepBndLib.hxx>
#include <Bnd_Box.hxx>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace cad::ui::testing {

// Runs the event loop until the condition holds or the time is up.
inline bool waitUntil(const std::function<bool()>& condition, int milliseconds = 10000) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QTest::qWait(5);
    }
    return true;
}

// The body's bounding box, void when there is no such body.
inline Bnd_Box bodyBox(const Document& document, const std::string& id) {
    Bnd_Box box;
    const auto* body = dynamic_cast<const GeometryObject*>(document.find(id));
    if (body && !body->shape.shape().IsNull()) BRepBndLib::Add(body->shape.shape(), box);
    return box;
}

class WindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        QSettings().clear();
        window = std::make_unique<MainWindow>();
        window->setPrompt(std::make_unique<FakePrompt>(prompts));
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ASSERT_TRUE(waitUntil([this] { return window->viewport().isReady(); }));
    }
    void TearDown() override { window.reset(); }

    CommandResult addBox(double x = 0) {
        CommandRecord record("create_box");
        record.set("width", 10.0).set("depth", 10.0).set("height", 10.0).set("x", x);
        return window->runCommand(record);
    }

    PromptLog prompts;
    std::unique_ptr<MainWindow> window;
};

} // namespace cad::ui::testing
