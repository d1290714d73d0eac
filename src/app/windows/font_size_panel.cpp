// SPDX-License-Identifier: MIT
#include "app/windows/font_size_panel.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace vell {
namespace {

constexpr double smallestOffered = 4;
constexpr double largestOffered = 288;
constexpr int usualSizes[] = {8, 9, 10, 11, 12, 13, 14, 16, 18, 20, 24, 28, 32, 36, 48, 64, 96};

/// Writes fractions only where there are any.
class SizeEdit final : public QDoubleSpinBox {
  public:
    [[nodiscard]] QString textFromValue(double value) const override {
        return locale().toString(value, 'g', QLocale::FloatingPointShortest);
    }
};

}  // namespace

FontSizePanel::FontSizePanel(QWidget* parent)
    : QDialog(parent), edit_(new SizeEdit), list_(new QListWidget) {
    setObjectName(QStringLiteral("fontSizePanel"));
    setWindowTitle(tr("Font Size"));
    edit_->setDecimals(1);
    edit_->setRange(smallestOffered, largestOffered);
    //: Points, after a font's size
    edit_->setSuffix(tr(" pt"));
    edit_->setAccessibleName(tr("Font size"));
    list_->setAccessibleName(tr("Usual sizes"));
    for (const int size : usualSizes) {
        auto* item = new QListWidgetItem(locale().toString(size), list_);
        item->setData(Qt::UserRole, size);
    }
    auto* label = new QLabel(tr("&Size:"));
    label->setBuddy(edit_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setDefault(true);

    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(edit_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(list_, 1);
    layout->addWidget(buttons);
    resize(220, 360);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(edit_, &QDoubleSpinBox::valueChanged, this, [this](double points) {
        selectInList(points);
        Q_EMIT sizeChosen(points);
    });
    connect(list_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        if (item) edit_->setValue(item->data(Qt::UserRole).toDouble());
    });
}

void FontSizePanel::setSize(qint64 points) {
    const QSignalBlocker quiet(edit_);
    edit_->setValue(static_cast<double>(points));
    selectInList(edit_->value());
}

void FontSizePanel::selectInList(double points) {
    const QSignalBlocker quiet(list_);
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->data(Qt::UserRole).toDouble() == points) {
            list_->setCurrentRow(row);
            return;
        }
    }
    list_->setCurrentItem(nullptr);
}

}  // namespace vell
