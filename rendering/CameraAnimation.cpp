// Eased camera transitions.
#include "rendering/CameraAnimation.h"

#include <algorithm>

namespace cad::rendering {

CameraAnimation::CameraAnimation(const Handle(V3d_View) & view)
    : AIS_AnimationCamera("viewport camera", view) {}

double CameraAnimation::ease(double t) {
    t = std::clamp(t, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

void CameraAnimation::update(const AIS_AnimationProgress& progress) {
    AIS_AnimationProgress eased = progress;
    eased.LocalNormalized = ease(progress.LocalNormalized);
    AIS_AnimationCamera::update(eased);
}

} // namespace cad::rendering
