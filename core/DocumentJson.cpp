// Writing and reading the document JSON. Reading checks every key it uses and
// answers the first problem as a phrase; nothing here throws.
#include "core/DocumentJson.h"

#include "core/GeometryObject.h"

#include <Standard_Failure.hxx>

#include <exception>

#include <set>

namespace cad {

namespace {

using ordered_json = nlohmann::ordered_json;
using json = nlohmann::json;

ordered_json commonKeys(const DocumentObject& o) {
    ordered_json r = ordered_json::object();
    r["type"] = std::string(o.typeName());
    r["name"] = o.id;
    if (!o.label.empty()) r["label"] = o.label;
    if (!o.visible) r["visible"] = false;
    if (auto* f = dynamic_cast<const FeatureObject*>(&o); f && f->suppressed)
        r["suppressed"] = true;
    if (!o.component.empty()) r["component"] = o.component;
    if (!o.material.empty()) r["material"] = o.material;
    if (!o.appearance.empty()) r["appearance"] = o.appearance;
    if (!o.faceAppearances.empty()) {
        ordered_json faces = ordered_json::object();
        for (const auto& [face, look] : o.faceAppearances) faces[face] = look;
        r["face_appearances"] = faces;
    }
    return r;
}

// Reads an optional string key; false when present but not a string.
bool optionalString(const json& record, const char* key, std::string& out) {
    auto it = record.find(key);
    if (it == record.end()) return true;
    if (!it->is_string()) return false;
    out = it->get<std::string>();
    return true;
}

Result<void> readCommonKeys(DocumentObject& o, const json& r) {
    if (!optionalString(r, "label", o.label)) return fail("\"label\" must be a string");
    if (auto it = r.find("visible"); it != r.end()) {
        if (!it->is_boolean()) return fail("\"visible\" must be true or false");
        o.visible = it->get<bool>();
    }
    if (auto it = r.find("suppressed"); it != r.end()) {
        auto* f = dynamic_cast<FeatureObject*>(&o);
        if (!it->is_boolean()) return fail("\"suppressed\" must be true or false");
        if (f) f->suppressed = it->get<bool>();
    }
    if (!optionalString(r, "component", o.component)) return fail("\"component\" must be a string");
    if (!optionalString(r, "material", o.material)) return fail("\"material\" must be a string");
    if (!optionalString(r, "appearance", o.appearance))
        return fail("\"appearance\" must be a string");
    if (auto it = r.find("face_appearances"); it != r.end()) {
        if (!it->is_object()) return fail("\"face_appearances\" must be an object");
        for (auto face = it->begin(); face != it->end(); ++face) {
            if (!face->is_string()) return fail("face appearances must be strings");
            o.faceAppearances[face.key()] = face->get<std::string>();
        }
    }
    return {};
}

Result<void> readSettings(const json& settings, Document& doc) {
    if (!settings.is_object()) return fail("\"settings\" must be an object");
    if (auto it = settings.find("lengthUnit"); it != settings.end()) {
        std::string text = it->is_string() ? it->get<std::string>() : it->dump();
        std::optional<units::Length> unit =
            it->is_string() ? units::parseUnitName(text) : std::nullopt;
        if (!unit) return fail("unknown length unit \"" + text + "\"");
        doc.setLengthUnit(*unit);
    }
    std::string material;
    if (!optionalString(settings, "defaultMaterial", material))
        return fail("settings: \"defaultMaterial\" must be a string");
    doc.setDefaultMaterial(material);
    if (auto it = settings.find("idCounters"); it != settings.end()) {
        if (!it->is_object()) return fail("settings: \"idCounters\" must be an object");
        std::map<std::string, int> counters = doc.idCounters();
        for (auto c = it->begin(); c != it->end(); ++c) {
            if (!c->is_number_integer() || c->get<std::int64_t>() < 0 ||
                c->get<std::int64_t>() > 2147483647)
                return fail("settings: idCounters." + c.key() + " must be a whole number");
            int& counter = counters[c.key()];
            counter = std::max(counter, c->get<int>());
        }
        doc.setIdCounters(std::move(counters));
    }
    return {};
}

Result<void> readParameters(const json& list, Document& doc) {
    if (!list.is_array()) return fail("\"parameters\" must be an array");
    std::vector<Parameter> parameters;
    for (const json& p : list) {
        Parameter parameter;
        if (!p.is_object() || !p.contains("name") || !p["name"].is_string() ||
            !p.contains("expression") || !p["expression"].is_string() ||
            p["name"].get<std::string>().empty() || p["expression"].get<std::string>().empty())
            return fail("a parameter needs a name and an expression");
        parameter.name = p["name"].get<std::string>();
        parameter.expression = p["expression"].get<std::string>();
        if (auto it = p.find("unit"); it != p.end() && it->is_string())
            parameter.unit =
                units::parseUnitName(it->get<std::string>()).value_or(units::Length::Millimeters);
        if (auto it = p.find("isLength"); it != p.end() && it->is_boolean())
            parameter.isLength = it->get<bool>();
        if (!optionalString(p, "comment", parameter.comment))
            return fail("a parameter's comment must be a string");
        parameters.push_back(std::move(parameter));
    }
    doc.setParameters(std::move(parameters));
    return {};
}

std::string nounOf(const ObjectTypes& types, std::string_view typeWord) {
    const ObjectType* type = types.find(typeWord);
    return type ? type->noun : std::string(typeWord);
}

// Every feature in exactly one body, and every object's references present.
Result<void> crossCheck(const Document& doc, const ObjectTypes& types) {
    std::set<std::string, std::less<>> claimed;
    for (const auto& o : doc.objects()) {
        auto* body = dynamic_cast<const GeometryObject*>(o.get());
        if (!body) continue;
        for (const std::string& feature : body->features) {
            if (!dynamic_cast<const FeatureObject*>(doc.find(feature)))
                return fail("body " + body->id + ": no feature named \"" + feature + "\"");
            if (!claimed.insert(feature).second)
                return fail("feature \"" + feature + "\" belongs to more than one body");
        }
    }
    for (const auto& o : doc.objects()) {
        auto* feature = dynamic_cast<const FeatureObject*>(o.get());
        for (const std::string& id : feature ? feature->references() : o->dependencies())
            if (!doc.find(id))
                return fail(nounOf(types, o->typeName()) + " " + o->id + ": no object named \"" +
                            id + "\"");
    }
    return {};
}

} // namespace

nlohmann::ordered_json writeDocumentJson(const Document& document, SideFiles& sideFiles,
                                         const ObjectTypes& types) {
    ordered_json root = ordered_json::object();
    ordered_json settings = ordered_json::object();
    settings["lengthUnit"] = std::string(units::unitAbbreviation(document.lengthUnit()));
    if (!document.defaultMaterial().empty())
        settings["defaultMaterial"] = document.defaultMaterial();
    if (!document.rollback().empty()) settings["rollback"] = document.rollback();
    if (!document.idCounters().empty()) {
        ordered_json counters = ordered_json::object();
        for (const auto& [prefix, n] : document.idCounters()) counters[prefix] = n;
        settings["idCounters"] = counters;
    }
    root["settings"] = settings;

    if (!document.parameters().empty()) {
        ordered_json list = ordered_json::array();
        for (const Parameter& p : document.parameters()) {
            ordered_json item = ordered_json::object();
            item["name"] = p.name;
            item["expression"] = p.expression;
            item["unit"] = std::string(units::unitAbbreviation(p.unit));
            item["isLength"] = p.isLength;
            if (!p.comment.empty()) item["comment"] = p.comment;
            list.push_back(item);
        }
        root["parameters"] = list;
    }

    ordered_json objects = ordered_json::array();
    for (const auto& o : document.objects()) {
        ordered_json record = commonKeys(*o);
        if (const ObjectType* type = types.find(o->typeName()); type && type->write)
            type->write(*o, record, sideFiles);
        objects.push_back(std::move(record));
    }
    root["objects"] = objects;
    return root;
}

namespace {

Result<void> readRecords(const nlohmann::json& root, const ArchiveReader& archive,
                         const ObjectTypes& types, Document& doc) {
    if (!root.is_object()) return fail("the document must be a JSON object");
    std::string rollback;
    if (auto it = root.find("settings"); it != root.end()) {
        if (Result<void> ok = readSettings(*it, doc); !ok) return ok;
        if (!optionalString(*it, "rollback", rollback))
            return fail("settings: \"rollback\" must be a string");
    }
    if (auto it = root.find("parameters"); it != root.end())
        if (Result<void> ok = readParameters(*it, doc); !ok) return ok;

    auto objects = root.find("objects");
    if (objects != root.end()) {
        if (!objects->is_array()) return fail("\"objects\" must be an array");
        for (const json& record : *objects) {
            if (!record.is_object()) return fail("every object must be a JSON object");
            auto typeKey = record.find("type");
            std::string typeWord =
                typeKey != record.end() && typeKey->is_string() ? typeKey->get<std::string>() : "";
            const ObjectType* type = types.find(typeWord);
            if (!type) return fail("unknown object type \"" + typeWord + "\"");
            auto nameKey = record.find("name");
            std::string name =
                nameKey != record.end() && nameKey->is_string() ? nameKey->get<std::string>() : "";
            if (name.empty() || doc.find(name))
                return fail("duplicate or empty object name \"" + name + "\"");

            std::unique_ptr<DocumentObject> object = type->create();
            object->id = name;
            const std::string prefix = type->noun + " " + name + ": ";
            if (Result<void> ok = readCommonKeys(*object, record); !ok)
                return ok.withPrefix(prefix);
            if (type->read)
                if (Result<void> ok = type->read(*object, record, archive); !ok)
                    return ok.withPrefix(prefix);
            doc.add(std::move(object));
        }
    }
    return crossCheck(doc, types);
}

// The rollback the file was saved with (checked by the reader above).
std::string savedRollback(const nlohmann::json& root) {
    auto settings = root.find("settings");
    if (settings == root.end() || !settings->is_object()) return {};
    auto rollback = settings->find("rollback");
    return rollback != settings->end() && rollback->is_string() ? rollback->get<std::string>()
                                                                : std::string();
}

} // namespace

Result<void> readDocumentRecords(const nlohmann::json& root, const ArchiveReader& archive,
                                 const ObjectTypes& types, Document& doc) {
    // The readers check every key they take; this keeps a slip in one of them (or
    // in a shape reader) a damaged file rather than an escaped exception.
    try {
        return readRecords(root, archive, types, doc);
    } catch (const std::exception& e) {
        return fail(e.what());
    } catch (const Standard_Failure& e) {
        return fail(e.GetMessageString());
    }
}

Result<void> computeReadDocument(const nlohmann::json& root, Document& doc) {
    try {
        doc.setRollback(savedRollback(root), false);
        doc.recomputeAll();
        return {};
    } catch (const std::exception& e) {
        return fail(e.what());
    } catch (const Standard_Failure& e) {
        return fail(e.GetMessageString());
    }
}

Result<void> readDocumentJson(const nlohmann::json& root, const ArchiveReader& archive,
                              const ObjectTypes& types, Document& doc) {
    if (Result<void> ok = readDocumentRecords(root, archive, types, doc); !ok) return ok;
    return computeReadDocument(root, doc);
}

} // namespace cad
