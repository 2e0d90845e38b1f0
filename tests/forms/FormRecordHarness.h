// A form loaded without a view, on any test document: its rows filled as its opener
// fills them, then checked as every change checks it.
#pragma once

#include "core/units/NameLookup.h"
#include "ui/forms/FeatureForm.h"
#include "ui/forms/FormDefinition.h"

#include <memory>
#include <string>
#include <vector>

namespace cad::testing {

template <typename Model> class FormHarness : public Model {
protected:
    ui::FeatureForm& load(ui::FormDefinition definition) {
        definition_ = std::move(definition);
        form_ = std::make_unique<ui::FeatureForm>(&this->document);
        definition_.setup(*form_);
        return *form_;
    }
    // One check; the command's call text, or "! " and the message.
    std::string check() {
        units::ScopedParameterLookup scope(this->document.parameterLookup(),
                                           this->document.lengthUnit());
        Result<CommandRecord> record = ui::checkForm(definition_, *form_);
        return record ? record->toCall() : "! " + record.error();
    }
    CommandRecord record() {
        units::ScopedParameterLookup scope(this->document.parameterLookup(),
                                           this->document.lengthUnit());
        return ui::checkForm(definition_, *form_).value();
    }
    std::vector<CommandRecord> before() { return definition_.before(*form_).value(); }

    ui::FormDefinition definition_;
    std::unique_ptr<ui::FeatureForm> form_;
};

} // namespace cad::testing
