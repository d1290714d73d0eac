// SPDX-License-Identifier: MIT
#include "app/library/library_status.h"

#include <QHBoxLayout>
#include <QLocale>

#include "app/library/broken_files_dialog.h"
#include "app/library/library.h"
#include "app/library/shown_facts.h"

namespace vell {
namespace {

constexpr int sideMargin = 12;
constexpr int progressWidth = 140;
constexpr int secondsPerMinute = 60;

QString timeLeft(int seconds) {
    const QLocale locale;
    if (seconds < 5) return LibraryStatus::tr("nearly done");
    if (seconds < secondsPerMinute)
        return LibraryStatus::tr("%1 seconds left").arg(locale.toString(seconds));
    const int minutes = (seconds + secondsPerMinute - 1) / secondsPerMinute;
    return minutes == 1 ? LibraryStatus::tr("1 minute left")
                        : LibraryStatus::tr("%1 minutes left").arg(locale.toString(minutes));
}

}  // namespace

LibraryStatus::LibraryStatus(Library& library, QWidget* parent)
    : QWidget(parent),
      library_(library),
      text_(new QLabel),
      progress_(new QProgressBar),
      broken_(new QToolButton) {
    text_->setObjectName(QStringLiteral("libraryState"));
    text_->setTextFormat(Qt::PlainText);
    text_->setForegroundRole(QPalette::PlaceholderText);
    text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    progress_->setTextVisible(false);
    progress_->setFixedWidth(progressWidth);
    progress_->setMaximumHeight(6);
    progress_->setAccessibleName(tr("Indexing"));
    broken_->setAutoRaise(true);
    broken_->setObjectName(QStringLiteral("brokenFiles"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(sideMargin, 4, sideMargin, 4);
    layout->addWidget(text_, 1);
    layout->addWidget(progress_);
    layout->addWidget(broken_);
    connect(broken_, &QToolButton::clicked, this, [this] {
        showBrokenFiles(library_.people()->contents.broken, *this,
                        [this](const QByteArray& path) { Q_EMIT opened(path); });
    });
    noticeTimer_.setSingleShot(true);
    connect(&noticeTimer_, &QTimer::timeout, this, [this] { showNotice({}, 0); });
    connect(&library_, &Library::stateChanged, this, &LibraryStatus::showState);
    connect(&library_, &Library::peopleChanged, this, &LibraryStatus::showState);
    showState();
}

QString LibraryStatus::stateText() const {
    const QLocale locale;
    if (const auto& state = library_.indexing()) {
        const Indexer::Progress& progress = state->progress;
        if (state->isPaused) return tr("Indexing waits while a chat is opened");
        if (progress.all == 0) {
            return state->found > 0 ? tr("Looking through your folders: %1 transcripts")
                                          .arg(locale.toString(qlonglong{state->found}))
                                    : tr("Looking through your folders …");
        }
        const QString done = tr("Indexing: %1 of %2 files")
                                 .arg(locale.toString(qlonglong{progress.done}),
                                      locale.toString(qlonglong{progress.all}));
        return progress.secondsLeft ? done + QStringLiteral(" · ") + timeLeft(*progress.secondsLeft)
                                    : done;
    }
    if (!library_.notice().isEmpty()) return library_.notice();
    if (!library_.isRead()) return {};
    const LibraryPeople& people = *library_.people();
    const auto count = static_cast<qlonglong>(people.contents.conversations.size());
    const QString conversations =
        count == 1 ? tr("1 conversation") : tr("%1 conversations").arg(locale.toString(count));
    return conversations + QStringLiteral(" · ") + shownMessages(people.messages);
}

void LibraryStatus::showNotice(const QString& text, int milliseconds) {
    notice_ = text;
    noticeTimer_.stop();
    if (milliseconds > 0) noticeTimer_.start(milliseconds);
    showState();
}

void LibraryStatus::showState() {
    text_->setText(notice_.isEmpty() ? stateText() : notice_);
    text_->setToolTip(library_.notice());
    const auto& state = library_.indexing();
    progress_->setVisible(state.has_value());
    if (state) {
        // Without a number of files yet it says only that something happens.
        progress_->setRange(0, static_cast<int>(state->progress.all));
        progress_->setValue(static_cast<int>(state->progress.done));
    }
    const auto count = library_.people()->contents.broken.size();
    broken_->setVisible(count > 0);
    broken_->setText(count == 1 ? tr("1 file couldn’t be read")
                                : tr("%1 files couldn’t be read")
                                      .arg(QLocale().toString(static_cast<qlonglong>(count))));
}

}  // namespace vell
