#pragma once
// SPDX-License-Identifier: MIT
//
// DocumentWindow: one transcript on screen. It opens at once, fills when the transcript has been
// read, and deletes itself when it is closed, which also cancels a load in progress.

#include <QMainWindow>
#include <memory>
#include <optional>

#include "app/documents/document_loader.h"
#include "app/documents/jump_history.h"
#include "app/documents/services.h"
#include "export/text_sink.h"
#include "timeline/input/selection.h"
#include "toolkit/callback_guard.h"

class QLabel;
class QStackedWidget;
class QToolBar;

namespace vell {

class ChatFinder;
class Commands;
class ContactsBar;
class DocumentTools;
class FontSizePanel;
class TimelineView;

class DocumentWindow final : public QMainWindow {
    Q_OBJECT

  public:
    /// Starts loading the path ("-": standard input) with the loader.
    DocumentWindow(Commands& commands, const Services& services, DocumentLoader& loader,
                   const QString& path);
    ~DocumentWindow() override;

    [[nodiscard]] const QString& path() const { return path_; }
    [[nodiscard]] bool isLoaded() const { return document_ != nullptr; }
    /// What the window may be called, the shortest first.
    [[nodiscard]] const QStringList& titles() const { return titles_; }
    void setTitle(QString title);
    /// Remembers where the window stands and how far it is scrolled.
    void savePlace() const;

  Q_SIGNALS:
    /// The transcript has been painted for the first time.
    void shown();
    /// The transcript could not be read; the window closes.
    void failed(const foundation::Error& error);
    void closed(vell::DocumentWindow* window);
    /// titles() changed.
    void titlesChanged();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void buildContent();
    void buildMenus();
    void buildFileMenu();
    void buildEditMenu();
    void buildFormatMenu();
    void buildViewMenu(const QToolBar& toolBar);
    void buildGoMenu();
    /// Shows a result once the window's first frame is on the screen.
    void take(DocumentLoader::Result result);
    void stopWaitingForFrame();
    void loaded(const DocumentLoader::Result& result);
    /// Also after the chat's rows have become others.
    void makeFinder();
    void updateTitles();
    void showFontSize(qint64 points);
    /// Says in the status bar, for some seconds, what has been done.
    void showNotice(const QString& text);
    void followTimeZone();
    void showTimeZone();
    void restorePlace();

    /// Copies the selection, or the whole chat without one.
    void copy();
    void copyWholeChat();
    /// Null, after a message, for what is too long for the clipboard.
    std::unique_ptr<QMimeData> selectionData(const TextSpan& selected, SelectionTarget target);
    void saveAsMarkdown();
    void chooseMarkdownFile();
    void saveMarkdown(const QString& target);
    /// Whether the chat as Markdown is far larger than its file.
    [[nodiscard]] bool isOutOfProportion() const;
    [[nodiscard]] QString sizeLimit() const;
    void writeMarkdown(const ByteSink& output) const;
    void changeFontSize(int action);
    void showFontPanel();

    Commands& commands_;
    Services services_;
    QString path_;
    QStringList titles_;
    DocumentLoader::Ticket load_;
    bool waitsForFrame_ = true;
    std::optional<DocumentLoader::Result> waiting_;
    std::shared_ptr<const VellDocument> document_;
    JumpHistory history_;
    std::unique_ptr<ChatFinder> finder_;

    QStackedWidget* pages_ = nullptr;
    TimelineView* timeline_ = nullptr;  // null until the transcript is loaded
    ContactsBar* contactsBar_ = nullptr;
    DocumentTools* tools_;
    QLabel* zoneLabel_ = nullptr;  // null until another zone than the computer's is chosen
    std::shared_ptr<CallbackGuard> zoneChange_;  // null until the zone changes
    QAction* copyAction_ = nullptr;
    FontSizePanel* fontPanel_ = nullptr;
    QList<QAction*> documentActions_;  // enabled once the transcript is loaded
};

}  // namespace vell
