// Small pieces the form definitions share: lengths shown in the document's unit, the
// text a feature's value follows, references joined for a command and the one body
// they lie on, lengths put into commands as typed, and what an edit form started with.
#pragma once

#include "core/CommandRecord.h"
#include "core/Result.h"
#include "core/units/Expression.h"

#include <nlohmann/json.hpp>

#include <QString>
#include <QStringList>

#include <map>
#include <string>
#include <vector>

namespace cad {
class Document;
struct FeatureArgument;
} // namespace cad

namespace cad::ui {

class FeatureForm;

// "12.5": millimetres in the document's unit, without the unit word.
QString lengthText(double millimetres, const Document& document);
// What a value row of an edit form starts with: the expression the value follows,
// else the value itself.
QString valueText(const std::map<std::string, units::Expression>& expressions,
                  const std::string& key, double value, const Document& document);
// A plain number as a row shows it ("22.5"), whatever the locale.
QString plainNumberText(double value);
// What the row of a kind's argument starts with for a stored value: the expression it
// follows when it has one, else the value (a length in the document's unit, a flag as
// "true" or "false", references as a list); a null value: the argument's fallback.
QString argumentText(const FeatureArgument& argument, const nlohmann::json& value,
                     const std::map<std::string, units::Expression>& expressions,
                     const Document& document);
// "a;b;c", as the commands take lists.
std::string joinReferences(const std::vector<std::string>& references);

// The body every reference lies on ("Body1" of "Body1/Edge(...)"), or a sentence: a
// pick of something else, or of two bodies. `what` names the pieces ("edges").
Result<std::string> bodyOfReferences(const Document& document,
                                     const std::vector<std::string>& references,
                                     const std::string& what);

// A length row into the record under its key, as typed, once it evaluates.
Result<void> putLength(CommandRecord& record, const FeatureForm& form, const QString& key);
// The same, except that an empty row is left out (the command's default applies).
Result<void> putOptionalLength(CommandRecord& record, const FeatureForm& form, const QString& key);

// What an edit form's rows held when it opened, so that its command carries only the
// values that differ.
class OpeningValues {
public:
    void take(const FeatureForm& form, const QStringList& keys);
    bool differs(const FeatureForm& form, const QString& key) const;

private:
    std::map<QString, QString> texts_;
};

} // namespace cad::ui
