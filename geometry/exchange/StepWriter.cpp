// STEP export through an XCAF document: one named top-level shape per body, then
// the kernel's writer as is, into a temporary file that replaces the target.
#include "geometry/exchange/StepWriter.h"

#include "core/ReplaceFile.h"
#include "geometry/exchange/XcafDocument.h"

#include <IFSelect_ReturnStatus.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <STEPControl_StepModelType.hxx>
#include <Standard_Failure.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <exception>

namespace cad::exchange {

namespace {

bool transfer(const std::vector<ExportBody>& bodies, const Handle(TDocStd_Document)& document,
              STEPCAFControl_Writer& writer) {
    Handle(XCAFDoc_ShapeTool) shapes = XCAFDoc_DocumentTool::ShapeTool(document->Main());
    for (const ExportBody& body : bodies) {
        TDF_Label label = shapes->AddShape(body.shape, false);
        if (label.IsNull()) return false;
        TDataStd_Name::Set(label, TCollection_ExtendedString(body.name.c_str(), true));
    }
    writer.SetColorMode(false);
    writer.SetNameMode(true);
    writer.SetLayerMode(false);
    return writer.Transfer(document, STEPControl_AsIs);
}

} // namespace

Result<void> writeStep(const std::vector<ExportBody>& bodies, const std::string& path) {
    if (bodies.empty()) return fail("Nothing to export.");
    for (const ExportBody& body : bodies)
        if (body.shape.IsNull()) return fail("The shapes couldn't be written as STEP.");
    try {
        XcafDocument document;
        STEPCAFControl_Writer writer;
        if (!transfer(bodies, document.get(), writer))
            return fail("The shapes couldn't be written as STEP.");
        return replaceFile(path, [&](const std::string& temporary) {
            return writer.Write(temporary.c_str()) == IFSelect_RetDone;
        });
    } catch (const Standard_Failure&) {
        return fail("The shapes couldn't be written as STEP.");
    } catch (const std::exception&) {
        return fail("The shapes couldn't be written as STEP.");
    }
}

} // namespace cad::exchange
