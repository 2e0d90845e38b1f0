// Bodies in the view look as the document says: the painted appearance as the base
// colour, faces painted on their own over it, and the neutral look once it's taken off.
#include "PresenterViewFixture.h"

#include <AIS_ColoredShape.hxx>

namespace cad::testing {

TEST_F(PresenterView, BodiesAndFacesAreDrawnInTheirAppearance) {
    presenter->setOriginVisible(false);
    ok("create_box", {{"width", 20}, {"depth", 20}, {"height", 10}});
    settle(V3d_Zpos);
    const auto body = Handle(AIS_ColoredShape)::DownCast(presenter->presentationOf("Box1"));
    ASSERT_FALSE(body.IsNull());
    Quantity_Color neutral;
    body->Color(neutral);
    const QPointF top = project(10, 10, 10);
    const QColor before = viewport->grabFramebuffer().pixelColor(top.toPoint());

    auto* box = document.findAs<GeometryObject>("Box1");
    box->appearance = "#d01010";
    box->faceAppearances["Box1.top"] = "#1020d0";
    document.notifyChanged(*box);
    settle();
    Quantity_Color painted;
    body->Color(painted);
    EXPECT_LT(painted.Distance(Quantity_Color(0xd0 / 255.0, 0x10 / 255.0, 0x10 / 255.0,
                                              Quantity_TOC_sRGB)),
              1e-3);
    std::optional<TopoDS_Shape> topFace = box->shape.findByName("Box1.top");
    ASSERT_TRUE(topFace);
    EXPECT_TRUE(body->CustomAspectsMap().IsBound(*topFace));
    // The faces keep their dark outline whatever colour they are.
    Quantity_Color outline = body->Attributes()->FaceBoundaryAspect()->Aspect()->Color();
    EXPECT_LT(outline.Distance(Quantity_Color(0.12, 0.10, 0.09, Quantity_TOC_sRGB)), 1e-3);
    // Seen from above, the painted top face shows blue where it was grey.
    const QColor after = viewport->grabFramebuffer().pixelColor(top.toPoint());
    EXPECT_GT(after.blue(), after.red() + 40) << after.name().toStdString();
    EXPECT_NE(after, before);

    box->appearance.clear();
    box->faceAppearances.clear();
    document.notifyChanged(*box);
    settle();
    Quantity_Color back;
    body->Color(back);
    EXPECT_LT(back.Distance(neutral), 1e-6);
    EXPECT_TRUE(body->CustomAspectsMap().IsEmpty());
}

} // namespace cad::testing
