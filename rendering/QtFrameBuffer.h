// Qt's framebuffer object as OpenCASCADE's default framebuffer: wrapped anew each
// frame (Qt recreates it on resize) and always treated as a plain, non-sRGB target.
#pragma once

#include <OpenGl_FrameBuffer.hxx>

namespace cad::rendering {

class QtFrameBuffer : public OpenGl_FrameBuffer {
    DEFINE_STANDARD_RTTI_INLINE(QtFrameBuffer, OpenGl_FrameBuffer)
public:
    void BindBuffer(const Handle(OpenGl_Context) & context) override;
    void BindDrawBuffer(const Handle(OpenGl_Context) & context) override;
    void BindReadBuffer(const Handle(OpenGl_Context) & context) override;
};

} // namespace cad::rendering
