// SPDX-License-Identifier: MIT
#include "app/documents/open_failures.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "app/documents/load_log_window.h"
#include "app/windows/placement.h"
#include "app/windows/widgets.h"
#include "toolkit/application_info.h"

namespace vell {
namespace {

QString sentence(const QString& name, OpenFailures::Cause cause) {
    switch (cause) {
        case OpenFailures::Cause::damaged:
            return OpenFailures::tr(
                       "The document “%1” could not be opened. The file is damaged or "
                       "not a transcript.")
                .arg(name);
        case OpenFailures::Cause::beyondRecovery:
            return OpenFailures::tr("No message of the document “%1” can be read.").arg(name);
        case OpenFailures::Cause::missing:
            return OpenFailures::tr("The document “%1” could not be opened. There is no such file.")
                .arg(name);
        case OpenFailures::Cause::unreadable:
            return OpenFailures::
                tr("The document “%1” could not be opened. You don’t have permission to read it.")
                    .arg(name);
        case OpenFailures::Cause::tooLarge:
            return OpenFailures::tr(
                       "The document “%1” could not be opened. It is larger than Vell can read.")
                .arg(name);
    }
    Q_UNREACHABLE();
}

QString remedy(OpenFailures::Cause cause) {
    switch (cause) {
        case OpenFailures::Cause::damaged:
            return OpenFailures::tr("A load log opens next; you can send it to us.");
        case OpenFailures::Cause::beyondRecovery:
            return OpenFailures::tr("Perhaps a backup holds an earlier copy of the file.");
        case OpenFailures::Cause::missing:
            return OpenFailures::tr(
                "It may have been moved, renamed or deleted. “Find iChat Files …” in the File menu "
                "can search your disks for it.");
        case OpenFailures::Cause::unreadable:
            return OpenFailures::tr("Ask its owner for access or for a copy.");
        case OpenFailures::Cause::tooLarge:
            return OpenFailures::tr(
                "Transcripts are rarely larger than a few megabytes; this is probably another kind "
                "of file.");
    }
    Q_UNREACHABLE();
}

QLabel* plainLabel() {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

}  // namespace

OpenFailures::OpenFailures()
    : text_(plainLabel()), remedy_(plainLabel()), list_(new QPlainTextEdit) {
    setObjectName(QStringLiteral("openFailed"));
    setWindowTitle(applicationInfo().appName);
    setAttribute(Qt::WA_DeleteOnClose);
    setMinimumWidth(420);
    QFont bold = font();
    bold.setBold(true);
    text_->setFont(bold);
    list_->setReadOnly(true);
    list_->setAccessibleName(tr("Documents that could not be opened"));
    list_->hide();
    auto* icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::close);
    recover_ = buttons->addButton(tr("&Show What Can Be Read"), QDialogButtonBox::ActionRole);
    recover_->setObjectName(QStringLiteral("recover"));
    recover_->setAutoDefault(false);
    recover_->hide();
    connect(recover_, &QPushButton::clicked, this, [this] {
        Q_EMIT recoveryRequested(damaged_);
        close();
    });

    auto* layout = new QGridLayout(this);
    layout->setHorizontalSpacing(defaultPadding);
    layout->addWidget(icon, 0, 0, 3, 1, Qt::AlignTop);
    layout->addWidget(text_, 0, 1);
    layout->addWidget(remedy_, 1, 1);
    layout->addWidget(list_, 2, 1);
    layout->addWidget(buttons, 3, 0, 1, 2);
    layout->setColumnStretch(1, 1);
}

void OpenFailures::add(const QString& name, const QString& path, Cause cause) {
    if (cause == Cause::damaged && !path.isEmpty()) damaged_.append(path);
    recover_->setVisible(!damaged_.isEmpty());
    sentences_.append(sentence(name, cause));
    list_->appendPlainText(sentences_.back());
    expectsLog_ = expectsLog_ || cause == Cause::damaged || cause == Cause::tooLarge;
    if (sentences_.size() == 1) {
        text_->setText(sentences_.front());
        setAccessibleDescription(sentences_.front());
        remedy_->setText(remedy(cause));
    } else {
        text_->setText(tr("%n documents could not be opened.", nullptr, int(sentences_.size())));
        remedy_->setText(
            expectsLog_ ? tr("A load log opens next for each damaged one; you can send it to us.")
                        : QString());
        remedy_->setVisible(expectsLog_);
        list_->show();
    }
    place();
    show();
}

/// Where the logs that are open, or the one that opens next in the middle, don't hide it.
void OpenFailures::place() {
    adjustSize();
    const QRect screen = this->screen()->availableGeometry();
    QRect next({}, loadLogSize.grownBy(usualFrame));
    next.moveCenter(screen.center());
    QList<QRect> logs;
    for (const QWidget* log : logWindows())
        logs.append(expectedFrame(*log));
    if (expectsLog_ && logs.isEmpty()) logs.append(next);

    QRect frame = expectedFrame(*this);
    if (!isVisible()) frame.moveCenter(screen.center());
    QPoint place = freePlace(frame, logs, {}, screen);
    // Without room above or below the middle, both are in the middle side by side.
    const auto hides = [dialog = QRect(place, frame.size())](const QRect& log) {
        return dialog.intersects(log);
    };
    if (std::ranges::any_of(logs, hides))
        place.setX(
            std::max(screen.left(), screen.center().x() - (frame.width() + next.width()) / 2));
    move(place);
}

}  // namespace vell
