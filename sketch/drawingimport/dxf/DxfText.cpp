// Decoding of DXF text strings: code pages, unicode escapes, TEXT's "%%" codes and
// MTEXT's inline formatting.
#include "sketch/drawingimport/dxf/DxfText.h"

#include <array>
#include <cctype>
#include <cstdint>

namespace cad::drawingimport::dxf {

namespace {

void appendUtf8(std::string& out, std::uint32_t cp) {
    if (cp == 0 || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = 0xFFFD;
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

bool validUtf8(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::size_t extra = 0;
        if (c < 0x80)
            extra = 0;
        else if (c >= 0xC2 && c <= 0xDF)
            extra = 1;
        else if (c >= 0xE0 && c <= 0xEF)
            extra = 2;
        else if (c >= 0xF0 && c <= 0xF4)
            extra = 3;
        else
            return false;
        if (extra > 0 && i + extra >= s.size()) return false;
        for (std::size_t k = 1; k <= extra; ++k) {
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
        }
        i += extra + 1;
    }
    return true;
}

// Windows-1252's characters at 0x80-0x9F; the rest of the upper half is Latin-1.
constexpr std::array<std::uint16_t, 32> kCp1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::string textAsUtf8(std::string_view raw) {
    std::string decoded;
    if (validUtf8(raw)) {
        decoded = raw;
    } else {
        for (char ch : raw) {
            const auto c = static_cast<unsigned char>(ch);
            if (c < 0x80)
                decoded += ch;
            else if (c < 0xA0)
                appendUtf8(decoded, kCp1252[c - 0x80]);
            else
                appendUtf8(decoded, c);
        }
    }
    // "\U+XXXX": a character by its code point.
    std::string out;
    out.reserve(decoded.size());
    for (std::size_t i = 0; i < decoded.size(); ++i) {
        if (decoded[i] == '\\' && i + 6 < decoded.size() &&
            (decoded[i + 1] == 'U' || decoded[i + 1] == 'u') && decoded[i + 2] == '+') {
            std::uint32_t cp = 0;
            bool hex = true;
            for (std::size_t k = 3; k < 7; ++k) {
                const int v = hexValue(decoded[i + k]);
                hex = hex && v >= 0;
                cp = cp * 16 + static_cast<std::uint32_t>(v < 0 ? 0 : v);
            }
            if (hex) {
                appendUtf8(out, cp);
                i += 6;
                continue;
            }
        }
        out += decoded[i];
    }
    return out;
}

std::string plainText(std::string_view raw) {
    const std::string text = textAsUtf8(raw);
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && text[i + 1] == '%') {
            const char code =
                static_cast<char>(std::tolower(static_cast<unsigned char>(text[i + 2])));
            if (code == 'd')
                appendUtf8(out, 0xB0);
            else if (code == 'p')
                appendUtf8(out, 0xB1);
            else if (code == 'c')
                appendUtf8(out, 0x2300);
            else if (code == '%')
                out += '%';
            else if (code != 'u' && code != 'o' && code != 'k') {
                out += text[i];
                continue;
            }
            i += 2;
            continue;
        }
        out += text[i];
    }
    return out;
}

std::string plainMText(std::string_view raw) {
    const std::string text = textAsUtf8(raw);
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '{' || c == '}') continue;
        if (c != '\\' || i + 1 >= text.size()) {
            out += c;
            continue;
        }
        const char code = text[++i];
        switch (code) {
        case 'P':
        case 'N': // a column break reads as a line break
            out += '\n';
            break;
        case '~':
            out += ' ';
            break;
        case '\\':
        case '{':
        case '}':
            out += code;
            break;
        case 'L':
        case 'l':
        case 'O':
        case 'o':
        case 'K':
        case 'k':
        case 'X':
            break; // underline, overline and strike-through toggles
        case 'S': {
            // A stacked fraction: "\S1^2;", "\S1/2;" or "\S1#2;".
            const std::size_t end = text.find(';', i + 1);
            const std::string_view stack = std::string_view(text).substr(
                i + 1, (end == std::string::npos ? text.size() : end) - i - 1);
            for (char s : stack) out += (s == '^' || s == '#') ? '/' : s;
            i = end == std::string::npos ? text.size() : end;
            break;
        }
        default:
            if (std::isalpha(static_cast<unsigned char>(code))) {
                const std::size_t end = text.find(';', i + 1);
                if (end != std::string::npos) i = end;
            } else {
                out += '\\';
                out += code;
            }
            break;
        }
    }
    return out;
}

} // namespace cad::drawingimport::dxf
