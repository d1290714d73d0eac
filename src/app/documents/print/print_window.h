#pragma once
// SPDX-License-Identifier: MIT
//
// PrintWindow: shows a chat's pages before they are printed. The desktop's own dialog then asks for
// the printer and for the pages.

#include <QDialog>
#include <functional>
#include <memory>

#include "app/documents/print/page_source.h"

class QLabel;
class QPrinter;
class QSpinBox;
class QToolButton;

namespace vell {

class SheetView;

class PrintWindow final : public QDialog {
    Q_OBJECT

  public:
    /// `print` is called once the printer and its pages have been chosen.
    PrintWindow(std::shared_ptr<const TesselChatLog> chatlog, const PaperSetup& setup,
                std::shared_ptr<QPrinter> printer, std::function<void()> print, QWidget* parent);

  protected:
    void wheelEvent(QWheelEvent* event) override;

  private:
    void layOut();
    void showPage();
    void setCount(int pages, bool isComplete);
    void choosePrinter();

    std::shared_ptr<QPrinter> printer_;
    std::function<void()> print_;
    PageSource source_;
    SheetView* sheet_;
    QSpinBox* page_;
    QLabel* count_;
    QToolButton* previous_;
    QToolButton* next_;
};

}  // namespace vell
