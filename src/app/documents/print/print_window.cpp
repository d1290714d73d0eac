// SPDX-License-Identifier: MIT
#include "app/documents/print/print_window.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QToolButton>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "app/documents/print/sheet_view.h"

namespace vell {
namespace {

constexpr int barMargin = 12;
constexpr int mostPages = 9'999'999;

/// Points to where pages lie that are further on (1) or back (-1).
QToolButton* pageButton(int direction, const QString& name) {
    auto* button = new QToolButton;
    const bool isRight = (direction > 0) != QGuiApplication::isRightToLeft();
    button->setArrowType(isRight ? Qt::RightArrow : Qt::LeftArrow);
    button->setAutoRaise(true);
    button->setAutoRepeat(true);
    button->setToolTip(name);
    button->setAccessibleName(name);
    return button;
}

}  // namespace

PrintWindow::PrintWindow(std::shared_ptr<const TesselChatLog> chatlog, const PaperSetup& setup,
                         std::shared_ptr<QPrinter> printer, std::function<void()> print,
                         QWidget* parent)
    : QDialog(parent),
      printer_(std::move(printer)),
      print_(std::move(print)),
      source_(std::move(chatlog), setup),
      sheet_(new SheetView(setup.format.sheet)),
      page_(new QSpinBox),
      count_(new QLabel),
      previous_(pageButton(-1, tr("Previous Page"))),
      next_(pageButton(1, tr("Next Page"))) {
    setWindowTitle(tr("Print"));
    setAttribute(Qt::WA_DeleteOnClose);
    layOut();
    setCount(1, false);
    connect(previous_, &QToolButton::clicked, page_, &QSpinBox::stepDown);
    connect(next_, &QToolButton::clicked, page_, &QSpinBox::stepUp);
    connect(page_, &QSpinBox::valueChanged, this, &PrintWindow::showPage);
    connect(sheet_, &SheetView::resized, this, &PrintWindow::showPage);
    // The field for the number would take them for ten pages.
    new QShortcut(
        Qt::Key_PageUp, page_, [this] { page_->stepDown(); }, Qt::WindowShortcut);
    new QShortcut(
        Qt::Key_PageDown, page_, [this] { page_->stepUp(); }, Qt::WindowShortcut);
    connect(&source_, &PageSource::counted, this, &PrintWindow::setCount);
    connect(&source_, &PageSource::painted, this, [this](int page, const QImage& picture) {
        if (page == page_->value()) sheet_->setPicture(picture);
    });
}

void PrintWindow::layOut() {
    sheet_->setAccessibleName(tr("Page"));
    page_->setAccessibleName(tr("Page"));
    page_->setKeyboardTracking(false);
    page_->setButtonSymbols(QAbstractSpinBox::NoButtons);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* print = buttons->addButton(tr("&Print …"), QDialogButtonBox::AcceptRole);
    print->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &PrintWindow::choosePrinter);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(barMargin, 0, barMargin, barMargin);
    for (QWidget* widget : {static_cast<QWidget*>(previous_), static_cast<QWidget*>(page_),
                            static_cast<QWidget*>(count_), static_cast<QWidget*>(next_)})
        row->addWidget(widget);
    row->addStretch(1);
    row->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(sheet_, 1);
    layout->addLayout(row);
}

void PrintWindow::showPage() {
    source_.request(page_->value(), sheet_->scale());
    previous_->setEnabled(page_->value() > page_->minimum());
    next_->setEnabled(page_->value() < page_->maximum());
}

void PrintWindow::setCount(int pages, bool isComplete) {
    const int shown = std::clamp(pages, 1, mostPages);
    page_->setRange(1, shown);
    const QString number = locale().toString(shown);
    count_->setText(isComplete ? tr("of %1").arg(number) : tr("of %1 or more").arg(number));
    next_->setEnabled(page_->value() < shown);
}

void PrintWindow::choosePrinter() {
    auto* dialog = new QPrintDialog(printer_.get(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QAbstractPrintDialog::PrintPageRange);
    dialog->setMinMax(1, page_->maximum());
    connect(dialog, &QDialog::accepted, this, [this] {
        print_();
        accept();
    });
    dialog->open();
}

void PrintWindow::wheelEvent(QWheelEvent* event) {
    if (event->angleDelta().y() != 0) page_->stepBy(event->angleDelta().y() > 0 ? -1 : 1);
    event->accept();
}

}  // namespace vell
