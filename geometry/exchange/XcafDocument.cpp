// The short-lived XCAF document of the STEP reader and writer.
#include "geometry/exchange/XcafDocument.h"

#include "geometry/exchange/KernelLeaks.h"

#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <TCollection_ExtendedString.hxx>

namespace cad::exchange {

namespace {

// Sets the kernel up for STEP once per process: its translators build option and
// driver tables on first use that live, unfreed, to the end. And they report
// their statistics on the console for every file: only warnings and failures are
// worth a terminal line.
Handle(XCAFApp_Application) preparedApplication() {
    static const Handle(XCAFApp_Application) application = [] {
        const KernelLeaksIgnored tablesLiveToTheEnd;
        STEPCAFControl_Controller::Init();
        for (const Handle(Message_Printer)& printer : Message::DefaultMessenger()->Printers())
            if (printer->IsKind(STANDARD_TYPE(Message_PrinterOStream)))
                printer->SetTraceLevel(Message_Warning);
        return XCAFApp_Application::GetApplication();
    }();
    return application;
}

} // namespace

XcafDocument::XcafDocument() : application_(preparedApplication()) {
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
