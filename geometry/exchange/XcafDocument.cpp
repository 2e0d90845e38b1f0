// The short-lived XCAF document of the STEP reader and writer.
#include "geometry/exchange/XcafDocument.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>
#include <TCollection_ExtendedString.hxx>

namespace cad::exchange {

namespace {

// The kernel's STEP translators report their statistics on the console for every
// file; only warnings and failures are worth a terminal line.
void quietConsoleOnce() {
    static const bool quiet = [] {
        for (const Handle(Message_Printer)& printer : Message::DefaultMessenger()->Printers())
            if (printer->IsKind(STANDARD_TYPE(Message_PrinterOStream)))
                printer->SetTraceLevel(Message_Warning);
        return true;
    }();
    (void)quiet;
}

} // namespace

XcafDocument::XcafDocument() : application_(XCAFApp_Application::GetApplication()) {
    quietConsoleOnce();
    application_->NewDocument(TCollection_ExtendedString("MDTV-XCAF"), document_);
}

XcafDocument::~XcafDocument() {
    try {
        if (!document_.IsNull() && document_->IsOpened()) application_->Close(document_);
    } catch (...) {
        // Closing only releases memory; nothing is left to report.
    }
}

} // namespace cad::exchange
