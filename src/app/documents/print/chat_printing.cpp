// SPDX-License-Identifier: MIT
#include "app/documents/print/chat_printing.h"

#include <QCoreApplication>
#include <QLocale>
#include <QPrinter>
#include <utility>

#include "app/documents/export/chat_export.h"
#include "app/documents/print/print_window.h"
#include "paper/page_printing.h"

namespace vell {
namespace {

PaperFormat formatOf(const QPrinter& printer) {
    return {printer.pageLayout().fullRectPoints().size()};
}

PageRange chosenPages(const QPrinter& printer) {
    if (printer.printRange() != QPrinter::PageRange) return {};
    return {printer.fromPage(), printer.toPage()};
}

JobResult print(const TesselChatLog& chatlog, const PaperSetup& setup, QPrinter& printer,
                const JobControl& control) {
    const auto progress = [&control](qsizetype done, qsizetype all) {
        return control.progress(done, all);
    };
    const int pages = printPages(chatlog, setup, printer, chosenPages(printer), progress);
    if (control.isCancelled()) {
        printer.abort();
        return {};
    }
    if (pages < 0)
        return {QCoreApplication::translate("Export", "The printer “%1” could not be used")
                    .arg(printer.printerName()),
                {}};
    return {{},
            QCoreApplication::translate("Export", "Printed (pages: %1)")
                .arg(QLocale().toString(pages))};
}

}  // namespace

void printChat(QWidget& window, std::shared_ptr<const TesselChatLog> chatlog, PaperSetup setup,
               std::function<void(const JobResult&)> done) {
    auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    if (printer->outputFormat() == QPrinter::PdfFormat) printer->setPageSize(usualPaper(QLocale()));
    printer->setFullPage(true);
    printer->setDocName(setup.title);
    printer->setCreator(QCoreApplication::applicationName());
    setup.format = formatOf(*printer);
    const auto start = [&window, chatlog, setup, printer, done = std::move(done)]() mutable {
        setup.format = formatOf(*printer);
        std::function<JobResult(const JobControl&)> work;
        if (printer->outputFormat() == QPrinter::PdfFormat) {
            // The toolkit's own would be a PDF without outline and links.
            const ChatExport order{
                chatlog, setup, {}, printer->outputFileName(), chosenPages(*printer)};
            work = [order](const JobControl& control) { return writeChat(order, control); };
        } else {
            work = [chatlog, setup, printer](const JobControl& control) {
                return print(*chatlog, setup, *printer, control);
            };
        }
        startJob(window,
                 {QCoreApplication::translate("Export", "Print"),
                  QCoreApplication::translate("Export", "Printing …")},
                 std::move(work), done);
    };
    auto* preview = new PrintWindow(std::move(chatlog), setup, printer, start, &window);
    preview->open();
}

}  // namespace vell
