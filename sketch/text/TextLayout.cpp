// Text layout: lines of letters advanced by the font's widths and kerning, aligned
// and justified, stacked in columns when vertical, each letter scaled and turned on
// its own origin, then the whole block turned and placed, or each letter set along
// a path. Laid-out texts are cached behind the font library's lock.
#include "sketch/text/TextLayout.h"

#include "sketch/SketchCurves.h"
#include "sketch/text/FontLibrary.h"
#include "sketch/text/TextPlatform.h"

#include <GCPnts_AbscissaPoint.hxx>
#include <Geom2dAdaptor_Curve.hxx>
#include <Standard_Failure.hxx>
#include <gp_Pnt2d.hxx>
#include <gp_Vec2d.hxx>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <numbers>

namespace cad::text {

namespace {

struct Letter {
    char32_t c = 0;
    int index = 0;       // in the text as written
    double x = 0;        // pen position, mm
    double baseline = 0; // mm
    double advance = 0;  // mm, what this letter takes along its line
};

bool onlyBlanks(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

void appendNumber(std::string& out, double v) {
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
    out.append(buffer, ec == std::errc() ? end : buffer);
    out += ';';
}

std::string cacheKey(const SketchText& t, const TextPathCurve* path, FontChoice choice) {
    std::string key = t.text;
    key += '\x1f';
    key += t.font;
    key += '\x1f';
    for (double v : {t.height, t.position.x, t.position.y, t.angle, t.lineSpacing, t.tracking,
                     t.widthScale, t.heightScale, t.baselineShift, t.charRotation, t.pathOffset})
        appendNumber(key, v);
    for (int v : {static_cast<int>(t.align), static_cast<int>(t.valign), static_cast<int>(t.sizeIs),
                  int{t.bold}, int{t.italic}, int{t.kerning}, int{t.vertical}, int{t.allCaps},
                  int{t.pathFlip}, static_cast<int>(choice)})
        key += static_cast<char>('0' + v);
    if (path) key += '\x1f' + path->key;
    key += '\x1f' + std::to_string(fontGeneration());
    return key;
}

// Distances along a curve: points and directions, running backwards when flipped,
// carried on straight past the ends of an open curve and around a closed one.
class PathWalk {
public:
    PathWalk(const Handle(Geom2d_Curve) & curve, bool flip)
        : curve_(curve), adaptor_(curve), flip_(flip) {
        length_ = GCPnts_AbscissaPoint::Length(adaptor_);
        closed_ = curve->IsClosed();
    }
    double length() const { return length_; }

    // The point `d` along the path, and the unit direction of travel there.
    std::pair<gp_Pnt2d, gp_Vec2d> at(double d) const {
        double s = flip_ ? length_ - d : d;
        if (closed_ && length_ > 0) {
            s = std::fmod(s, length_);
            if (s < 0) s += length_;
        }
        const double first = curve_->FirstParameter(), last = curve_->LastParameter();
        double u = first, beyond = 0;
        if (s <= 0) {
            beyond = s;
        } else if (s >= length_) {
            u = last;
            beyond = s - length_;
        } else {
            GCPnts_AbscissaPoint abscissa(adaptor_, s, first);
            u = abscissa.IsDone() ? abscissa.Parameter() : first + (last - first) * s / length_;
        }
        gp_Pnt2d p;
        gp_Vec2d v;
        curve_->D1(u, p, v);
        if (v.Magnitude() <= 1e-12) v = gp_Vec2d(1, 0);
        v.Normalize();
        p.Translate(beyond * v); // straight on past an end
        if (flip_) v.Reverse();
        return {p, v};
    }

private:
    Handle(Geom2d_Curve) curve_;
    Geom2dAdaptor_Curve adaptor_;
    bool flip_ = false;
    bool closed_ = false;
    double length_ = 0;
};

Result<TextLayout> compute(const SketchText& t, const TextPathCurve* path, FontChoice choice) {
    if (onlyBlanks(t.text)) return fail("The text is empty.");
    if (!(t.height > 0)) return fail("The text height must be greater than zero.");
    if (!(t.widthScale > 0) || !(t.heightScale > 0))
        return fail("The text's scale must be greater than zero.");
    if (!(t.lineSpacing > 0))
        return fail("The text's scales and line spacing must be greater than zero.");

    // A text that names no family is set in the first of the fallbacks.
    const std::string family = onlyBlanks(t.font) ? fontFallbacks().front() : t.font;
    Result<std::shared_ptr<Font>> loaded = choice == FontChoice::Strict
                                               ? loadFont(family, t.bold, t.italic)
                                               : loadDisplayFont(family, t.bold, t.italic);
    if (!loaded) return Error(loaded);
    Font& font = **loaded;

    std::u32string chars = decodeUtf8(t.text);
    if (t.allCaps)
        for (char32_t& c : chars) c = upperCase(c);

    // Font units are an em of 100; s takes them to millimetres.
    const double capHeight = font.capTop() - font.capBottom();
    const double s = t.sizeIs == TextSizeIs::FontSize ? t.height / 100.0 : t.height / capHeight;
    const double sx = s * t.widthScale / 100.0, sy = s * t.heightScale / 100.0;
    const double em = 100.0 * s;
    const double tracking = t.tracking / 1000.0 * em;
    const double lineStep = t.lineSpacing / 100.0 * em;

    // Lines of letters with their advances.
    std::vector<std::vector<Letter>> lines(1);
    for (std::size_t i = 0; i < chars.size(); ++i) {
        if (chars[i] == U'\n') {
            lines.emplace_back();
        } else if (chars[i] != U'\r') {
            lines.back().push_back({chars[i], static_cast<int>(i), 0, 0, 0});
        }
    }
    std::vector<double> widths;
    for (std::vector<Letter>& line : lines) {
        double width = 0;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const bool last = i + 1 == line.size();
            const char32_t next = last ? 0 : line[i + 1].c;
            line[i].advance = font.advance(line[i].c, next, t.kerning) * sx + (last ? 0 : tracking);
            width += line[i].advance;
        }
        widths.push_back(width);
    }
    const double widest = *std::max_element(widths.begin(), widths.end());

    // Pen positions: rows left to right, or columns top to bottom.
    for (std::size_t k = 0; k < lines.size(); ++k) {
        std::vector<Letter>& line = lines[k];
        const std::size_t n = line.size();
        if (t.vertical) {
            const double cell = 100.0 * sy + tracking;
            const double run = n > 1 ? (n - 1) * cell : 0;
            const double shift = t.align == TextAlign::Center  ? run / 2
                                 : t.align == TextAlign::Right ? run
                                                               : 0;
            for (std::size_t i = 0; i < n; ++i) {
                line[i].x = k * lineStep - font.advance(line[i].c, 0, false) * sx / 2;
                line[i].baseline = shift - i * cell;
            }
            continue;
        }
        double x = t.align == TextAlign::Center  ? -widths[k] / 2
                   : t.align == TextAlign::Right ? -widths[k]
                                                 : 0;
        // Justified lines (all but the last, and not a single letter) reach the widest.
        double perSpace = 0, perGap = 0;
        if (t.align == TextAlign::Justify && k + 1 < lines.size() && n > 1) {
            const double missing = widest - widths[k];
            const auto spaces = std::count_if(line.begin(), line.end(),
                                              [](const Letter& l) { return l.c == U' '; });
            if (spaces > 0)
                perSpace = missing / static_cast<double>(spaces);
            else
                perGap = missing / static_cast<double>(n - 1);
        }
        for (std::size_t i = 0; i < n; ++i) {
            line[i].x = x;
            line[i].baseline = -static_cast<double>(k) * lineStep;
            if (line[i].c == U' ') line[i].advance += perSpace;
            if (i + 1 < n) line[i].advance += perGap;
            x += line[i].advance;
        }
    }

    // Vertical placement of the block about the position's y.
    double lowest = 0;
    for (const std::vector<Letter>& line : lines)
        for (const Letter& l : line) lowest = std::min(lowest, l.baseline);
    double dy = 0;
    switch (t.valign) {
    case TextVAlign::Baseline:
        break;
    case TextVAlign::Bottom:
        dy = -(lowest + font.descender() * sy);
        break;
    case TextVAlign::Middle:
        dy = -(font.capTop() * sy + lowest + font.capBottom() * sy) / 2;
        break;
    case TextVAlign::Top:
        dy = -font.capTop() * sy;
        break;
    }

    std::unique_ptr<PathWalk> walk;
    double start = 0;
    if (path && !path->curve.IsNull()) {
        walk = std::make_unique<PathWalk>(path->curve, t.pathFlip);
        start = t.align == TextAlign::Center  ? walk->length() / 2 + t.pathOffset
                : t.align == TextAlign::Right ? walk->length() - t.pathOffset
                                              : t.pathOffset;
    }
    const Affine block =
        Affine::rotation(t.angle).then(Affine::translation(t.position.x, t.position.y));

    TextLayout layout;
    layout.font = font.installed();
    layout.fontSize = em;
    for (const std::vector<Letter>& line : lines) {
        for (const Letter& l : line) {
            const std::vector<Contour>& glyph = font.glyph(l.c);
            if (glyph.empty()) continue;
            const Affine letter = Affine::scale(sx, sy).then(Affine::rotation(t.charRotation));
            const double raise = l.baseline + dy + t.baselineShift;
            Affine map;
            if (walk) {
                // The letter's middle sits on the path, turned to its direction there.
                const double half = t.vertical ? 0 : l.advance / 2;
                auto [p, v] = walk->at(start + l.x + half);
                const double turn = std::atan2(v.Y(), v.X()) * 180.0 / std::numbers::pi;
                map = letter.then(Affine::translation(-half, raise))
                          .then(Affine::rotation(turn))
                          .then(Affine::translation(p.X(), p.Y()));
            } else {
                map = letter.then(Affine::translation(l.x, raise)).then(block);
            }
            for (const Contour& contour : glyph) {
                Contour placed = transformed(contour, map);
                placed.letter = l.index;
                for (const OutlinePiece& piece : placed.pieces)
                    for (Point2 p : piece.poles)
                        if (!std::isfinite(p.x) || !std::isfinite(p.y))
                            return fail("The text is too large to lay out.");
                layout.contours.push_back(std::move(placed));
            }
        }
    }
    if (layout.contours.empty())
        return fail("The font '" + family + "' has no shapes for that text.");
    return layout;
}

std::string trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

} // namespace

std::u32string decodeUtf8(std::string_view text) {
    std::u32string out;
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t extra = lead < 0x80             ? 0
                                  : (lead & 0xE0) == 0xC0 ? 1
                                  : (lead & 0xF0) == 0xE0 ? 2
                                  : (lead & 0xF8) == 0xF0 ? 3
                                                          : 4; // 4: not a lead byte
        char32_t c = extra == 0 ? lead : static_cast<char32_t>(lead & (0x3F >> extra));
        std::size_t k = 1;
        for (; extra < 4 && k <= extra && i + k < text.size(); ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) break;
            c = (c << 6) | (next & 0x3F);
        }
        if (extra == 4 || k <= extra) {
            out.push_back(0xFFFD);
            ++i;
            continue;
        }
        out.push_back(c);
        i += extra + 1;
    }
    return out;
}

Result<std::shared_ptr<const TextLayout>> layoutText(const SketchText& text,
                                                     const TextPathCurve* path, FontChoice choice) {
    std::lock_guard lock(fontMutex());
    static std::map<std::string, std::shared_ptr<const TextLayout>> cache;
    const std::string key = cacheKey(text, path, choice);
    if (auto found = cache.find(key); found != cache.end()) return found->second;
    Result<TextLayout> made = [&]() -> Result<TextLayout> {
        try {
            return compute(text, path, choice);
        } catch (const Standard_Failure&) {
            return fail("The text couldn't be laid out in the font '" + text.font + "'.");
        }
    }();
    if (!made) return Error(made);
    if (cache.size() >= 512) cache.clear(); // plenty for one session's texts; never unbounded
    auto shared = std::make_shared<const TextLayout>(std::move(made).value());
    cache.emplace(key, shared);
    return shared;
}

Result<TextPathCurve> findTextPath(const SketchText& text,
                                   const std::vector<SketchEntity>& sketch) {
    const std::string name = trimmed(text.path);
    const Error refused{"'" + text.path + "' isn't a curve of this sketch to put text on."};
    const SketchEntity* entity = findEntity(sketch, name);
    if (!entity) return refused;
    switch (entity->kind()) {
    case EntityKind::Line:
    case EntityKind::Circle:
    case EntityKind::Arc:
    case EntityKind::Spline:
        break;
    default:
        return refused;
    }
    std::vector<SketchCurve> curves = entityCurves(*entity);
    if (curves.size() != 1 || curves.front().curve.IsNull()) return refused;
    TextPathCurve path{curves.front().curve, std::string(entityKindName(*entity)) + ":"};
    for (double v : entityParameters(*entity)) appendNumber(path.key, v);
    if (const auto* spline = std::get_if<SketchSpline>(&entity->geometry))
        path.key += spline->closed ? "closed" : "open";
    return path;
}

Result<std::shared_ptr<const TextLayout>>
layoutTextStrictly(const SketchText& text, const std::vector<SketchEntity>& sketch) {
    if (trimmed(text.path).empty()) return layoutText(text, nullptr, FontChoice::Strict);
    Result<TextPathCurve> path = findTextPath(text, sketch);
    if (!path) return Error(path);
    return layoutText(text, &*path, FontChoice::Strict);
}

Result<std::shared_ptr<const TextLayout>>
layoutTextForSketch(const SketchText& text, const std::vector<SketchEntity>* sketch) {
    if (sketch && !trimmed(text.path).empty())
        if (Result<TextPathCurve> path = findTextPath(text, *sketch))
            return layoutText(text, &*path, FontChoice::Display);
    return layoutText(text, nullptr, FontChoice::Display);
}

} // namespace cad::text
