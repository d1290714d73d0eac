// SPDX-License-Identifier: MIT
#include "app/library/broken_files_dialog.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "foundation/local_path.h"

namespace vell {
namespace {

constexpr QSize tableSize(720, 420);
constexpr int nameWidth = 300;

class BrokenFilesModel final : public QAbstractTableModel {
    Q_DECLARE_TR_FUNCTIONS(BrokenFilesModel)

  public:
    BrokenFilesModel(const std::vector<BrokenFile>& files, QObject* parent)
        : QAbstractTableModel(parent), files_(files) {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(files_.size());
    }
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : 2;
    }
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const BrokenFile& file = files_[static_cast<std::size_t>(index.row())];
        const QString path = foundation::pathFromArgument(file.path.constData());
        if (role == Qt::ToolTipRole) return path + u'\n' + file.reason;
        if (role != Qt::DisplayRole) return {};
        return index.column() == 0 ? path.mid(path.lastIndexOf(u'/') + 1) : file.reason;
    }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        return section == 0 ? tr("File") : tr("Reason");
    }

  private:
    const std::vector<BrokenFile> files_;
};

QTableView* tableOf(const std::vector<BrokenFile>& files) {
    auto* table = new QTableView;
    table->setModel(new BrokenFilesModel(files, table));
    table->setAccessibleName(BrokenFilesModel::tr("Files that couldn’t be read"));
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setTabKeyNavigation(false);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setHighlightSections(false);
    table->horizontalHeader()->setStretchLastSection(true);
    table->setColumnWidth(0, nameWidth);
    return table;
}

}  // namespace

void showBrokenFiles(const std::vector<BrokenFile>& files, QWidget& window,
                     const std::function<void(const QByteArray& path)>& open) {
    auto* dialog = new QDialog(&window);
    dialog->setObjectName(QStringLiteral("brokenFilesDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(BrokenFilesModel::tr("Files That Couldn’t Be Read"));
    dialog->resize(tableSize);
    auto* text = new QLabel(BrokenFilesModel::tr(
        "They are tried again when they have changed. Everything else is in the library. Opening "
        "one shows its load log."));
    text->setWordWrap(true);
    auto* table = tableOf(files);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* show = buttons->addButton(BrokenFilesModel::tr("&Open"), QDialogButtonBox::ActionRole);
    const auto openCurrent = [open, files, table, dialog] {
        if (const int row = table->currentIndex().row(); row >= 0) {
            dialog->close();
            open(files[static_cast<std::size_t>(row)].path);
        }
    };
    QObject::connect(show, &QPushButton::clicked, dialog, openCurrent);
    QObject::connect(table, &QTableView::activated, dialog, openCurrent);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(text);
    layout->addWidget(table, 1);
    layout->addWidget(buttons);
    table->selectRow(0);
    dialog->open();
}

}  // namespace vell
