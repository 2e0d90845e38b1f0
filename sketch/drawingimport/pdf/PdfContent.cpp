// The content interpreter: q/Q/cm for the transformation, the path construction and
// painting operators, inline images stepped over, and Do for form XObjects.
#include "sketch/drawingimport/pdf/PdfContent.h"

#include "sketch/drawingimport/pdf/ContentTokens.h"

#include <qpdf/Buffer.hh>

#include <cmath>
#include <vector>

namespace cad::drawingimport::pdf {

namespace {

constexpr int kMostFormDepth = 8;
constexpr std::size_t kMostWork = 4'000'000; // tokens, forms counted each time drawn
constexpr std::size_t kMostOperands = 64;
constexpr std::size_t kMostSavedStates = 4096;

std::string streamBytes(QPDFObjectHandle stream) {
    try {
        if (!stream.isStream()) return {};
        const std::shared_ptr<Buffer> data = stream.getStreamData(qpdf_dl_generalized);
        return std::string(reinterpret_cast<const char*>(data->getBuffer()), data->getSize());
    } catch (...) {
        return {}; // an unknown or damaged filter: nothing drawn from it
    }
}

Affine formMatrix(QPDFObjectHandle form) {
    QPDFObjectHandle m = form.getDict().getKey("/Matrix");
    if (!m.isArray() || m.getArrayNItems() != 6) return {};
    double v[6];
    for (int i = 0; i < 6; ++i) {
        QPDFObjectHandle item = m.getArrayItem(i);
        if (!item.isNumber()) return {};
        v[i] = item.getNumericValue();
        if (!std::isfinite(v[i])) return {};
    }
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
}

} // namespace

PdfContent::PdfContent(PathRecorder& recorder, const ReadLimits& limits)
    : recorder_(recorder), mostWork_(limits.of(kMostWork)) {}

std::string pageContent(QPDFObjectHandle contents) {
    if (contents.isStream()) return streamBytes(contents);
    std::string out;
    if (!contents.isArray()) return out;
    for (int i = 0; i < contents.getArrayNItems(); ++i) {
        out += streamBytes(contents.getArrayItem(i));
        out += '\n';
    }
    return out;
}

const std::string& PdfContent::decoded(QPDFObjectHandle stream) {
    const QPDFObjGen id = stream.getObjGen();
    auto found = streams_.find(id);
    if (found == streams_.end()) found = streams_.emplace(id, streamBytes(stream)).first;
    return found->second;
}

void PdfContent::drawForm(std::string_view name, QPDFObjectHandle resources, const Affine& ctm,
                          int depth) {
    if (depth >= kMostFormDepth || !resources.isDictionary()) return;
    QPDFObjectHandle xobjects = resources.getKey("/XObject");
    if (!xobjects.isDictionary()) return;
    QPDFObjectHandle form = xobjects.getKey("/" + std::string(name));
    if (!form.isStream()) return;
    QPDFObjectHandle dict = form.getDict();
    if (!dict.getKey("/Subtype").isNameAndEquals("/Form")) return;
    QPDFObjectHandle own = dict.getKey("/Resources");
    const std::string& content = decoded(form); // map entries stay put while forms nest
    run(content, own.isDictionary() ? own : resources, ctm * formMatrix(form), depth + 1);
}

void PdfContent::run(std::string_view content, QPDFObjectHandle resources, const Affine& start,
                     int depth) {
    ContentTokens tokens(content);
    std::vector<double> operands;
    std::vector<Affine> saved;
    std::size_t unsavedPops = 0; // "q" past the limit, so that "Q" still pairs up
    std::string_view name;
    Affine ctm = start;
    recorder_.setTransform(ctm);
    auto has = [&](std::size_t n) {
        if (operands.size() < n) return false;
        for (std::size_t i = operands.size() - n; i < operands.size(); ++i) {
            if (!std::isfinite(operands[i])) return false;
        }
        return true;
    };
    auto at = [&](std::size_t fromTop) { return operands[operands.size() - fromTop]; };
    for (Token t = tokens.next(); t.kind != TokenKind::End; t = tokens.next()) {
        if (++work_ > mostWork_) tooLarge_ = true;
        if (tooLarge_ || recorder_.tooLarge()) return;
        if (t.kind == TokenKind::Number) {
            if (operands.size() == kMostOperands) operands.erase(operands.begin());
            operands.push_back(t.number);
            continue;
        }
        if (t.kind == TokenKind::Name) {
            name = t.text;
            continue;
        }
        const std::string_view op = t.text;
        if (op == "q") {
            if (saved.size() < kMostSavedStates)
                saved.push_back(ctm);
            else
                ++unsavedPops;
        } else if (op == "Q") {
            if (unsavedPops > 0) {
                --unsavedPops;
            } else if (!saved.empty()) {
                ctm = saved.back();
                saved.pop_back();
                recorder_.setTransform(ctm);
            }
        } else if (op == "cm" && has(6)) {
            ctm = ctm * Affine{at(6), at(5), at(4), at(3), at(2), at(1)};
            recorder_.setTransform(ctm);
        } else if (op == "m" && has(2)) {
            recorder_.moveTo({at(2), at(1)});
        } else if (op == "l" && has(2)) {
            recorder_.lineTo({at(2), at(1)});
        } else if (op == "c" && has(6)) {
            recorder_.curveTo({at(6), at(5)}, {at(4), at(3)}, {at(2), at(1)});
        } else if (op == "v" && has(4)) {
            recorder_.curveFromCurrent({at(4), at(3)}, {at(2), at(1)});
        } else if (op == "y" && has(4)) {
            recorder_.curveTo({at(4), at(3)}, {at(2), at(1)}, {at(2), at(1)});
        } else if (op == "re" && has(4)) {
            recorder_.rectangle(at(4), at(3), at(2), at(1));
        } else if (op == "h") {
            recorder_.closeSubpath();
        } else if (op == "s" || op == "b" || op == "b*") {
            recorder_.paint(true);
        } else if (op == "S" || op == "f" || op == "F" || op == "f*" || op == "B" || op == "B*") {
            recorder_.paint(false);
        } else if (op == "n") {
            recorder_.discard();
        } else if (op == "ID") {
            tokens.skipInlineImage();
        } else if (op == "Do" && !name.empty()) {
            try {
                drawForm(name, resources, ctm, depth);
            } catch (...) {
                // A damaged resource dictionary: the form is not drawn.
            }
            recorder_.setTransform(ctm);
        }
        operands.clear();
        name = {};
    }
}

} // namespace cad::drawingimport::pdf
