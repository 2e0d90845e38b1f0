// Walks a DXF file's sections: the unit from HEADER, the blocks up to each ENDBLK,
// and the entities of ENTITIES, without reading any entity's meaning yet.
#include "sketch/drawingimport/dxf/DxfEntities.h"

namespace cad::drawingimport::dxf {

namespace {

bool isZero(const Group& g, std::string_view word) { return g.code == 0 && g.value == word; }

EntityKind kindOf(std::string_view type) {
    static const std::pair<std::string_view, EntityKind> kinds[] = {
        {"LINE", EntityKind::Line},         {"CIRCLE", EntityKind::Circle},
        {"ARC", EntityKind::Arc},           {"LWPOLYLINE", EntityKind::LwPolyline},
        {"POLYLINE", EntityKind::Polyline}, {"SPLINE", EntityKind::Spline},
        {"ELLIPSE", EntityKind::Ellipse},   {"POINT", EntityKind::Point},
        {"TEXT", EntityKind::Text},         {"MTEXT", EntityKind::MText},
        {"INSERT", EntityKind::Insert}};
    for (const auto& [name, kind] : kinds) {
        if (type == name) return kind;
    }
    return EntityKind::Other;
}

class Walker {
public:
    explicit Walker(DxfFile& file) : file_(file), groups_(file.groups) {}

    void run() {
        while (at_ < groups_.size()) {
            if (!isZero(groups_[at_], "SECTION")) {
                ++at_;
                continue;
            }
            ++at_;
            const std::string_view name =
                at_ < groups_.size() && groups_[at_].code == 2 ? groups_[at_].value : "";
            if (name == "HEADER")
                header();
            else if (name == "BLOCKS")
                blocks();
            else if (name == "ENTITIES")
                file_.entities = entities({"ENDSEC"});
            else
                skipSection();
        }
    }

private:
    void skipSection() {
        while (at_ < groups_.size() && !isZero(groups_[at_], "ENDSEC")) ++at_;
    }

    void header() {
        for (; at_ < groups_.size() && !isZero(groups_[at_], "ENDSEC"); ++at_) {
            if (groups_[at_].code != 9 || groups_[at_].value != "$INSUNITS") continue;
            if (at_ + 1 < groups_.size() && groups_[at_ + 1].code == 70) {
                const std::optional<long long> code = groupInteger(groups_[at_ + 1].value);
                file_.millimetresPerUnit = insUnitsToMillimetres(code.value_or(0));
            }
        }
    }

    void blocks() {
        while (at_ < groups_.size() && !isZero(groups_[at_], "ENDSEC")) {
            if (!isZero(groups_[at_], "BLOCK")) {
                ++at_;
                continue;
            }
            Entity header = nextEntity();
            Block block;
            Fields fields(groups_, header);
            block.base = fields.point(10);
            if (fields.damaged()) block.base = {};
            std::string name = upperCase(fields.text(2));
            block.entities = entities({"ENDBLK", "ENDSEC"});
            if (at_ < groups_.size() && isZero(groups_[at_], "ENDBLK")) ++at_;
            // A later block of the same name replaces the earlier one.
            file_.blocks[std::move(name)] = std::move(block);
        }
    }

    // The entity starting at the "0" group at `at_`, up to the next "0" group.
    Entity nextEntity() {
        Entity e;
        e.type = groups_[at_].value;
        e.kind = kindOf(e.type);
        e.begin = ++at_;
        while (at_ < groups_.size() && groups_[at_].code != 0) ++at_;
        e.end = at_;
        return e;
    }

    // Entities up to one of the `stops` (not consumed) or the end of the groups.
    std::vector<Entity> entities(std::initializer_list<std::string_view> stops) {
        std::vector<Entity> out;
        auto stopped = [&] {
            for (std::string_view stop : stops) {
                if (isZero(groups_[at_], stop)) return true;
            }
            return false;
        };
        while (at_ < groups_.size() && groups_[at_].code != 0) ++at_; // the section's name
        while (at_ < groups_.size() && !stopped()) {
            Entity e = nextEntity();
            if (e.type == "POLYLINE") {
                while (at_ < groups_.size() && isZero(groups_[at_], "VERTEX"))
                    e.vertices.push_back(nextEntity());
                if (at_ < groups_.size() && isZero(groups_[at_], "SEQEND")) nextEntity();
            }
            out.push_back(std::move(e));
        }
        return out;
    }

    DxfFile& file_;
    const std::vector<Group>& groups_;
    std::size_t at_ = 0;
};

} // namespace

double insUnitsToMillimetres(long long code) {
    switch (code) {
    case 1:
        return 25.4;
    case 2:
        return 304.8;
    case 4:
        return 1;
    case 5:
        return 10;
    case 6:
        return 1000;
    case 8:
        return 2.54e-5;
    case 9:
        return 0.0254;
    case 10:
        return 914.4;
    case 14:
        return 100;
    default:
        return 1;
    }
}

std::string upperCase(std::string_view name) {
    std::string out(name);
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return out;
}

Result<DxfFile> readDxfStructure(std::string_view bytes) {
    Result<std::vector<Group>> groups = splitGroups(bytes);
    if (!groups) return Error(groups);
    DxfFile file;
    file.groups = std::move(groups).value();
    Walker(file).run();
    return file;
}

Fields::Fields(const std::vector<Group>& groups, const Entity& entity)
    : groups_(groups), entity_(entity) {
    first_.fill(UINT32_MAX);
    for (std::size_t i = entity.end; i-- > entity.begin;) {
        const int code = groups[i].code;
        if (code < kIndexedCodes)
            first_[static_cast<std::size_t>(code)] = static_cast<std::uint32_t>(i);
    }
}

const Group* Fields::find(int code) const {
    if (code < 0 || code >= kIndexedCodes) return nullptr;
    const std::uint32_t at = first_[static_cast<std::size_t>(code)];
    return at == UINT32_MAX ? nullptr : &groups_[at];
}

double Fields::number(int code, double fallback) {
    const Group* g = find(code);
    if (!g) return fallback;
    const std::optional<double> value = groupNumber(g->value);
    if (!value) {
        damaged_ = true;
        return fallback;
    }
    return *value;
}

long long Fields::integer(int code, long long fallback) {
    const Group* g = find(code);
    if (!g) return fallback;
    const std::optional<long long> value = groupInteger(g->value);
    if (!value) {
        damaged_ = true;
        return fallback;
    }
    return *value;
}

std::string_view Fields::text(int code) const {
    const Group* g = find(code);
    return g ? g->value : std::string_view();
}

} // namespace cad::drawingimport::dxf
