// Font lookup and loading through OpenCASCADE's font manager and outline builder:
// families are matched strictly (no silent substitution beyond the metric-compatible
// stand-ins), fonts load at size 100 and keep their glyph outlines once read.
#include "sketch/text/FontLibrary.h"

#include "sketch/text/TextPlatform.h"

#include <Font_FTFont.hxx>
#include <Font_FontMgr.hxx>
#include <Font_SystemFont.hxx>
#include <NCollection_Sequence.hxx>
#include <Standard_Failure.hxx>
#include <StdPrs_BRepFont.hxx>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

namespace cad::text {

namespace {

constexpr double kNominalSize = 100;
// Capitals measured for the cap height: every letter that sits on the baseline in
// common fonts (J and Q may hang below it).
constexpr std::u32string_view kCapitals = U"ABCDEFGHIKLMNOPRSTUVWXYZ";

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

Font_FontAspect aspectOf(bool bold, bool italic) {
    if (bold && italic) return Font_FontAspect_BoldItalic;
    if (bold) return Font_FontAspect_Bold;
    if (italic) return Font_FontAspect_Italic;
    return Font_FontAspect_Regular;
}

Handle(Font_FontMgr) fontManager() {
    registerUserFonts();
    return Font_FontMgr::GetInstance();
}

std::string notInstalled(const std::string& family) {
    return "The font '" + family + "' isn't installed.";
}

// Fonts are kept once loaded, and so are the families found missing until more fonts
// are registered.
std::map<std::string, Result<std::shared_ptr<Font>>>& loadedFonts() {
    static std::map<std::string, Result<std::shared_ptr<Font>>> loaded;
    return loaded;
}
int generation = 0;

} // namespace

int fontGeneration() {
    std::lock_guard lock(fontMutex());
    return generation;
}

std::recursive_mutex& fontMutex() {
    static std::recursive_mutex mutex;
    return mutex;
}

int registerFontFolder(const std::filesystem::path& folder) {
    static constexpr std::array<std::string_view, 6> extensions{".ttf", ".otf", ".ttc",
                                                                ".otc", ".pfa", ".pfb"};
    std::lock_guard lock(fontMutex());
    std::error_code error;
    if (folder.empty() || !std::filesystem::is_directory(folder, error)) return 0;
    Handle(Font_FontMgr) manager = Font_FontMgr::GetInstance();
    int added = 0;
    const auto options = std::filesystem::directory_options::skip_permission_denied;
    for (std::filesystem::recursive_directory_iterator it(folder, options, error), end;
         !error && it != end; it.increment(error)) {
        if (!it->is_regular_file(error)) continue;
        const std::string extension = lower(it->path().extension().string());
        if (std::find(extensions.begin(), extensions.end(), extension) == extensions.end())
            continue;
        try {
            NCollection_Sequence<Handle(Font_SystemFont)> faces;
            if (!manager->CheckFont(faces, it->path().string().c_str())) continue;
            for (const Handle(Font_SystemFont) & face : faces)
                if (manager->RegisterFont(face, Standard_True)) ++added;
        } catch (const Standard_Failure&) {
            // A damaged font file is skipped, like one that isn't a font at all.
        }
    }
    if (added > 0) {
        std::erase_if(loadedFonts(), [](const auto& entry) { return !entry.second.ok(); });
        ++generation;
    }
    return added;
}

void registerUserFonts() {
    // The lock first, always: font lookups hold it when they get here.
    std::lock_guard lock(fontMutex());
    static bool registered = false;
    if (registered) return;
    registered = true;
    registerFontFolder(userFontFolder());
}

const std::vector<std::string>& fontFallbacks() {
    static const std::vector<std::string> families{"Arial", "Segoe UI", "DejaVu Sans",
                                                   "Liberation Sans"};
    return families;
}

std::string metricCompatibleFamily(std::string_view family) {
    const std::string key = lower(family);
    if (key == "arial") return "Liberation Sans";
    if (key == "times new roman") return "Liberation Serif";
    if (key == "courier new") return "Liberation Mono";
    return {};
}

const std::vector<Contour>& Font::glyph(char32_t c) {
    auto found = glyphs_.find(c);
    if (found != glyphs_.end()) return found->second;
    std::vector<Contour> contours;
    Handle(StdPrs_BRepFont) builder = Handle(StdPrs_BRepFont)::DownCast(builder_);
    try {
        contours = glyphContours(builder->RenderGlyph(static_cast<Standard_Utf32Char>(c)));
    } catch (const Standard_Failure&) {
        contours.clear(); // a glyph the builder can't make is left out, like a space
    }
    return glyphs_.emplace(c, std::move(contours)).first->second;
}

double Font::advance(char32_t c, char32_t next, bool kerning) {
    Handle(StdPrs_BRepFont) builder = Handle(StdPrs_BRepFont)::DownCast(builder_);
    // With no following character the font has no pair to adjust by.
    return builder->AdvanceX(static_cast<Standard_Utf32Char>(c),
                             kerning ? static_cast<Standard_Utf32Char>(next) : 0);
}

// The font of exactly this installed family (no aliases, no global fallback).
Result<std::shared_ptr<Font>> openFont(const std::string& asked, const std::string& family,
                                       bool bold, bool italic) {
    Handle(Font_FontMgr) manager = fontManager();
    Font_FontAspect aspect = aspectOf(bold, italic);
    const TCollection_AsciiString name(family.c_str());
    Handle(Font_SystemFont) system;
    try {
        system = manager->FindFont(name, Font_StrictLevel_Strict, aspect, Standard_False);
    } catch (const Standard_Failure&) {
        system.Nullify();
    }
    if (system.IsNull()) return fail(notInstalled(asked));

    auto font = std::make_shared<Font>();
    Handle(StdPrs_BRepFont) builder = new StdPrs_BRepFont();
    try {
        if (!builder->FindAndInit(name, aspectOf(bold, italic), kNominalSize,
                                  Font_StrictLevel_Strict))
            return fail(notInstalled(asked));
    } catch (const Standard_Failure&) {
        return fail(notInstalled(asked));
    }
    font->family_ = asked;
    font->installed_ = system->FontName().ToCString();
    bool synthesizedItalic = false;
    int faceId = 0;
    font->file_ = system->FontPathAny(aspect, synthesizedItalic, faceId).ToCString();
    font->builder_ = builder;
    font->ascender_ = builder->Ascender();
    font->descender_ = builder->Descender();

    Bounds capitals;
    for (char32_t c : kCapitals)
        for (const Contour& contour : font->glyph(c))
            for (const OutlinePiece& piece : contour.pieces) addToBounds(capitals, piece);
    if (capitals.empty() || capitals.ymax - capitals.ymin <= 1e-9)
        return fail("The font '" + asked + "' has no letter shapes.");
    font->capTop_ = capitals.ymax;
    font->capBottom_ = capitals.ymin;
    return font;
}

Result<std::shared_ptr<Font>> loadFont(const std::string& family, bool bold, bool italic) {
    std::lock_guard lock(fontMutex());
    auto& loaded = loadedFonts();
    const std::string key = family + (bold ? "|b" : "|") + (italic ? "i" : "");
    if (auto found = loaded.find(key); found != loaded.end()) return found->second;
    Result<std::shared_ptr<Font>> font = openFont(family, family, bold, italic);
    if (!font) {
        const std::string standIn = metricCompatibleFamily(family);
        if (!standIn.empty()) {
            Result<std::shared_ptr<Font>> alternative = openFont(family, standIn, bold, italic);
            // The stand-in's own problems ("no letter shapes") are not the family's.
            if (alternative) font = alternative;
        }
    }
    loaded.insert_or_assign(key, font);
    return font;
}

Result<std::shared_ptr<Font>> loadDisplayFont(const std::string& family, bool bold, bool italic) {
    std::lock_guard lock(fontMutex());
    Result<std::shared_ptr<Font>> font = loadFont(family, bold, italic);
    if (font) return font;
    for (const std::string& fallback : fontFallbacks())
        if (Result<std::shared_ptr<Font>> other = loadFont(fallback, bold, italic)) return other;
    return font;
}

} // namespace cad::text
