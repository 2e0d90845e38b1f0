// A kernel XCAF document ("MDTV-XCAF") that lives for one read or write and is
// closed however that ends.
#pragma once

#include <TDocStd_Document.hxx>
#include <XCAFApp_Application.hxx>

namespace cad::exchange {

class XcafDocument {
public:
    XcafDocument();
    ~XcafDocument();
    XcafDocument(const XcafDocument&) = delete;
    XcafDocument& operator=(const XcafDocument&) = delete;

    // Non-const: the kernel's reader takes the handle by reference.
    Handle(TDocStd_Document)& get() { return document_; }

private:
    Handle(XCAFApp_Application) application_;
    Handle(TDocStd_Document) document_;
};

} // namespace cad::exchange
