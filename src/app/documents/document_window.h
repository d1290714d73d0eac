#pragma once
// SPDX-License-Identifier: MIT
//
// DocumentWindow: one transcript on screen. It opens at once, fills when the transcript has been
// read, and deletes itself when it is closed, which also cancels a load in progress.

#include <QMainWindow>
#include <memory>
#include <optional>

#include "app/documents/document_loader.h"
#include "app/documents/services.h"

class QLabel;
class QToolBar;

namespace vell {

class ChatPane;
class Commands;

class DocumentWindow final : public QMainWindow {
    Q_OBJECT

  public:
    /// Starts loading the path ("-": standard input) with the loader.
    DocumentWindow(Commands& commands, const Services& services, DocumentLoader& loader,
                   const QString& path, Reading reading = Reading::whole);
    ~DocumentWindow() override;

    [[nodiscard]] const QString& path() const { return path_; }
    /// Whether it shows what is left of a damaged transcript.
    [[nodiscard]] bool isRecovery() const { return reading_ == Reading::recovery; }
    [[nodiscard]] bool isLoaded() const;
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

  private:
    void buildMenus();
    void buildViewMenu(const QToolBar& toolBar);
    /// Shows a result once the window's first frame is on the screen.
    void take(DocumentLoader::Result result);
    void stopWaitingForFrame();
    void loaded(const DocumentLoader::Result& result);
    void showExtent(const recovery::Extent& extent);
    void updateTitles();
    void showTimeZone();
    void restorePlace();

    Commands& commands_;
    Services services_;
    QString path_;
    Reading reading_;
    QStringList titles_;
    DocumentLoader::Ticket load_;
    bool waitsForFrame_ = true;
    std::optional<DocumentLoader::Result> waiting_;
    ChatPane* pane_;
    QLabel* zoneLabel_ = nullptr;  // null until another zone than the computer's is chosen
};

}  // namespace vell
