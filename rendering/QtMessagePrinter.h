// Routes OpenCASCADE's messenger into Qt logging ("korvel.viewport") so that no
// library message ever reaches the console or a dialog unasked.
#pragma once

#include <Message_Printer.hxx>

namespace cad::rendering {

class QtMessagePrinter : public Message_Printer {
    DEFINE_STANDARD_RTTI_INLINE(QtMessagePrinter, Message_Printer)
public:
    // Adds one printer to the default messenger; later calls do nothing.
    static void installOnce();

protected:
    void send(const TCollection_AsciiString& text, const Message_Gravity gravity) const override;
};

} // namespace cad::rendering
