// A camera transition that starts and ends gently (smoothstep in time) instead of
// OpenCASCADE's constant speed, so standard views and nudges settle softly.
#pragma once

#include <AIS_AnimationCamera.hxx>

namespace cad::rendering {

class CameraAnimation : public AIS_AnimationCamera {
    DEFINE_STANDARD_RTTI_INLINE(CameraAnimation, AIS_AnimationCamera)
public:
    explicit CameraAnimation(const Handle(V3d_View) & view);

    // Progress 0..1 in time to progress 0..1 along the way: 3t² − 2t³.
    static double ease(double t);

protected:
    void update(const AIS_AnimationProgress& progress) override;
};

} // namespace cad::rendering
