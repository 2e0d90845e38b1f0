// The size field: typed expressions evaluate in the document's unit, and text that
// does not evaluate is marked with the evaluator's sentence.
#include "ui/widgets/LengthEdit.h"

#include "core/units/NameLookup.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using cad::ui::LengthEdit;

TEST(LengthEdit, EvaluatesInTheDocumentUnitAndMarksWhatDoesNotEvaluate) {
    cad::units::Length unit = cad::units::Length::Millimeters;
    cad::units::installDefaultResolver(
        [](std::string_view name) -> cad::Result<cad::units::Quantity> {
            if (name == "width") return cad::units::Quantity{40.0, true};
            return cad::Error{"There's no parameter named '" + std::string(name) + "'."};
        },
        [&unit] { return unit; });

    LengthEdit edit;
    QSignalSpy validity(&edit, &LengthEdit::validityChanged);
    edit.setText(QStringLiteral("10 + 2mm"));
    ASSERT_TRUE(edit.isValid());
    EXPECT_DOUBLE_EQ(edit.value().value(), 12.0);
    EXPECT_FALSE(edit.property("error").toBool());

    edit.setText(QStringLiteral("width / 2"));
    EXPECT_DOUBLE_EQ(edit.value().value(), 20.0);

    // Bare numbers are in the document's unit.
    unit = cad::units::Length::Inches;
    edit.setText(QStringLiteral("1"));
    EXPECT_DOUBLE_EQ(edit.value().value(), 25.4);

    edit.setText(QStringLiteral("10 +"));
    EXPECT_FALSE(edit.isValid());
    EXPECT_TRUE(edit.property("error").toBool());
    EXPECT_FALSE(edit.errorText().isEmpty());
    EXPECT_EQ(edit.toolTip(), edit.errorText());
    EXPECT_GE(validity.count(), 2);

    // An empty field is not valid, but it is not painted as an error either.
    edit.clear();
    EXPECT_FALSE(edit.isValid());
    EXPECT_FALSE(edit.property("error").toBool());

    edit.setKind(LengthEdit::Kind::Number);
    edit.setText(QStringLiteral("3in"));
    EXPECT_FALSE(edit.isValid());
    cad::units::installDefaultResolver({}, {});
}
