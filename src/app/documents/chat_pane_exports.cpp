// SPDX-License-Identifier: MIT
//
// Copying, saving, exporting and printing the whole chat of a pane.
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QSaveFile>

#include "app/documents/chat_pane.h"
#include "app/documents/export/chat_export.h"
#include "app/documents/print/chat_printing.h"
#include "app/documents/selection_data.h"
#include "export/expansion.h"
#include "export/markdown.h"
#include "toolkit/safe_file_name.h"
#include "transcript/content_types.h"

namespace vell {
namespace {

struct SavingFailed {};  // QSaveFile knows the reason

QMessageBox* openBox(QWidget* window, const QString& title, const QString& text,
                     const QString& details, QMessageBox::StandardButtons buttons) {
    auto* box = new QMessageBox(QMessageBox::Warning, title, text, buttons, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(details);
    box->open();
    return box;
}

}  // namespace

void ChatPane::writeMarkdown(const ByteSink& output) const {
    vell::writeMarkdown(*chat_.log, services_.contacts, output);
}

bool ChatPane::isOutOfProportion() const {
    return expandsBeyond(exportLimit(chat_.fileSize), *chat_.expansion, services_.contacts,
                         [this](const ByteSink& output) { writeMarkdown(output); });
}

QString ChatPane::sizeLimit() const {
    return locale().formattedDataSize(static_cast<qint64>(exportLimit(chat_.fileSize)));
}

void ChatPane::copyWholeChat() {
    if (isOutOfProportion()) {
        openBox(this, tr("Copy Whole Chat"), tr("The chat is too long to copy as a whole."),
                tr("As text it takes more than %1, far more than its file. Save it as Markdown or "
                   "copy part of it.")
                    .arg(sizeLimit()),
                QMessageBox::Ok);
        return;
    }
    const QString text = generatePlainText(*chat_.log, services_.contacts);
    auto* item = new QMimeData;
    item->setText(text);
    item->setData(markdownType.mimeName.toString(), text.toUtf8());
    QGuiApplication::clipboard()->setMimeData(item);
    notice(tr("Copied the whole chat: %1 characters").arg(locale().toString(text.size())));
}

std::unique_ptr<QMimeData> ChatPane::selectionData(const TextSpan& selected,
                                                   SelectionTarget target) {
    auto data = std::make_unique<SelectionData>(chat_, services_.contacts, selected);
    if (target != SelectionTarget::clipboard) return data;
    if (!data->isOutOfProportion()) {
        const QString count = locale().toString(data->count());
        notice(data->isOneMessage() ? tr("Copied %1 characters").arg(count)
                                    : tr("Copied %1 messages").arg(count));
        return data;
    }
    openBox(this, tr("Copy"), tr("What is selected is too long to copy."),
            tr("As text it takes more than %1, far more than the chat’s file. Save the chat as "
               "Markdown or copy a smaller part of it.")
                .arg(sizeLimit()),
            QMessageBox::Ok);
    return nullptr;
}

void ChatPane::saveAsMarkdown() {
    if (!isOutOfProportion()) {
        chooseMarkdownFile();
        return;
    }
    const auto* box = openBox(this, tr("Save Chat as Markdown"),
                              tr("Save a document that is far larger than the chat’s file?"),
                              tr("As Markdown the chat takes more than %1.").arg(sizeLimit()),
                              QMessageBox::Save | QMessageBox::Cancel);
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Save) chooseMarkdownFile();
    });
}

void ChatPane::chooseMarkdownFile() {
    const QString suggestion = safeFileName(chat_.name, tr("Chat"));
    auto* dialog = new QFileDialog(this, tr("Save Chat as Markdown"), suggestion);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setMimeTypeFilters({markdownType.mimeName.toString()});
    dialog->setDefaultSuffix(QStringLiteral("md"));
    dialog->selectFile(suggestion + QStringLiteral(".md"));
    connect(dialog, &QFileDialog::fileSelected, this, &ChatPane::saveMarkdown);
    dialog->open();
}

void ChatPane::saveMarkdown(const QString& target) {
    QSaveFile file(target);
    try {
        if (!file.open(QIODevice::WriteOnly)) throw SavingFailed();
        writeMarkdown([&file](QByteArrayView bytes) {
            if (file.write(bytes.data(), bytes.size()) < 0) throw SavingFailed();
        });
        if (!file.commit()) throw SavingFailed();
    } catch (const SavingFailed&) {
        openBox(this, tr("Save Chat as Markdown"),
                tr("The chat could not be saved as “%1”.").arg(QFileInfo(target).fileName()),
                tr("%1. Choose another folder or name.").arg(file.errorString()), QMessageBox::Ok);
    }
}

PaperSetup ChatPane::paperSetup() const {
    return currentPaperSetup(*chat_.log, services_.contacts, chat_.name,
                             PaperFormat::of(usualPaper(QLocale())));
}

void ChatPane::tellOutcome(const QString& title, const JobResult& result) {
    if (result.error.isEmpty()) {
        notice(result.notice);
        return;
    }
    openBox(this, title, result.error + u'.', tr("Nothing was written."), QMessageBox::Ok);
}

void ChatPane::exportChat() {
    if (!isOutOfProportion()) {
        chooseExportFile();
        return;
    }
    const auto* box = openBox(this, tr("Export Chat"),
                              tr("Export a document that is far larger than the chat’s file?"),
                              tr("As text the chat takes more than %1.").arg(sizeLimit()),
                              QMessageBox::Save | QMessageBox::Cancel);
    connect(box, &QMessageBox::finished, this, [this](int answer) {
        if (answer == QMessageBox::Save) chooseExportFile();
    });
}

void ChatPane::chooseExportFile() {
    const QString suggestion = safeFileName(chat_.name, tr("Chat"));
    auto* dialog = new QFileDialog(this, tr("Export Chat"), suggestion);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const ExportChoice& choice : exportChoices())
        filters.append(choice.filter);
    dialog->setNameFilters(filters);
    const auto follow = [dialog](const QString& filter) {
        dialog->setDefaultSuffix(chosenFormat({}, filter).extension);
    };
    connect(dialog, &QFileDialog::filterSelected, dialog, follow);
    follow(filters.first());
    dialog->selectFile(suggestion + u'.' + dialog->defaultSuffix());
    connect(dialog, &QFileDialog::fileSelected, this, [this, dialog](const QString& target) {
        exportTo(target, dialog->selectedNameFilter());
    });
    dialog->open();
}

void ChatPane::exportTo(const QString& target, const QString& filter) {
    const ChatExport order{chat_.log, paperSetup(), chosenFormat(target, filter), target};
    startJob(
        *this, {tr("Export Chat"), tr("Exporting to “%1” …").arg(QFileInfo(target).fileName())},
        [order](const JobControl& control) { return writeChat(order, control); },
        [this](const JobResult& result) { tellOutcome(tr("Export Chat"), result); });
}

void ChatPane::print() {
    printChat(*this, chat_.log, paperSetup(),
              [this](const JobResult& result) { tellOutcome(tr("Print"), result); });
}

}  // namespace vell
