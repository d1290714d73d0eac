// SPDX-License-Identifier: MIT
#include "timeline/saving/saving.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QMessageBox>
#include <functional>
#include <utility>

#include "timeline/saving/data_item_provider.h"
#include "timeline/saving/private_files.h"
#include "toolkit/safe_file_name.h"

namespace vell {
namespace {

using foundation::FileWrapper;

struct Saving {
    Q_DECLARE_TR_FUNCTIONS(Saving)
};

QString writeStored(const QString& path, const foundation::StoredData& stored) {
    const auto data = stored.load();
    return data ? writeFile(path, *data) : Saving::tr("The chat’s file has changed or is gone");
}

QString fileName(const FileWrapper& wrapper) {
    return safeFileName(wrapper.filename.value_or(wrapper.preferredFilename.value_or(QString())),
                        Saving::tr("File"));
}

/// Asks where to, under the suggested name; `write` gets the path and returns what went wrong.
void askAndWrite(QWidget& window, const QString& title, const QString& name,
                 std::function<QString(const QString&)> write) {
    auto* dialog = new QFileDialog(&window, title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(name);
    QObject::connect(
        dialog, &QFileDialog::fileSelected, &window,
        [&window, title, write = std::move(write)](const QString& path) {
            const QString problem = write(path);
            if (problem.isEmpty()) return;
            auto* box = new QMessageBox(QMessageBox::Warning, title, {}, QMessageBox::Ok, &window);
            box->setAttribute(Qt::WA_DeleteOnClose);
            box->setTextFormat(Qt::PlainText);
            box->setText(Saving::tr("“%1” could not be saved. %2. Choose another folder or name.")
                             .arg(QFileInfo(path).fileName(), problem));
            box->open();
        });
    dialog->open();
}

}  // namespace

void savePicture(QWidget& window, const TesselChatLog::Image& image) {
    askAndWrite(window, Saving::tr("Save Picture"), pictureFileName(image),
                [image](const QString& path) { return writeStored(path, image.data()); });
}

void saveFile(QWidget& window, std::shared_ptr<const FileWrapper> wrapper) {
    const QString name = fileName(*wrapper);
    askAndWrite(window, Saving::tr("Save File"), name,
                [wrapper = std::move(wrapper)](const QString& path) {
                    return writeWrapper(path, *wrapper);
                });
}

void saveData(QWidget& window, const QString& title, const QString& name,
              const foundation::Data& data) {
    askAndWrite(window, title, safeFileName(name, Saving::tr("File")),
                [data](const QString& path) { return writeFile(path, data); });
}

bool canSave(const FileWrapper& wrapper) {
    return wrapper.isDirectory() || (wrapper.isRegularFile() && wrapper.contents);
}

QString writeWrapper(const QString& path, const FileWrapper& wrapper) {
    if (!canSave(wrapper)) return {};
    if (wrapper.isRegularFile()) return writeStored(path, *wrapper.contents);
    // Nothing that is there already is mixed with the folder's entries.
    if (!QDir().mkdir(path)) return Saving::tr("The folder could not be made");
    QHash<QString, int> copies;  // of a name; many may have the same
    for (const auto& child : wrapper.children) {
        const QString own = fileName(*child);
        QString name;
        do {
            const int copy = ++copies[own];
            name = copy == 1 ? own : safeFileName(QString::number(copy) + u' ' + own, {});
        } while (QFileInfo::exists(path + u'/' + name));
        QString problem = writeWrapper(path + u'/' + name, *child);
        if (!problem.isEmpty()) return problem;
    }
    return {};
}

}  // namespace vell
