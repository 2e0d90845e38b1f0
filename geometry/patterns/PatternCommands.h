// Registration of this folder's commands and project-file records. Both add the
// parametric kinds first (addPatternKinds), so run them before the parametric ones.
#pragma once

namespace cad {

class CommandRegistry;
class ObjectTypes;

// pattern_bodies, edit_pattern, and combine (which hides its tools afterwards).
// Register these before the parametric commands, so combine is this one.
void registerPatternCommands(CommandRegistry& registry);

// The "PatternSet" record. The kinds' own records come with registerParamTypes,
// which must run after this.
void registerPatternTypes(ObjectTypes& types);

} // namespace cad
