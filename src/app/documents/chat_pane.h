#pragma once
// SPDX-License-Identifier: MIT
//
// ChatPane: a chat on screen with all that one does in it: finding, going to dates, copying,
// saving, what was shared. It shows one log, or the messages of many files as one. Stands in a
// window of its own or beside others; whoever has it puts its commands into menus.
//
//     auto* pane = new ChatPane(services);
//     pane->addEditCommands(*editMenu);
//     pane->showSessions(name, paths);
//     pane->goTo(path, sequence, words);

#include <QBasicTimer>
#include <QMainWindow>
#include <memory>
#include <optional>
#include <vector>

#include "app/documents/jump_history.h"
#include "app/documents/services.h"
#include "app/documents/shown_chat.h"
#include "export/text_sink.h"
#include "library/session_reader.h"
#include "timeline/input/selection.h"
#include "toolkit/callback_guard.h"

class QMenu;
class QStackedWidget;
class QVBoxLayout;

namespace vell {

class ArchiveTool;
class ChatFinder;
class ChatTools;
class ContactsBar;
class FontSizePanel;
class FoundSpans;
struct JobResult;
struct PaperSetup;
class TimelineView;

class ChatPane final : public QMainWindow {
    Q_OBJECT

  public:
    explicit ChatPane(const Services& services, QWidget* parent = nullptr);
    ~ChatPane() override;

    /// Shows nothing but, after a moment, that something is on its way.
    void showLoading();
    /// Shows a log in place of any other.
    void showChat(ShownChat chat);
    /// Shows the messages of these files, in order of time, as a chat that is called so. The newest
    /// session, or that of a goTo() that follows at once, is there first. Files that can't be read
    /// are left out. The same name again, with other files or because some have changed, keeps the
    /// reader's place.
    void showSessions(const QString& name, const std::vector<QByteArray>& paths);
    /// Shows nothing.
    void clear();
    /// Goes to an event of a file as soon as it is there, and marks these words in it; 0 is the
    /// heading of the file's session.
    void goTo(const QByteArray& path, qint64 sequence, const QStringList& words = {});
    /// Goes to the beginning of the session after the one at the top (1) or before it (-1).
    void stepSession(int direction);

    [[nodiscard]] const ShownChat& chat() const { return chat_; }
    /// Null while there is no chat.
    [[nodiscard]] TimelineView* timeline() const { return timeline_; }
    [[nodiscard]] QAction* copyAction() const { return copyAction_; }

    // Commands for menus, of which each is called once. They are enabled while there is a chat.
    void addSaveCommand(QMenu& menu);
    void addEditCommands(QMenu& menu);
    void addFontCommands(QMenu& menu);
    void addSharedCommand(QMenu& menu);
    /// Only where files are shown alone.
    void addArchiveCommand(QMenu& menu);
    void addGoCommands(QMenu& menu);
    /// "Previous Session" and "Next Session".
    void addSessionCommands(QMenu& menu);

  Q_SIGNALS:
    /// A chat is there, and was painted for the first time.
    void shown();
    /// The chat's log is another one: its marks, or its messages, have changed.
    void changed();
    /// Something to say in the status bar, for some milliseconds; 0 until it is replaced.
    void noticed(const QString& text, int milliseconds);
    /// Files of the sessions that have been read, and all; equal once there is nothing more to do.
    void progressed(qsizetype done, qsizetype all);
    /// A session's file is to be opened alone.
    void sessionOpened(const QByteArray& path);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void showPage(QWidget* page);
    void dropChat();
    void makeTimeline();
    void notice(const QString& text);
    void enableWithChat(QAction* action);
    void showFontSize(qint64 points);
    void changeFontSize(int action);
    void showFontPanel();
    void followTimeZone();

    void readSessions();
    void stopReading();
    struct Sessions {
        SessionReader::Result result;
        ExpansionBound expansion;
    };
    void take(Sessions sessions);
    void showMerged(Sessions sessions);
    [[nodiscard]] bool isInUse() const;
    /// The file whose messages are at the top.
    [[nodiscard]] QByteArray topFile() const;
    /// The row of an event, if its file is there.
    [[nodiscard]] std::optional<qsizetype> rowOf(const QByteArray& path, qint64 sequence) const;
    /// Where a row of the chat that was shown before is now.
    [[nodiscard]] qsizetype rowAfter(const MergedChat& before, qsizetype row) const;
    void goToWanted();
    /// In the event that was gone to last.
    void markWords();

    /// Copies the selection, or the whole chat without one.
    void copy();
    void copyWholeChat();
    /// Null, after a message, for what is too long for the clipboard.
    std::unique_ptr<QMimeData> selectionData(const TextSpan& selected, SelectionTarget target);
    void exportChat();
    void chooseExportFile();
    void exportTo(const QString& target, const QString& filter);
    void print();
    /// Says how an export or print went.
    void tellOutcome(const QString& title, const JobResult& result);
    [[nodiscard]] PaperSetup paperSetup() const;
    void saveAsMarkdown();
    void chooseMarkdownFile();
    void saveMarkdown(const QString& target);
    /// Whether the chat as Markdown is far larger than its file.
    [[nodiscard]] bool isOutOfProportion() const;
    [[nodiscard]] QString sizeLimit() const;
    void writeMarkdown(const ByteSink& output) const;

    struct Wanted {
        QByteArray path;
        qint64 sequence = 0;
        QStringList words;
    };

    Services services_;
    ShownChat chat_;  // without a log while there is none
    JumpHistory history_;

    // Only where sessions are shown.
    std::vector<QByteArray> paths_;
    std::optional<MergedChat> merged_;
    std::shared_ptr<CallbackGuard> reading_;  // null while nothing is read
    std::optional<SessionReader> reader_;
    std::optional<Sessions> waiting_;  // until nothing holds on to rows any more
    QBasicTimer waitTimer_;
    std::optional<Wanted> wanted_;
    Wanted reached_;                           // what was gone to last
    std::shared_ptr<const FoundSpans> marks_;  // in it; null before

    QStackedWidget* pages_;
    QVBoxLayout* layout_;
    TimelineView* timeline_ = nullptr;
    ChatTools* tools_;
    ArchiveTool* archive_;
    std::unique_ptr<ChatFinder> finder_;
    FontSizePanel* fontPanel_ = nullptr;
    std::shared_ptr<CallbackGuard> zoneChange_;  // null until the zone changes
    QAction* copyAction_ = nullptr;
    QList<QAction*> actions_;
};

}  // namespace vell
