// A row of tool groups; what does not fit moves, from the right, into "More tools".
#include "ui/widgets/ToolStrip.h"

#include "ui/widgets/Icons.h"
#include "ui/widgets/ToolGroup.h"

#include <QAction>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

namespace cad::ui {

namespace {
constexpr int kSpacing = 2;
}

ToolStrip::ToolStrip(const QString& objectName, QWidget* parent) : QWidget(parent) {
    setObjectName(objectName);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    layout_ = new QHBoxLayout(this);
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(kSpacing);
    // The strip decides itself what fits; the layout must not force a minimum width.
    layout_->setSizeConstraint(QLayout::SetNoConstraint);
    layout_->addStretch(1);

    overflow_ = new QToolButton(this);
    overflow_->setObjectName(QStringLiteral("overflowButton"));
    overflow_->setToolTip(QStringLiteral("More tools"));
    overflow_->setIcon(icon(QStringLiteral("caret-down")));
    overflow_->setIconSize(QSize(18, 18));
    overflow_->setAutoRaise(true);
    overflow_->setPopupMode(QToolButton::InstantPopup);
    overflowMenu_ = new QMenu(overflow_);
    overflow_->setMenu(overflowMenu_);
    connect(overflowMenu_, &QMenu::aboutToShow, this, &ToolStrip::fillOverflowMenu);
    overflow_->hide();
    layout_->addWidget(overflow_);
}

void ToolStrip::addGroup(ToolGroup* group) {
    group->setParent(this);
    // Before the stretch: [group, divider, group, ..., stretch, overflow].
    int at = layout_->count() - 2;
    if (!groups_.isEmpty()) {
        auto* divider = new QFrame(this);
        divider->setObjectName(QStringLiteral("topBarDivider"));
        // The theme draws it: a one-pixel line with room either side.
        divider->setFrameShape(QFrame::NoFrame);
        divider->setAttribute(Qt::WA_StyledBackground);
        layout_->insertWidget(at++, divider);
        dividers_ << divider;
    }
    layout_->insertWidget(at, group);
    groups_ << group;
    group->show();
    relayout();
}

ToolGroup* ToolStrip::group(const QString& key) const {
    for (ToolGroup* candidate : groups_)
        if (candidate->key() == key) return candidate;
    return nullptr;
}

QList<ToolGroup*> ToolStrip::overflowGroups() const {
    QList<ToolGroup*> hidden;
    for (ToolGroup* candidate : groups_)
        if (candidate->isHidden()) hidden << candidate;
    return hidden;
}

QSize ToolStrip::sizeHint() const {
    int width = 0;
    int height = overflow_->sizeHint().height();
    for (int i = 0; i < groups_.size(); ++i) {
        const QSize hint = groups_[i]->sizeHint();
        width += hint.width() + (i > 0 ? dividers_[i - 1]->sizeHint().width() + 2 * kSpacing : 0);
        height = std::max(height, hint.height());
    }
    return {width, height};
}

// Every group can move into the overflow menu, leaving only its button.
QSize ToolStrip::minimumSizeHint() const { return overflow_->sizeHint(); }

bool ToolStrip::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) relayout();
    return handled;
}

void ToolStrip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    relayout();
}

// Groups are kept from the left while they fit; the rest go behind the overflow button.
void ToolStrip::relayout() {
    if (relaying_) return;
    relaying_ = true;
    const QMargins margins = layout_->contentsMargins();
    const int available = width() - margins.left() - margins.right();
    int total = 0;
    QList<int> needs;
    for (int i = 0; i < groups_.size(); ++i) {
        int need = groups_[i]->sizeHint().width();
        if (i > 0) need += dividers_[i - 1]->sizeHint().width() + 2 * kSpacing;
        needs << need;
        total += need;
    }
    int fitting = groups_.size();
    if (total > available) {
        const int room = available - overflow_->sizeHint().width() - kSpacing;
        int used = 0;
        fitting = 0;
        while (fitting < groups_.size() && used + needs[fitting] <= room) used += needs[fitting++];
    }
    for (int i = 0; i < groups_.size(); ++i) {
        groups_[i]->setVisible(i < fitting);
        if (i > 0) dividers_[i - 1]->setVisible(i < fitting);
    }
    overflow_->setVisible(fitting < groups_.size());
    relaying_ = false;
}

void ToolStrip::fillOverflowMenu() {
    overflowMenu_->clear();
    for (ToolGroup* hidden : overflowGroups()) {
        overflowMenu_->addSection(hidden->title());
        for (QAction* action : hidden->allActions()) overflowMenu_->addAction(action);
    }
}

} // namespace cad::ui
