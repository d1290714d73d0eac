// SPDX-License-Identifier: MIT
#include "app/documents/export/chat_export.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>

#include "export/format.h"
#include "export/message.h"
#include "foundation/local_path.h"
#include "paper/pdf_document.h"
#include "toolkit/date_formatters.h"

namespace vell {
namespace {

struct Cancelled {};

/// Returns how many messages were written.
qint64 write(const ChatExport& order, const JobControl& control, QIODevice& file) {
    if (!order.choice.format) {
        const auto progress = [&control](qsizetype done, qsizetype all) {
            return control.progress(done, all);
        };
        const PdfResult result = writePdf(*order.log, order.paper, file, progress, order.pages);
        if (!result.isComplete) throw Cancelled();
        const bool isWhole = order.pages.first == 1 && order.pages.last == PageRange().last;
        return isWhole ? result.messages : messageCount(*order.log);
    }
    const ContactsStore contacts(order.paper.contacts);
    const FormatContext context(sharedCalendar(), environmentDateLocale(), contacts);
    const DocumentSource source{.log = *order.log, .context = context, .file = order.paper.title};
    return order.choice.format->write(source, [&](QByteArrayView bytes) {
        if (control.isCancelled()) throw Cancelled();
        if (file.write(bytes.data(), bytes.size()) != bytes.size()) throw PdfFile::WriteFailed();
    });
}

}  // namespace

JobResult writeChat(const ChatExport& order, const JobControl& control) {
    QSaveFile file(foundation::localPath(order.target));
    try {
        if (file.open(QIODevice::WriteOnly)) {
            const qint64 all = messageCount(*order.log);
            const qint64 written = write(order, control, file);
            const QLocale locale;
            if (written != all) {
                return {
                    QCoreApplication::translate("Export", "Only %1 of %2 messages could be written")
                        .arg(locale.toString(written), locale.toString(all)),
                    {}};
            }
            if (control.isCancelled()) return {};
            if (file.commit()) {
                return {{},
                        QCoreApplication::translate("Export", "Exported to “%2” (messages: %1)")
                            .arg(locale.toString(all), QFileInfo(order.target).fileName())};
            }
        }
    } catch (const Cancelled&) {
        return {};
    } catch (const PdfFile::WriteFailed&) {
    }
    return {file.errorString(), {}};
}

}  // namespace vell
