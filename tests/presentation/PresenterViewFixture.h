// The presenter and the picker on a real 3D view under a virtual X screen, with
// the helpers the view tests share: projecting model points, settling the camera,
// and what plain selection finds under a point.
#pragma once

#include "PresentationModel.h"

#include "rendering/Viewport.h"
#include "ui/presentation/DocumentPresenter.h"
#include "ui/presentation/ReferencePicker.h"

#include <AIS_InteractiveContext.hxx>
#include <StdSelect_BRepOwner.hxx>
#include <StdSelect_ViewerSelector3d.hxx>
#include <TColStd_ListOfInteger.hxx>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cad::testing {

using rendering::Viewport;
using ui::DocumentPresenter;
using ui::ReferencePicker;

class PresenterView : public PresentationModel {
protected:
    void SetUp() override {
        viewport = std::make_unique<Viewport>();
        viewport->resize(800, 600);
        viewport->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(viewport.get()));
        QElapsedTimer timer;
        timer.start();
        while (!viewport->isReady() && timer.elapsed() < 20000) QTest::qWait(20);
        ASSERT_TRUE(viewport->isReady());
        presenter = std::make_unique<DocumentPresenter>(*viewport);
        presenter->setDocument(&document);
        picker = std::make_unique<ReferencePicker>(*viewport, *presenter);
        picker->setDocument(&document);
    }
    void TearDown() override {
        picker.reset();
        presenter.reset();
        viewport.reset();
    }

    const Handle(AIS_InteractiveContext) & context() const { return viewport->context(); }
    // Where a model point shows in the widget.
    QPointF project(double x, double y, double z) const {
        int px = 0, py = 0;
        viewport->view()->Convert(x, y, z, px, py);
        const double ratio = viewport->devicePixelRatioF();
        return QPointF(px / ratio, py / ratio);
    }
    // Fits the view and draws it, so the camera's depth range covers the scene too.
    void settle(std::optional<V3d_TypeOfOrientation> orientation = std::nullopt) {
        if (orientation) viewport->setStandardView(*orientation, false);
        viewport->fitAll();
        viewport->repaint();
        QCoreApplication::processEvents();
    }

    // What plain selection finds under a widget point: (object, shape type) nearest first.
    std::vector<std::pair<std::string, TopAbs_ShapeEnum>> plainPick(QPointF at) {
        std::vector<std::pair<std::string, TopAbs_ShapeEnum>> out;
        const Handle(StdSelect_ViewerSelector3d)& selector = context()->MainSelector();
        selector->Pick(static_cast<int>(at.x()), static_cast<int>(at.y()), viewport->view());
        for (int i = 1; i <= selector->NbPicked(); ++i) {
            auto owner = Handle(StdSelect_BRepOwner)::DownCast(selector->Picked(i));
            if (owner && owner->HasShape())
                out.emplace_back(presenter->objectOf(selector->Picked(i)),
                                 owner->Shape().ShapeType());
        }
        return out;
    }
    std::vector<int> activeModes(const std::string& id) {
        TColStd_ListOfInteger modes;
        context()->ActivatedModes(presenter->presentationOf(id), modes);
        return std::vector<int>(modes.begin(), modes.end());
    }

    std::unique_ptr<Viewport> viewport;
    std::unique_ptr<DocumentPresenter> presenter;
    std::unique_ptr<ReferencePicker> picker;
};

} // namespace cad::testing
