// The strings of DXF TEXT and MTEXT entities as plain UTF-8: control codes turned
// into the characters they stand for, formatting codes dropped.
#pragma once

#include <string>
#include <string_view>

namespace cad::drawingimport::dxf {

// Text from the file as UTF-8: kept when it already is, else read as Windows-1252
// (the code page of older files); "\U+00B0" escapes become their characters.
std::string textAsUtf8(std::string_view raw);

// A TEXT string: "%%d", "%%p", "%%c" become degree, plus-minus and diameter signs,
// "%%%" a percent sign; the underline and overline toggles "%%u" and "%%o" vanish.
std::string plainText(std::string_view raw);

// An MTEXT string: "\P" breaks the line, "\~" is a space, "\\", "\{" and "\}" are
// the characters themselves, a stacked fraction "\S1^2;" reads "1/2", other codes (a
// backslash, a letter and its argument up to ";") are dropped, and braces vanish.
std::string plainMText(std::string_view raw);

} // namespace cad::drawingimport::dxf
