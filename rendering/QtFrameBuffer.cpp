// Binding Qt's framebuffer: Qt's colour buffer holds display values already, so
// OpenCASCADE must not convert to sRGB when it writes there.
#include "rendering/QtFrameBuffer.h"

#include <OpenGl_Context.hxx>

namespace cad::rendering {

void QtFrameBuffer::BindBuffer(const Handle(OpenGl_Context) & context) {
    OpenGl_FrameBuffer::BindBuffer(context);
    context->SetFrameBufferSRGB(true, false);
}

void QtFrameBuffer::BindDrawBuffer(const Handle(OpenGl_Context) & context) {
    OpenGl_FrameBuffer::BindDrawBuffer(context);
    context->SetFrameBufferSRGB(true, false);
}

void QtFrameBuffer::BindReadBuffer(const Handle(OpenGl_Context) & context) {
    OpenGl_FrameBuffer::BindReadBuffer(context);
}

} // namespace cad::rendering
