// The navigation cube in the view's top-right corner: the application's colours,
// and clicks reported to the view (which animates through the user's front) instead
// of the cube animating the camera itself.
#pragma once

#include <AIS_ViewCube.hxx>
#include <V3d_TypeOfOrientation.hxx>

#include <functional>

namespace cad::rendering {

class NavigationCube : public AIS_ViewCube {
    DEFINE_STANDARD_RTTI_INLINE(NavigationCube, AIS_ViewCube)
public:
    using ClickHandler = std::function<void(V3d_TypeOfOrientation)>;

    NavigationCube();

    void setClickHandler(ClickHandler handler);
    // Keeps the cube in the top-right square of this many device pixels.
    void placeInCorner(int cornerSize);

    void HandleClick(const Handle(AIS_ViewCubeOwner) & owner) override;

private:
    ClickHandler clickHandler_;
};

} // namespace cad::rendering
