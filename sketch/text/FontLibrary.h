// The fonts sketch text is drawn with: the system's fonts as OpenCASCADE's font
// manager knows them, the person's own font folder, metric-compatible stand-ins and
// display fallbacks, and each font's glyph outlines and spacing at a nominal size of
// 100 (one em is 100 units, y up, the baseline at 0).
#pragma once

#include "core/Result.h"
#include "sketch/text/GlyphOutline.h"

#include <Standard_Transient.hxx>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace cad::text {

// Guards the font manager, every loaded font and the layout cache: text is laid out
// for profiles, the view and exports, possibly from more than one thread.
std::recursive_mutex& fontMutex();

// Registers every font file in the person's font folder with the font manager, once
// per process; runs by itself before the first font is looked up.
void registerUserFonts();
// Registers the font files in a folder and below it (.ttf, .otf, .ttc, .otc, .pfa,
// .pfb in any letter case); returns how many font faces were added.
int registerFontFolder(const std::filesystem::path& folder);
// Counts the registrations that added fonts: what was laid out before in a fallback
// may now have its own font.
int fontGeneration();

// The families tried in order when a text's family is not given or not installed and
// the text must still be shown.
const std::vector<std::string>& fontFallbacks();

// The installed family with the same letter widths that stands in for a common
// family ("Liberation Sans" for "Arial", "Liberation Serif" for "Times New Roman",
// "Liberation Mono" for "Courier New"); empty for any other family.
std::string metricCompatibleFamily(std::string_view family);

// A font at the nominal size of 100. Call its members with fontMutex() held.
class Font {
public:
    const std::string& family() const { return family_; }       // as asked for
    const std::string& installed() const { return installed_; } // the family in use
    const std::string& file() const { return file_; }

    // The capital letters' extent (their bounding box, rounded letters included)
    // and the font's ascender and descender lines (the descender is negative).
    double capTop() const { return capTop_; }
    double capBottom() const { return capBottom_; }
    double ascender() const { return ascender_; }
    double descender() const { return descender_; }

    // The outline contours of a character (none for a space or a missing glyph).
    const std::vector<Contour>& glyph(char32_t c);
    // How far the pen moves after `c` when `next` follows, with the kerning pair's
    // adjustment when asked for.
    double advance(char32_t c, char32_t next, bool kerning);

private:
    friend Result<std::shared_ptr<Font>> openFont(const std::string&, const std::string&, bool,
                                                  bool);
    std::string family_, installed_, file_;
    double capTop_ = 0, capBottom_ = 0, ascender_ = 0, descender_ = 0;
    Handle(Standard_Transient) builder_; // the font's outline builder
    std::map<char32_t, std::vector<Contour>> glyphs_;
};

// The installed font of that family and style (a metric-compatible stand-in when the
// family itself is missing), or "The font '<family>' isn't installed.".
Result<std::shared_ptr<Font>> loadFont(const std::string& family, bool bold, bool italic);
// As loadFont, then the fallbacks in order; for showing a text whose family is gone.
Result<std::shared_ptr<Font>> loadDisplayFont(const std::string& family, bool bold, bool italic);

} // namespace cad::text
