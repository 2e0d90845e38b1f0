// The SVG reader: rapidxml_ns parses the XML, SVG++ walks the document (transform
// lists, viewBox and preserveAspectRatio, units, style attributes, `use`) and hands
// each shape's path commands to the path builder. Bad attribute values are skipped
// rather than failing the whole drawing.
#include "sketch/drawingimport/svg/SvgReader.h"

#include "sketch/drawingimport/svg/SvgGeometry.h"

// SVG++ takes its policies as named template parameters; this walk sets more of them
// than Boost.Parameter's default arity allows.
#define BOOST_PARAMETER_MAX_ARITY 12
#include <rapidxml_ns/rapidxml_ns.hpp>
#include <svgpp/policy/xml/rapidxml_ns.hpp>
#include <svgpp/svgpp.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace cad::drawingimport {

namespace {

using namespace svgpp;
using svg::PathBuilder;
using XmlElement = rapidxml_ns::xml_node<> const*;

// Deeper XML than this is refused before parsing: both the parser and the walk recurse.
constexpr int kDeepestNesting = 200;
// `use` inside what `use` refers to, followed this deep (a reference to itself stops here).
constexpr int kDeepestUse = 16;
// More pieces than this from one file is taken as a file built to exhaust memory.
constexpr std::size_t kMostPieces = 2'000'000;
// Nor may `use` be followed more often than this: uses of uses multiply.
constexpr std::size_t kMostUses = 100'000;

struct TooMuch {};

// What the whole walk shares: elements by ID, the output and the length units.
struct Walk {
    std::unordered_map<std::string, XmlElement> ids;
    std::vector<DrawingPath> paths;
    factory::length::unitless<> lengths;
    Affine toDrawing; // root user units (pixels) to millimetres, y up
    std::unordered_set<std::string> activeUses;
    std::size_t pieces = 0;
    std::size_t uses = 0;
};

struct Paint {
    bool hidden = false; // display: none here or above
    bool fill = true;    // fill and stroke are inherited; fill defaults to black
    bool stroke = false;
};

class BaseContext {
public:
    explicit BaseContext(Walk& walk) : walk_(&walk) {}

    factory::length::unitless<>& length_factory() const { return walk_->lengths; }

    void on_exit_element() {}

    void transform_matrix(const boost::array<double, 6>& m) {
        ctm_ = ctm_ * Affine{m[0], m[1], m[2], m[3], m[4], m[5]};
    }
    void transform_translate(double x, double y) { ctm_ = ctm_ * Affine::translation(x, y); }
    void transform_scale(double x, double y) { ctm_ = ctm_ * Affine::scaling(x, y); }
    void transform_scale(double s) { transform_scale(s, s); }

    void set_viewport(double, double, double, double) {}
    void set_viewbox_size(double, double) {}
    void get_reference_viewport_size(double&, double&) {}
    void disable_rendering() { paint_.hidden = true; } // a viewport of zero size

    void set(tag::attribute::display, tag::value::none) { paint_.hidden = true; }
    template <class V> void set(tag::attribute::display, const V&) {}
    void set(tag::attribute::fill, tag::value::none) { paint_.fill = false; }
    template <class... V> void set(tag::attribute::fill, const V&...) { paint_.fill = true; }
    void set(tag::attribute::stroke, tag::value::none) { paint_.stroke = false; }
    template <class... V> void set(tag::attribute::stroke, const V&...) { paint_.stroke = true; }

protected:
    Walk& walk() const { return *walk_; }
    const Affine& ctm() const { return ctm_; }
    bool visible() const { return !paint_.hidden && (paint_.fill || paint_.stroke); }

private:
    Walk* walk_;
    Affine ctm_;
    Paint paint_;
};

// One shape: its commands are kept until the element ends, when its own transform
// is known whatever the attributes' order.
class ShapeContext : public BaseContext {
public:
    explicit ShapeContext(const BaseContext& parent) : BaseContext(parent) {}

    void path_move_to(double x, double y, tag::coordinate::absolute) {
        commands_.push_back({Command::Move, {x, y}});
    }
    void path_line_to(double x, double y, tag::coordinate::absolute) {
        commands_.push_back({Command::Line, {x, y}});
    }
    void path_cubic_bezier_to(double x1, double y1, double x2, double y2, double x, double y,
                              tag::coordinate::absolute) {
        commands_.push_back({Command::Cubic, {x1, y1, x2, y2, x, y}});
    }
    void path_quadratic_bezier_to(double x1, double y1, double x, double y,
                                  tag::coordinate::absolute) {
        commands_.push_back({Command::Quadratic, {x1, y1, x, y}});
    }
    void path_elliptical_arc_to(double rx, double ry, double rotation, bool largeArc, bool sweep,
                                double x, double y, tag::coordinate::absolute) {
        commands_.push_back({Command::Arc, {rx, ry, rotation, x, y}, largeArc, sweep});
    }
    void path_close_subpath() { commands_.push_back({Command::Close, {}}); }
    void path_exit() {}
    void set_circle(double cx, double cy, double r) {
        commands_.push_back({Command::Ellipse, {cx, cy, r, r}});
    }
    void set_ellipse(double cx, double cy, double rx, double ry) {
        commands_.push_back({Command::Ellipse, {cx, cy, rx, ry}});
    }

    void on_exit_element();

private:
    struct Command {
        enum Kind { Move, Line, Cubic, Quadratic, Arc, Close, Ellipse } kind;
        std::array<double, 6> v;
        bool largeArc = false;
        bool sweep = false;
    };
    std::vector<Command> commands_;
};

void ShapeContext::on_exit_element() {
    if (!visible() || commands_.empty()) return;
    const Affine toDrawing = walk().toDrawing * ctm();
    if (!toDrawing.finite()) return;
    PathBuilder builder(toDrawing);
    for (const Command& c : commands_) {
        const auto& v = c.v;
        switch (c.kind) {
        case Command::Move:
            builder.moveTo({v[0], v[1]});
            break;
        case Command::Line:
            builder.lineTo({v[0], v[1]});
            break;
        case Command::Cubic:
            builder.cubicTo({v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]});
            break;
        case Command::Quadratic:
            builder.quadraticTo({v[0], v[1]}, {v[2], v[3]});
            break;
        case Command::Arc:
            builder.arcTo(v[0], v[1], v[2], c.largeArc, c.sweep, {v[3], v[4]});
            break;
        case Command::Close:
            builder.close();
            break;
        case Command::Ellipse:
            builder.ellipse({v[0], v[1]}, v[2], v[3]);
            break;
        }
    }
    for (DrawingPath& path : builder.take()) {
        walk().pieces += path.pieces.size();
        if (walk().pieces > kMostPieces) throw TooMuch{};
        walk().paths.push_back(std::move(path));
    }
}

class UseContext : public BaseContext {
public:
    explicit UseContext(const BaseContext& parent) : BaseContext(parent) {}

    using BaseContext::set;
    template <class IRI>
    void set(tag::attribute::xlink::href, tag::iri_fragment, const IRI& fragment) {
        fragment_.assign(boost::begin(fragment), boost::end(fragment));
    }
    template <class IRI>
    void set(tag::attribute::xlink::href, const IRI&) {} // other files: not followed
    void set(tag::attribute::x, double x) { x_ = x; }
    void set(tag::attribute::y, double y) { y_ = y; }
    void set(tag::attribute::width, double w) { width_ = w; }
    void set(tag::attribute::height, double h) { height_ = h; }

    const std::optional<double>& width() const { return width_; }
    const std::optional<double>& height() const { return height_; }

    void on_exit_element();

private:
    std::string fragment_;
    double x_ = 0, y_ = 0;
    std::optional<double> width_, height_;
};

// A `symbol` or `svg` drawn through `use`: the use's width and height size its viewport.
class ReferencedContext : public BaseContext {
public:
    explicit ReferencedContext(UseContext& use) : BaseContext(use), use_(use) {}
    void get_reference_viewport_size(double& width, double& height) {
        if (use_.width()) width = *use_.width();
        if (use_.height()) height = *use_.height();
    }

private:
    UseContext& use_;
};

struct ChildContexts {
    template <class Parent, class Element, class Enable = void> struct apply {
        using type = factory::context::on_stack<BaseContext>;
    };
};
template <class Parent, class Element>
struct ChildContexts::apply<
    Parent, Element,
    typename boost::enable_if<boost::mpl::has_key<traits::shape_elements, Element>>::type> {
    using type = factory::context::on_stack<ShapeContext>;
};
template <class Parent> struct ChildContexts::apply<Parent, tag::element::use_, void> {
    using type = factory::context::on_stack<UseContext>;
};
template <> struct ChildContexts::apply<UseContext, tag::element::svg, void> {
    using type = factory::context::on_stack<ReferencedContext>;
};
template <> struct ChildContexts::apply<UseContext, tag::element::symbol, void> {
    using type = factory::context::on_stack<ReferencedContext>;
};

// Rectangles, lines and poly-shapes become paths; circles and ellipses arrive whole.
struct Shapes {
    using convert_to_path = boost::mpl::set4<tag::element::rect, tag::element::line,
                                             tag::element::polyline, tag::element::polygon>;
    using collect_attributes = boost::mpl::set2<tag::element::circle, tag::element::ellipse>;
    static const bool convert_only_rounded_rect_to_path = false;
};

// What can't be understood is left out; the rest of the drawing still counts.
struct Lenient : policy::error::raise_exception<BaseContext> {
    template <class... A> static bool unknown_element(const A&...) { return true; }
    template <class... A> static bool unknown_attribute(const A&...) { return true; }
    template <class... A> static bool unexpected_attribute(const A&...) { return true; }
    template <class... A> static bool unexpected_element(const A&...) { return true; }
    template <class... A> static bool required_attribute_not_found(const A&...) { return true; }
    template <class... A> static bool parse_failed(const A&...) { return true; }
    template <class... A> static bool negative_value(const A&...) { return true; }
};

using ProcessedElements = boost::mpl::fold<
    traits::shape_elements,
    boost::mpl::set<tag::element::svg, tag::element::g, tag::element::use_, tag::element::a>::type,
    boost::mpl::insert<boost::mpl::_1, boost::mpl::_2>>::type;

using ProcessedAttributes = boost::mpl::fold<
    boost::mpl::protect<
        boost::mpl::joint_view<traits::shapes_attributes_by_element, traits::viewport_attributes>>,
    boost::mpl::set<tag::attribute::transform, tag::attribute::fill, tag::attribute::stroke,
                    tag::attribute::display,
                    boost::mpl::pair<tag::element::use_, tag::attribute::xlink::href>>::type,
    boost::mpl::insert<boost::mpl::_1, boost::mpl::_2>>::type;

using Traversal = document_traversal<
    processed_elements<ProcessedElements>, processed_attributes<ProcessedAttributes>,
    viewport_policy<policy::viewport::as_transform>, context_factories<ChildContexts>,
    basic_shapes_policy<Shapes>, path_policy<policy::path::no_shorthands>,
    length_policy<policy::length::forward_to_method<BaseContext, factory::length::unitless<>>>,
    error_policy<Lenient>>;

void UseContext::on_exit_element() {
    auto found = walk().ids.find(fragment_);
    if (found == walk().ids.end()) return;
    if (walk().activeUses.size() >= kDeepestUse || walk().activeUses.count(fragment_)) return;
    if (++walk().uses > kMostUses) throw TooMuch{};
    walk().activeUses.insert(fragment_);
    transform_translate(x_, y_);
    Traversal::load_referenced_element<
        referencing_element<tag::element::use_>, expected_elements<traits::reusable_elements>,
        processed_elements<boost::mpl::insert<ProcessedElements, tag::element::symbol>::type>>::
        load(found->second, *this);
    walk().activeUses.erase(fragment_);
}

bool named(const char* name, std::size_t size, const char* want) {
    return size == std::strlen(want) && std::memcmp(name, want, size) == 0;
}

const char kXlink[] = "http://www.w3.org/1999/xlink";

// IDs of every element, and SVG 2's plain `href` on `use` read as `xlink:href`.
void prepare(rapidxml_ns::xml_node<>* node, Walk& walk) {
    for (; node; node = node->next_sibling()) {
        if (node->type() != rapidxml_ns::node_element) continue;
        rapidxml_ns::xml_attribute<>* plainHref = nullptr;
        bool xlinkHref = false;
        for (auto* a = node->first_attribute(); a; a = a->next_attribute()) {
            const bool id = named(a->local_name(), a->local_name_size(), "id");
            const bool href = named(a->local_name(), a->local_name_size(), "href");
            if (id && a->namespace_uri_size() == 0)
                walk.ids.emplace(std::string(a->value(), a->value_size()), node);
            if (href) {
                if (a->namespace_uri_size() == 0)
                    plainHref = a;
                else
                    xlinkHref = true;
            }
            // Values SVG++ parses are ASCII; its case-blind keyword matching (colour
            // names) must never see other bytes, so they become a character no value has.
            if (!id && !href)
                for (std::size_t i = 0; i < a->value_size(); ++i)
                    if (static_cast<unsigned char>(a->value()[i]) >= 0x80) a->value()[i] = '?';
        }
        if (plainHref && !xlinkHref) plainHref->namespace_uri(kXlink, sizeof kXlink - 1);
        prepare(node->first_node(), walk);
    }
}

// How deep the elements nest at most, read loosely (comments, CDATA sections and
// processing instructions skipped): enough to refuse files nested deeper than
// anything drawn by hand or program before the recursive parser sees them.
int deepestNesting(std::string_view text) {
    int depth = 0, deepest = 0;
    auto skipTo = [&](std::size_t& i, std::string_view end) {
        const std::size_t found = text.find(end, i);
        i = found == std::string_view::npos ? text.size() : found + end.size() - 1;
    };
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const std::string_view rest = text.substr(i);
        if (rest.starts_with("<!--")) {
            skipTo(i, "-->");
        } else if (rest.starts_with("<![CDATA[")) {
            skipTo(i, "]]>");
        } else if (rest.starts_with("<?")) {
            skipTo(i, "?>");
        } else if (text[i] == '<') {
            const char next = text[i + 1];
            if (next == '/')
                --depth;
            else if (next != '!')
                deepest = std::max(deepest, ++depth);
        } else if (text[i] == '/' && text[i + 1] == '>') {
            --depth;
        }
    }
    return deepest;
}

} // namespace

Result<ImportedDrawing> readSvgText(std::string_view bytes, const std::string& path) {
    const std::string notSvg = path + " isn't an SVG drawing I can read.";
    if (deepestNesting(bytes) > kDeepestNesting) return fail(notSvg);
    std::vector<char> text(bytes.begin(), bytes.end());
    text.push_back('\0');
    Walk walk;
    try {
        rapidxml_ns::xml_document<> document;
        document.parse<rapidxml_ns::parse_no_data_nodes>(text.data());
        rapidxml_ns::xml_node<>* root = document.first_node();
        while (root && root->type() != rapidxml_ns::node_element) root = root->next_sibling();
        if (!root || !named(root->local_name(), root->local_name_size(), "svg"))
            return fail(notSvg);
        prepare(root, walk);
        // A root without its own size is as big as its viewBox, so that one user unit
        // stays one pixel.
        if (const auto* viewBox = root->first_attribute("viewBox")) {
            std::string numbers(viewBox->value(), viewBox->value_size());
            std::replace(numbers.begin(), numbers.end(), ',', ' ');
            std::istringstream in(numbers);
            in.imbue(std::locale::classic());
            double x = 0, y = 0, w = 0, h = 0;
            if (in >> x >> y >> w >> h && w > 0 && h > 0 && std::isfinite(w) && std::isfinite(h))
                walk.lengths.set_viewport_size(w, h);
        }
        walk.toDrawing = Affine::scaling(svg::kMillimetresPerPixel, -svg::kMillimetresPerPixel);
        BaseContext context(walk);
        Traversal::load_document(static_cast<XmlElement>(root), context);
    } catch (const TooMuch&) {
        return fail(path + " has too many shapes to import.");
    } catch (const std::exception&) {
        return fail(notSvg);
    } catch (const boost::exception&) {
        return fail(notSvg);
    }
    if (walk.paths.empty()) return fail(path + " has no visible shapes.");
    ImportedDrawing drawing;
    drawing.paths = std::move(walk.paths);
    return drawing;
}

Result<ImportedDrawing> readSvg(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail("Couldn't open " + path);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return readSvgText(bytes, path);
}

} // namespace cad::drawingimport
