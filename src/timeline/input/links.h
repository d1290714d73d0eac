#pragma once
// SPDX-License-Identifier: MIT
//
// Links of a transcript: which may be opened at once, and which only after a question. Their
// addresses come from another person's file, so nothing of them is taken for markup, and what would
// deceive the eye is shown encoded.

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>

class QWidget;

namespace vell {

/// Whether an address may be opened without asking: its kind is a common one, it leads where it
/// seems to, and the text that stands for it, where that looks like an address, is on the same
/// host.
[[nodiscard]] bool isPlainLink(const QString& address, const QString& text);

/// The address as one line for people; controls and marks of direction are percent-encoded, and a
/// very long one loses its middle.
[[nodiscard]] QString shownAddress(const QString& address);

class Links final : public QObject {
    Q_OBJECT

  public:
    /// Hands an address to the desktop; returns whether it was accepted.
    using Opener = std::function<bool(const QUrl&)>;

    /// Questions are shown over the window, which also owns this object.
    explicit Links(QWidget& window);

    /// Replaces the desktop.
    void setOpener(Opener opener) { opener_ = std::move(opener); }
    /// Opens the address, after a question where it isn't plain.
    void open(const QString& address, const QString& text);

  private:
    void openNow(const QString& address);

    QWidget& window_;
    Opener opener_;
};

}  // namespace vell
