// The looks panel's lists (presets and materials by category, with swatches), its
// targets and picks, the commands it runs and what it says about the targets.
#include "ui/panels/LooksPanel.h"

#include "core/Document.h"
#include "core/GeometryObject.h"
#include "core/TextCase.h"
#include "geometry/materials/BodyMaterial.h"
#include "geometry/materials/LookTargets.h"
#include "geometry/materials/MaterialTables.h"
#include "ui/panels/PendingChanges.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/OverlayPanel.h"

#include <BRepGProp.hxx>
#include <GProp_GProps.hxx>

#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace cad::ui {

namespace {

constexpr int kCardWidth = 330;
constexpr int kListHeight = 300;
constexpr int kSwatch = 14;
constexpr const char* kListStyle =
    "QTreeWidget { background: transparent; border: none; outline: 0; font-size: 9pt; }"
    "QTreeWidget::item { padding: 2px 2px; border-radius: 4px; }"
    "QTreeWidget::item:hover { background: rgba(255, 255, 255, 0.06); }"
    "QTreeWidget::item:selected { background: rgba(208, 128, 69, 0.3); color: #f1eee6; }";

QString fromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(std::clamp(color.red, 0.0, 1.0)),
                            static_cast<float>(std::clamp(color.green, 0.0, 1.0)),
                            static_cast<float>(std::clamp(color.blue, 0.0, 1.0)));
}

// A rounded square of the colour; see-through looks show a checker through it.
QIcon swatch(const Color& color, double opacity) {
    QPixmap pixmap(kSwatch * 2, kSwatch * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(0.5, 0.5, kSwatch - 1, kSwatch - 1), 3, 3);
    painter.setClipPath(path);
    if (opacity < 1) {
        const int cell = kSwatch / 2;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 2; ++x)
                painter.fillRect(x * cell, y * cell, cell, cell,
                                 (x + y) % 2 ? QColor(0x9a, 0x93, 0x88) : QColor(0x3a, 0x35, 0x30));
    }
    QColor fill = toQColor(color);
    fill.setAlphaF(static_cast<float>(std::clamp(opacity, 0.2, 1.0)));
    painter.fillPath(path, fill);
    painter.setClipping(false);
    painter.setPen(QPen(QColor(255, 255, 255, 70), 1));
    painter.drawPath(path);
    return QIcon(pixmap);
}

QTreeWidget* makeList(QWidget* parent, const QString& name, int columns) {
    auto* list = new QTreeWidget(parent);
    list->setObjectName(name);
    list->setColumnCount(columns);
    list->setHeaderHidden(true);
    list->setRootIsDecorated(false);
    list->setIndentation(10);
    list->setIconSize(QSize(kSwatch, kSwatch));
    list->setUniformRowHeights(true);
    list->setMinimumHeight(kListHeight);
    list->setStyleSheet(QString::fromLatin1(kListStyle));
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    if (columns > 1) list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    return list;
}

// A category heading: not a choice itself, its choices below it.
QTreeWidgetItem* heading(QTreeWidget* list, std::string_view category) {
    auto* item = new QTreeWidgetItem(list, {fromView(category)});
    item->setFlags(Qt::ItemIsEnabled);
    QFont font = item->font(0);
    font.setBold(true);
    item->setFont(0, font);
    item->setFirstColumnSpanned(true);
    item->setExpanded(true);
    return item;
}

QTreeWidgetItem* noneRow(QTreeWidget* list, const QString& tooltip) {
    auto* none = new QTreeWidgetItem(list, {QStringLiteral("None")});
    none->setData(0, LooksPanel::kIdRole, QString());
    none->setToolTip(0, tooltip);
    none->setFirstColumnSpanned(true);
    return none;
}

// Kilograms with three significant digits ("0.0162 kg", "12.300 kg" reads "12.3 kg").
QString massText(double kilograms) {
    if (!(kilograms > 0)) return QStringLiteral("0 kg");
    const int decimals =
        std::clamp(2 - static_cast<int>(std::floor(std::log10(kilograms))), 0, 12);
    QString text = QString::number(kilograms, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0'))) text.chop(1);
        if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    }
    return text + QStringLiteral(" kg");
}

std::optional<double> volumeOf(const DocumentObject& object) {
    const auto* body = dynamic_cast<const GeometryObject*>(&object);
    if (!body || body->shape.isNull()) return std::nullopt;
    GProp_GProps properties;
    BRepGProp::VolumeProperties(body->shape.shape(), properties);
    return std::abs(properties.Mass());
}

// The targets as the commands take them: "Body1/Extrude1.end; Body2".
std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) text += (text.empty() ? "" : "; ") + item;
    return text;
}

// A face target's body and face name; the whole object (no face) otherwise.
struct TargetParts {
    DocumentObject* object = nullptr;
    std::string face;
};

TargetParts partsOf(const Document& document, const std::string& target) {
    const std::size_t slash = target.find('/');
    if (slash == std::string::npos) {
        DocumentObject* object = document.findByName(target);
        return {object && isBodyOrComponent(*object) ? object : nullptr, {}};
    }
    DocumentObject* owner = document.findByName(trimmed(std::string_view(target).substr(0, slash)));
    if (!dynamic_cast<GeometryObject*>(owner)) return {};
    return {owner, std::string(trimmed(std::string_view(target).substr(slash + 1)))};
}

} // namespace

LooksPanel::LooksPanel(Document& document, Runner run, QWidget* parent)
    : QFrame(parent), document_(document), run_(std::move(run)),
      changes_(new PendingChanges(document, [this] { refresh(); }, this)) {
    setObjectName(QStringLiteral("looksPanel"));
    setFixedWidth(kCardWidth);
    chooseColor_ = [this](const QColor& initial) -> std::optional<QColor> {
        const QColor chosen = QColorDialog::getColor(initial, this, QStringLiteral("Custom Color"));
        if (!chosen.isValid()) return std::nullopt;
        return chosen;
    };

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(12, 10, 12, 12);
    outer->setSpacing(8);

    auto* header = new QHBoxLayout;
    header->setSpacing(6);
    icon_ = new QLabel(this);
    icon_->setFixedSize(14, 14);
    title_ = new QLabel(this);
    title_->setObjectName(QStringLiteral("panelTitle"));
    close_ = new QToolButton(this);
    close_->setObjectName(QStringLiteral("closeLooks"));
    close_->setIcon(icon(QStringLiteral("close")));
    close_->setToolTip(QStringLiteral("Close"));
    close_->setAutoRaise(true);
    connect(close_, &QToolButton::clicked, this, &LooksPanel::dismiss);
    header->addWidget(icon_);
    header->addWidget(title_, 1);
    header->addWidget(close_);
    outer->addLayout(header);

    targetsLabel_ = new QLabel(this);
    targetsLabel_->setObjectName(QStringLiteral("panelSubtitle"));
    targetsLabel_->setWordWrap(true);
    outer->addWidget(targetsLabel_);
    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("fieldLabel"));
    summary_->setWordWrap(true);
    outer->addWidget(summary_);

    pages_ = new QStackedWidget(this);
    auto* appearancePage = new QWidget(pages_);
    auto* appearanceColumn = new QVBoxLayout(appearancePage);
    appearanceColumn->setContentsMargins(0, 0, 0, 0);
    appearanceColumn->setSpacing(6);
    appearances_ = makeList(appearancePage, QStringLiteral("appearanceList"), 1);
    appearanceColumn->addWidget(appearances_);
    auto* customRow = new QHBoxLayout;
    custom_ = new QPushButton(QStringLiteral("Custom color..."), appearancePage);
    custom_->setObjectName(QStringLiteral("customColor"));
    finish_ = new QComboBox(appearancePage);
    finish_->setObjectName(QStringLiteral("customFinish"));
    finish_->setToolTip(QStringLiteral("How a custom color takes light"));
    for (int number = 0; number <= 5; ++number)
        finish_->addItem(fromView(finishName(finishFromNumber(number))));
    finish_->setCurrentIndex(static_cast<int>(Finish::Matte));
    customRow->addWidget(custom_, 1);
    customRow->addWidget(finish_);
    appearanceColumn->addLayout(customRow);
    connect(custom_, &QPushButton::clicked, this, [this] { chooseCustomColor(); });
    pages_->addWidget(appearancePage);

    materials_ = makeList(pages_, QStringLiteral("materialList"), 2);
    pages_->addWidget(materials_);
    outer->addWidget(pages_);

    message_ = new QLabel(this);
    message_->setObjectName(QStringLiteral("panelMessage"));
    message_->setWordWrap(true);
    outer->addWidget(message_);

    buildAppearanceList();
    buildMaterialList();
    for (QTreeWidget* list : {appearances_, materials_}) {
        connect(list, &QTreeWidget::itemClicked, this,
                [this](QTreeWidgetItem* item) { rowChosen(item); });
        connect(list, &QTreeWidget::itemActivated, this,
                [this](QTreeWidgetItem* item) { rowChosen(item); });
    }
    open(LooksMode::Appearance, {});
    hide();
}

LooksPanel::~LooksPanel() = default;

void LooksPanel::buildAppearanceList() {
    noneRow(appearances_, QStringLiteral("Take the painted appearance off"));
    QTreeWidgetItem* group = nullptr;
    for (const AppearancePreset& preset : appearancePresets()) {
        if (!group || group->text(0) != fromView(preset.category))
            group = heading(appearances_, preset.category);
        auto* item = new QTreeWidgetItem(group, {fromView(preset.name)});
        item->setIcon(0, swatch(preset.color, preset.opacity));
        item->setData(0, kIdRole, fromView(preset.id));
        QString tip = QStringLiteral("%1 finish, %2")
                          .arg(fromView(finishName(preset.finish)),
                               QString::fromStdString(colorText(preset.color)));
        if (preset.opacity < 1)
            tip += QStringLiteral(", %1% opaque").arg(std::lround(preset.opacity * 100));
        item->setToolTip(0, tip);
    }
}

void LooksPanel::buildMaterialList() {
    noneRow(materials_, QStringLiteral("Take the physical material off"));
    QTreeWidgetItem* group = nullptr;
    for (const Material& material : materials()) {
        if (!group || group->text(0) != fromView(material.category))
            group = heading(materials_, material.category);
        const QString density =
            QString::number(material.densityKgM3, 'f', 0) + QStringLiteral(" kg/m³");
        auto* item = new QTreeWidgetItem(group, {fromView(material.name), density});
        item->setData(0, kIdRole, fromView(material.id));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        if (const AppearancePreset* look = findAppearancePreset(material.appearance)) {
            item->setIcon(0, swatch(look->color, look->opacity));
            item->setToolTip(0, QStringLiteral("Density %1, looks %2")
                                    .arg(density, fromView(look->name)));
        }
    }
}

void LooksPanel::open(LooksMode mode, const std::vector<std::string>& targets) {
    mode_ = mode;
    const bool material = mode == LooksMode::Material;
    title_->setText(material ? QStringLiteral("Physical Material") : QStringLiteral("Appearance"));
    icon_->setPixmap(icon(material ? QStringLiteral("material") : QStringLiteral("appearance"))
                         .pixmap(QSize(14, 14)));
    pages_->setCurrentIndex(material ? 1 : 0);
    showMessage({}, false);
    (material ? materials_ : appearances_)->scrollToTop();
    setTargets(targets);
    show();
    raise();
}

void LooksPanel::dismiss() {
    if (!isVisible()) return;
    hide();
    emit closed();
}

void LooksPanel::setTargets(const std::vector<std::string>& targets) {
    targets_.clear();
    for (const std::string& target : targets) {
        const TargetParts parts = partsOf(document_, target);
        if (!parts.object) continue;
        // Faces keep the name the picks gave; whole objects go by their IDs.
        std::string kept =
            parts.face.empty() ? parts.object->id : parts.object->id + "/" + parts.face;
        if (std::find(targets_.begin(), targets_.end(), kept) == targets_.end())
            targets_.push_back(std::move(kept));
    }
    refresh();
}

void LooksPanel::picked(const std::vector<std::string>& references) {
    std::vector<std::string> clicked;
    for (const std::string& reference : references) {
        const TargetParts parts = partsOf(document_, reference);
        if (!parts.object) continue;
        clicked.push_back(mode_ == LooksMode::Material || parts.face.empty()
                              ? parts.object->id
                              : parts.object->id + "/" + parts.face);
    }
    if (clicked.empty()) return;
    const auto has = [this](const std::string& target) {
        return std::find(targets_.begin(), targets_.end(), target) != targets_.end();
    };
    std::vector<std::string> next = targets_;
    if (std::all_of(clicked.begin(), clicked.end(), has))
        std::erase_if(next, [&](const std::string& target) {
            return std::find(clicked.begin(), clicked.end(), target) != clicked.end();
        });
    else
        next.insert(next.end(), clicked.begin(), clicked.end());
    showMessage({}, false);
    setTargets(next);
}

std::vector<std::string> LooksPanel::materialTargets() const {
    std::vector<std::string> objects;
    for (const std::string& target : targets_) {
        const TargetParts parts = partsOf(document_, target);
        if (parts.object &&
            std::find(objects.begin(), objects.end(), parts.object->id) == objects.end())
            objects.push_back(parts.object->id);
    }
    return objects;
}

bool LooksPanel::applyAppearance(const QString& text) {
    if (targets_.empty()) {
        showMessage(targetText(), true);
        return false;
    }
    CommandRecord record("set_appearance");
    record.set("targets", joined(targets_).c_str()).set("appearance", text.toStdString().c_str());
    return run(record);
}

bool LooksPanel::applyMaterial(const QString& id) {
    const std::vector<std::string> objects = materialTargets();
    if (objects.empty()) {
        showMessage(targetText(), true);
        return false;
    }
    CommandRecord record("set_material");
    record.set("objects", joined(objects).c_str()).set("material", id.toStdString().c_str());
    return run(record);
}

bool LooksPanel::chooseCustomColor() {
    if (targets_.empty()) {
        showMessage(targetText(), true);
        return false;
    }
    const std::optional<QColor> chosen = chooseColor_ ? chooseColor_(currentColor()) : std::nullopt;
    if (!chosen || !chosen->isValid()) return false;
    const Color color{chosen->redF(), chosen->greenF(), chosen->blueF()};
    return applyAppearance(QString::fromStdString(colorText(color)) + QLatin1Char('/') +
                           finish_->currentText());
}

QColor LooksPanel::currentColor() const {
    if (!targets_.empty()) {
        const TargetParts parts = partsOf(document_, targets_.front());
        std::optional<Appearance> look;
        if (parts.object)
            look = parts.face.empty() ? lookOf(document_, *parts.object)
                                      : lookOfFace(document_, *parts.object, parts.face);
        if (look) return toQColor(look->color);
    }
    return QColor(0x3a, 0x7b, 0xd5);
}

void LooksPanel::rowChosen(QTreeWidgetItem* item) {
    const QVariant id = item ? item->data(0, kIdRole) : QVariant();
    if (!id.isValid()) return; // a category heading
    if (mode_ == LooksMode::Material)
        applyMaterial(id.toString());
    else
        applyAppearance(id.toString());
}

bool LooksPanel::run(const CommandRecord& record) {
    const CommandResult result = run_ ? run_(record) : CommandResult::failure("Nothing runs here.");
    showMessage(QString::fromStdString(result.message), !result.ok);
    refresh();
    return result.ok;
}

void LooksPanel::refresh() {
    changes_->settle();
    changes_->clear();
    // Targets whose object went (deleted, undone) go with it.
    std::erase_if(targets_, [this](const std::string& target) {
        return !partsOf(document_, target).object;
    });
    targetsLabel_->setText(targetText());
    summary_->setText(summary());
    summary_->setVisible(!summary_->text().isEmpty());
    markCurrentRow();
}

QString LooksPanel::targetText() const {
    if (!targets_.empty()) return describeTargets();
    return mode_ == LooksMode::Material
               ? QStringLiteral("Pick a body in the browser, or one of its faces in the view.")
               : QStringLiteral("Pick faces in the view, or bodies in the browser, to paint.");
}

QString LooksPanel::describeTargets() const {
    QStringList names;
    const std::vector<std::string> shown =
        mode_ == LooksMode::Material ? materialTargets() : targets_;
    for (const std::string& target : shown) {
        const TargetParts parts = partsOf(document_, target);
        if (!parts.object) continue;
        QString name = QString::fromStdString(parts.object->displayName());
        if (!parts.face.empty()) name += QLatin1Char('/') + QString::fromStdString(parts.face);
        names << name;
    }
    return names.join(QStringLiteral(", "));
}

QString LooksPanel::summary() const {
    if (mode_ == LooksMode::Appearance) return describeLooks();
    QStringList lines;
    for (const std::string& id : materialTargets()) {
        const DocumentObject* object = document_.find(id);
        if (!object) continue;
        QString line = QString::fromStdString(object->displayName()) + QStringLiteral(": ");
        const Material* material = materialOf(document_, *object);
        if (!material) {
            lines << line + QStringLiteral("no physical material");
            continue;
        }
        line += fromView(material->name);
        if (const std::optional<double> volume = volumeOf(*object))
            line += QStringLiteral(" · Mass ") +
                    massText(massKilograms(material->densityKgM3, *volume));
        lines << line;
    }
    return lines.join(QLatin1Char('\n'));
}

QString LooksPanel::describeLooks() const {
    QStringList lines;
    for (const std::string& target : targets_) {
        const TargetParts parts = partsOf(document_, target);
        if (!parts.object) continue;
        const std::optional<Appearance> look =
            parts.face.empty() ? lookOf(document_, *parts.object)
                               : lookOfFace(document_, *parts.object, parts.face);
        QString name = QString::fromStdString(parts.object->displayName());
        if (!parts.face.empty()) name += QLatin1Char('/') + QString::fromStdString(parts.face);
        QString what = QStringLiteral("default look");
        if (look && look->name == "Custom")
            what = QStringLiteral("Custom ") + QString::fromStdString(look->text);
        else if (look)
            what = QString::fromStdString(look->name);
        lines << name + QStringLiteral(": ") + what;
    }
    return lines.join(QLatin1Char('\n'));
}

void LooksPanel::markCurrentRow() {
    // The row of what the first target carries itself: its own appearance or material.
    QTreeWidget* list = mode_ == LooksMode::Material ? materials_ : appearances_;
    QString own;
    bool known = false;
    if (!targets_.empty()) {
        const TargetParts parts = partsOf(document_, targets_.front());
        if (parts.object) {
            known = true;
            if (mode_ == LooksMode::Material) {
                own = QString::fromStdString(parts.object->material);
            } else if (parts.face.empty()) {
                own = QString::fromStdString(parts.object->appearance);
            } else {
                const auto painted = parts.object->faceAppearances.find(parts.face);
                if (painted != parts.object->faceAppearances.end())
                    own = QString::fromStdString(painted->second);
            }
        }
    }
    QTreeWidgetItem* current = nullptr;
    if (known)
        for (QTreeWidgetItemIterator it(list); *it && !current; ++it) {
            const QVariant id = (*it)->data(0, kIdRole);
            if (id.isValid() && id.toString().compare(own, Qt::CaseInsensitive) == 0) current = *it;
        }
    list->setCurrentItem(current);
    if (current)
        list->scrollToItem(current);
    else
        list->clearSelection();
}

QString LooksPanel::title() const { return title_->text(); }

QString LooksPanel::message() const { return message_->text(); }

bool LooksPanel::messageIsError() const { return message_->property("error").toBool(); }

void LooksPanel::showMessage(const QString& text, bool error) {
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
    message_->setProperty("error", error && !text.isEmpty());
    message_->style()->unpolish(message_);
    message_->style()->polish(message_);
}

bool LooksPanel::event(QEvent* event) {
    // Esc belongs to the panel while the focus is in it, not to the window's shortcut.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void LooksPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
        return;
    }
    QFrame::keyPressEvent(event);
}

void LooksPanel::paintEvent(QPaintEvent* /*event*/) {
    // The card sits on the OpenGL picture, so it paints its own glass.
    paintGlassCard(*this);
}

} // namespace cad::ui
