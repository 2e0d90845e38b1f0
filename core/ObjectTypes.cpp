// The object type table.
#include "core/ObjectTypes.h"

namespace cad {

const ObjectType* ObjectTypes::find(std::string_view typeWord) const {
    for (const ObjectType& type : types_)
        if (type.typeWord == typeWord) return &type;
    return nullptr;
}

std::string fileSafeId(std::string_view id) {
    std::string out(id);
    for (char& c : out) {
        bool safe = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                    c == '-' || c == '_';
        if (!safe) c = '_';
    }
    return out;
}

} // namespace cad
