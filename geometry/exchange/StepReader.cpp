// STEP import through the kernel's XCAF reader: names on, colours on, layers off;
// then a walk of the free shapes that composes instance placements and picks up
// the styles of solids and faces.
#include "geometry/exchange/StepReader.h"

#include "geometry/exchange/XcafDocument.h"

#include <BRep_Builder.hxx>
#include <IFSelect_ReturnStatus.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <Standard_Failure.hxx>
#include <TCollection_AsciiString.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDF_Label.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XCAFPrs.hxx>
#include <XCAFPrs_IndexedDataMapOfShapeStyle.hxx>
#include <XCAFPrs_Style.hxx>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>

namespace cad::exchange {

namespace {

std::string colourText(const Quantity_Color& colour) {
    auto byte = [](double channel) {
        return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0));
    };
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", byte(colour.Red()), byte(colour.Green()),
                  byte(colour.Blue()));
    return text;
}

std::string labelName(const TDF_Label& label) {
    Handle(TDataStd_Name) name;
    if (label.IsNull() || !label.FindAttribute(TDataStd_Name::GetID(), name)) return {};
    return TCollection_AsciiString(name->Get()).ToCString();
}

// Walks the free shapes, turning each solid (or shell) into a part.
class PartCollector {
public:
    PartCollector(const XCAFPrs_IndexedDataMapOfShapeStyle& styles, std::string fallbackName)
        : styles_(styles), fallbackName_(std::move(fallbackName)) {}

    void walk(const TDF_Label& label, const TopLoc_Location& location, const std::string& name,
              const std::string& inheritedColour) {
        const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(label);
        if (shape.IsNull()) return;
        const TopoDS_Shape placed = shape.Moved(location);
        const std::string colour = colourOf(placed, inheritedColour);
        if (XCAFDoc_ShapeTool::IsAssembly(label)) {
            TDF_LabelSequence components;
            XCAFDoc_ShapeTool::GetComponents(label, components);
            for (const TDF_Label& component : components) {
                TDF_Label referred;
                if (!XCAFDoc_ShapeTool::GetReferredShape(component, referred)) continue;
                std::string childName = labelName(referred);
                if (childName.empty()) childName = labelName(component);
                if (childName.empty()) childName = name;
                walk(referred, location.Multiplied(XCAFDoc_ShapeTool::GetLocation(component)),
                     childName, colour);
            }
            return;
        }
        addPieces(placed, name, colour);
    }

    std::vector<ImportedPart> take() { return std::move(parts_); }

private:
    // The surface colour the styles give this shape, else the one it inherits.
    std::string colourOf(const TopoDS_Shape& shape, const std::string& inherited) const {
        const XCAFPrs_Style* style = styles_.Seek(shape);
        if (style && style->IsSetColorSurf()) return colourText(style->GetColorSurf());
        return inherited;
    }

    void addPieces(const TopoDS_Shape& shape, const std::string& name, const std::string& colour) {
        bool any = false;
        for (TopExp_Explorer solids(shape, TopAbs_SOLID); solids.More(); solids.Next()) {
            add(solids.Current(), name, colour);
            any = true;
        }
        if (any) return;
        for (TopExp_Explorer shells(shape, TopAbs_SHELL); shells.More(); shells.Next()) {
            add(shells.Current(), name, colour);
            any = true;
        }
        if (any) return;
        // Loose faces (a surface model without shells) come in together as one part.
        BRep_Builder builder;
        TopoDS_Compound faces;
        builder.MakeCompound(faces);
        for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next()) {
            builder.Add(faces, face.Current());
            any = true;
        }
        if (any) add(faces, name, colour);
    }

    void add(const TopoDS_Shape& piece, const std::string& name, const std::string& inherited) {
        ImportedPart part;
        part.name = name.empty() ? fallbackName_ : name;
        part.shape = piece;
        part.colour = colourOf(piece, inherited);
        for (TopExp_Explorer faces(piece, TopAbs_FACE); faces.More(); faces.Next()) {
            const XCAFPrs_Style* style = styles_.Seek(faces.Current());
            if (!style || !style->IsSetColorSurf()) continue;
            std::string colour = colourText(style->GetColorSurf());
            if (colour != part.colour)
                part.faceColours.emplace_back(TopoDS::Face(faces.Current()), std::move(colour));
        }
        parts_.push_back(std::move(part));
    }

    const XCAFPrs_IndexedDataMapOfShapeStyle& styles_;
    std::string fallbackName_;
    std::vector<ImportedPart> parts_;
};

Result<std::vector<ImportedPart>> read(const std::string& path) {
    XcafDocument document;
    STEPCAFControl_Reader reader;
    reader.SetNameMode(true);
    reader.SetColorMode(true);
    reader.SetLayerMode(false);
    if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
        return fail("Couldn't read " + path + " as STEP.");
    if (!reader.Transfer(document.get()))
        return fail(path + ": nothing in it could be turned into shapes.");

    Handle(XCAFDoc_ShapeTool) shapes = XCAFDoc_DocumentTool::ShapeTool(document.get()->Main());
    TDF_LabelSequence roots;
    shapes->GetFreeShapes(roots);
    std::vector<ImportedPart> parts;
    for (const TDF_Label& label : roots) {
        XCAFPrs_IndexedDataMapOfShapeStyle styles;
        XCAFPrs::CollectStyleSettings(label, TopLoc_Location(), styles);
        PartCollector one(styles, std::filesystem::path(path).stem().string());
        one.walk(label, TopLoc_Location(), labelName(label), {});
        for (ImportedPart& part : one.take()) parts.push_back(std::move(part));
    }
    if (parts.empty()) return fail(path + " has no solids or surfaces.");
    return parts;
}

} // namespace

Result<std::vector<ImportedPart>> readStep(const std::string& path) {
    std::error_code ec;
    if (path.empty() || !std::filesystem::is_regular_file(std::filesystem::path(path), ec))
        return fail("No file at " + path);
    try {
        return read(path);
    } catch (const Standard_Failure&) {
        return fail("Couldn't read " + path + " as STEP.");
    } catch (const std::exception&) {
        return fail("Couldn't read " + path + " as STEP.");
    }
}

} // namespace cad::exchange
