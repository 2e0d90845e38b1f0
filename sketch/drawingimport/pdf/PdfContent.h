// Interprets a PDF content stream's path operators, following the form XObjects it
// draws, into a PathRecorder.
#pragma once

#include "sketch/drawingimport/pdf/PathRecorder.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <map>
#include <string>
#include <string_view>

namespace cad::drawingimport::pdf {

class PdfContent {
public:
    PdfContent(PathRecorder& recorder, const ReadLimits& limits);

    // Runs `content` with the XObjects of `resources` at the current depth.
    void run(std::string_view content, QPDFObjectHandle resources, const Affine& ctm, int depth);

    // The content asked for more work than any drawing needs (forms drawing forms).
    bool tooLarge() const { return tooLarge_; }

private:
    void drawForm(std::string_view name, QPDFObjectHandle resources, const Affine& ctm, int depth);
    const std::string& decoded(QPDFObjectHandle stream);

    PathRecorder& recorder_;
    std::map<QPDFObjGen, std::string> streams_;
    std::size_t mostWork_;
    std::size_t work_ = 0;
    bool tooLarge_ = false;
};

// The decoded bytes of a page's /Contents (one stream or an array of them), the
// pieces joined by a line break; streams that do not decode are left out.
std::string pageContent(QPDFObjectHandle contents);

} // namespace cad::drawingimport::pdf
