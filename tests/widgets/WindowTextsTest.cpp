// The window's texts: action tooltips, titles and the names Save As settles on.
#include "ui/widgets/WindowTexts.h"

#include <gtest/gtest.h>

namespace {

using cad::ui::actionTooltip;
using cad::ui::saveAsFileName;
using cad::ui::windowTitleText;

TEST(WindowTexts, SaveAsEndsWithExactlyOneProjectSuffix) {
    const std::pair<const char*, const char*> cases[] = {
        {"a", "a.kv3"},
        {"/home/me/Bracket.Kv3", "/home/me/Bracket.Kv3"},
        {"a.kv3.bak", "a.kv3.bak.kv3"},
        {"/home/me/part.step", "/home/me/part.step.kv3"},
        {"/home/me/v1.2/plate", "/home/me/v1.2/plate.kv3"},
    };
    for (const auto& [chosen, expected] : cases)
        EXPECT_EQ(saveAsFileName(QString::fromUtf8(chosen)), QString::fromUtf8(expected))
            << chosen;
}

TEST(WindowTexts, TitleKeepsDotsInTheNameAndTooltipsAddOnlyWhatIsGiven) {
    EXPECT_EQ(windowTitleText(QStringLiteral("/home/me/bracket.v2.kv3"), true),
              QString::fromUtf8("Korvel Studio — bracket.v2 •"));
    EXPECT_EQ(actionTooltip(QStringLiteral("Box")), QStringLiteral("<b>Box</b>"));
    EXPECT_EQ(actionTooltip(QStringLiteral("Undo"), QStringLiteral("Ctrl+Z"),
                            QStringLiteral("Nothing to undo")),
              QStringLiteral("<b>Undo</b>&nbsp;&nbsp;<span style='color:#a0978c'>Ctrl+Z</span>"
                             "<br><span style='color:#a0978c'>Nothing to undo</span>"));
    EXPECT_EQ(actionTooltip(QStringLiteral("Shell"), {}, QStringLiteral("Hollow a body")),
              QStringLiteral("<b>Shell</b><br><span style='color:#a0978c'>Hollow a body</span>"));
}

} // namespace
