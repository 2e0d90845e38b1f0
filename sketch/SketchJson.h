// Sketches in project files: entities, constraints and patterns as JSON records,
// shared by the project file, get_sketch and footprints.
#pragma once

#include "core/ObjectTypes.h"
#include "core/Result.h"
#include "sketch/SketchConstraint.h"
#include "sketch/SketchEntity.h"

#include <nlohmann/json.hpp>

namespace cad {

nlohmann::ordered_json entityToJson(const SketchEntity& entity);
Result<SketchEntity> entityFromJson(const nlohmann::json& record);
nlohmann::ordered_json constraintToJson(const SketchConstraint& constraint);
Result<SketchConstraint> constraintFromJson(const nlohmann::json& record);

// The "Sketch" type of the project file.
void registerSketchTypes(ObjectTypes& types);

} // namespace cad
