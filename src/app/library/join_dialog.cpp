// SPDX-License-Identifier: MIT
#include "app/library/join_dialog.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/library/people_delegate.h"
#include "app/library/people_model.h"

namespace vell {
namespace {

constexpr QSize joinDialogSize(380, 460);

class JoinDialog final : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(JoinDialog)

  public:
    JoinDialog(std::shared_ptr<const LibraryPeople> people, const TesselUserID& person,
               const QString& name, const ContactsStore& contacts, QWidget& window)
        : QDialog(&window), list_(new QListView), filter_(new QLineEdit) {
        setObjectName(QStringLiteral("joinDialog"));
        setWindowTitle(tr("Join Addresses"));
        resize(joinDialogSize);
        model_.setPeople(std::move(people));
        model_.setOthersOf(person);
        model_.setOrder(PeopleModel::Order::name);
        auto* text = new QLabel(tr("Who is the same person as %1?").arg(name));
        text->setTextFormat(Qt::PlainText);
        text->setWordWrap(true);
        filter_->setPlaceholderText(tr("Filter people"));
        filter_->setAccessibleName(filter_->placeholderText());
        filter_->setClearButtonEnabled(true);
        filter_->installEventFilter(this);
        list_->setModel(&model_);
        list_->setItemDelegate(new PeopleDelegate(model_, contacts, list_));
        list_->setUniformItemSizes(true);
        list_->setAccessibleName(tr("People"));
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QPushButton* join = buttons->button(QDialogButtonBox::Ok);
        join->setText(tr("&Join"));
        join->setEnabled(false);
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(text);
        layout->addWidget(filter_);
        layout->addWidget(list_, 1);
        layout->addWidget(buttons);
        connect(filter_, &QLineEdit::textChanged, this, [this](const QString& wanted) {
            model_.setFilter(wanted);
            if (!wanted.isEmpty()) list_->setCurrentIndex(model_.index(0));
        });
        connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [join](const QModelIndex& current) { join->setEnabled(current.isValid()); });
        connect(list_, &QListView::activated, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    }

    [[nodiscard]] std::optional<TesselUserID> chosen() const {
        return model_.person(list_->currentIndex());
    }

  protected:
    /// The arrows move in the list while one types.
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<const QKeyEvent*>(event)->key();
            if (key == Qt::Key_Down || key == Qt::Key_Up || key == Qt::Key_PageDown ||
                key == Qt::Key_PageUp)
                return QCoreApplication::sendEvent(list_, event);
        }
        return QDialog::eventFilter(object, event);
    }

  private:
    PeopleModel model_;
    QListView* list_;
    QLineEdit* filter_;
};

}  // namespace

void askWhomToJoin(std::shared_ptr<const LibraryPeople> people, const TesselUserID& person,
                   const QString& name, const ContactsStore& contacts, QWidget& window,
                   std::function<void(const TesselUserID& other)> join) {
    auto* dialog = new JoinDialog(std::move(people), person, name, contacts, window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QDialog::accepted, &window, [dialog, join = std::move(join)] {
        if (const auto other = dialog->chosen()) join(*other);
    });
    dialog->open();
}

}  // namespace vell
