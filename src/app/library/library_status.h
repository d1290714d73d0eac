#pragma once
// SPDX-License-Identifier: MIT
//
// LibraryStatus: the quiet line at the library window's lower edge: how far indexing is, what is in
// the library, which files couldn't be read.

#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QToolButton>
#include <QWidget>

namespace vell {

class Library;

class LibraryStatus final : public QWidget {
    Q_OBJECT

  public:
    explicit LibraryStatus(Library& library, QWidget* parent = nullptr);

    /// Shows something else for some milliseconds; 0 means until it is replaced.
    void showNotice(const QString& text, int milliseconds);

  Q_SIGNALS:
    /// A file that couldn't be read is to be opened all the same.
    void opened(const QByteArray& path);

  private:
    void showState();
    [[nodiscard]] QString stateText() const;

    Library& library_;
    QString notice_;
    QTimer noticeTimer_;
    QLabel* text_;
    QProgressBar* progress_;
    QToolButton* broken_;
};

}  // namespace vell
