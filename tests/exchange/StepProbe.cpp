// A STEP reader that shares no code with the application: it reads a file with the
// kernel's plain XCAF reader and prints how many free shapes it holds, then one
// line per shape: name, volume and centre of mass.
#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>
#include <IFSelect_ReturnStatus.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TCollection_AsciiString.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s file.step\n", argv[0]);
        return 2;
    }
    Handle(XCAFApp_Application) application = XCAFApp_Application::GetApplication();
    Handle(TDocStd_Document) document;
    application->NewDocument("MDTV-XCAF", document);
    STEPCAFControl_Reader reader;
    reader.SetNameMode(true);
    if (reader.ReadFile(argv[1]) != IFSelect_RetDone || !reader.Transfer(document)) return 1;
    Handle(XCAFDoc_ShapeTool) shapes = XCAFDoc_DocumentTool::ShapeTool(document->Main());
    TDF_LabelSequence roots;
    shapes->GetFreeShapes(roots);
    std::printf("count %d\n", roots.Length());
    for (const TDF_Label& label : roots) {
        Handle(TDataStd_Name) name;
        TCollection_AsciiString text;
        if (label.FindAttribute(TDataStd_Name::GetID(), name)) text = name->Get();
        GProp_GProps props;
        BRepGProp::VolumeProperties(XCAFDoc_ShapeTool::GetShape(label), props);
        const gp_Pnt centre = props.CentreOfMass();
        std::printf("%s\t%.12g\t%.9g %.9g %.9g\n", text.ToCString(), props.Mass(), centre.X(),
                    centre.Y(), centre.Z());
    }
    application->Close(document);
    return 0;
}
