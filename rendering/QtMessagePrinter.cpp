// OpenCASCADE messages as log lines: warnings and worse as warnings, the rest as debug.
#include "rendering/QtMessagePrinter.h"

#include "rendering/ViewportLog.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>

namespace cad::rendering {

void QtMessagePrinter::installOnce() {
    static const bool installed = [] {
        // The console printer would repeat every message outside the log.
        const Handle(Message_Messenger)& messenger = Message::DefaultMessenger();
        messenger->RemovePrinters(STANDARD_TYPE(Message_PrinterOStream));
        messenger->AddPrinter(new QtMessagePrinter());
        return true;
    }();
    (void)installed;
}

void QtMessagePrinter::send(const TCollection_AsciiString& text,
                            const Message_Gravity gravity) const {
    if (gravity >= Message_Warning)
        qCWarning(viewportLog, "OCCT: %s", text.ToCString());
    else
        qCDebug(viewportLog, "OCCT: %s", text.ToCString());
}

} // namespace cad::rendering
