#pragma once
// SPDX-License-Identifier: MIT
//
// What tests with windows share: the running program without a main, on the offscreen platform,
// with settings of its own and a folder for files.

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QSettings>
#include <QTemporaryDir>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include "app/application.h"
#include "app/documents/document_window.h"
#include "foundation/print.h"
#include "writers/transcript_writer.h"

namespace vell::test {

template <class Condition>
bool waitUntil(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition() && !timer.hasExpired(20000))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    return condition();
}

/// Deletes what was scheduled to be deleted.
inline void deleteDeferred() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The first open window of this name.
template <class Window = QWidget>
Window* openWindow(const char* objectName) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String(objectName) && widget->isVisible())
            return qobject_cast<Window*>(widget);
    }
    return nullptr;
}

/// A chat of so many messages, "first", then numbers, then "last".
inline QByteArray chat(int messages, const QString& other = QStringLiteral("bob")) {
    writers::Transcript transcript{
        QStringLiteral("AIM"), {{QStringLiteral("ann")}, {other}}, {0, 1}, {}};
    for (int i = 0; i < messages; ++i) {
        QString text = QStringLiteral("number %1").arg(i);
        if (i == 0) text = QStringLiteral("first");
        if (i == messages - 1) text = QStringLiteral("last");
        transcript.messages.push_back(
            {.sender = i % 2, .date = 1e8 + 100.0 * i, .body = {writers::words(text)}});
    }
    return writers::keyedTranscript(transcript);
}

/// Reads from the disk; reading what has "stalled" in its name blocks until it is released.
class StallingReader final : public FileReader {
  public:
    std::shared_ptr<const foundation::FileWrapper> read(const QString& path) override {
        if (path.contains(QLatin1String("stalled"))) {
            std::unique_lock lock(mutex_);
            released_.wait(lock, [this] { return isReleased_; });
        }
        return disk_.read(path);
    }
    void release() {
        const std::lock_guard lock(mutex_);
        isReleased_ = true;
        released_.notify_all();
    }

  private:
    DiskFileReader disk_;
    std::mutex mutex_;
    std::condition_variable released_;
    bool isReleased_ = false;
};

class Windows : public testing::Test {
  protected:
    Windows() {
        foundation::setPrintFunction([](QStringView) {});
        QSettings().clear();
        start();
    }
    ~Windows() override {
        end();
        foundation::setPrintFunction({});
    }

    /// Starts the program, with files read by the reader.
    void start(std::shared_ptr<FileReader> reader = nullptr) {
        program = std::make_unique<Application>(std::move(reader));
    }
    /// Quits.
    void end() {
        if (program) program->quit();
        deleteDeferred();
        program.reset();
    }

    QString file(const QString& name, const QByteArray& bytes) const {
        const QString path = folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    [[nodiscard]] std::vector<DocumentWindow*> documentWindows() const {
        std::vector<DocumentWindow*> windows;
        for (QWidget* window : program->documentWindows())
            windows.push_back(qobject_cast<DocumentWindow*>(window));
        return windows;
    }

    [[nodiscard]] DocumentWindow* windowOf(const QString& path) const {
        for (DocumentWindow* window : documentWindows()) {
            if (window->path() == path) return window;
        }
        return nullptr;
    }

    /// Opens a good transcript and waits until it is shown.
    DocumentWindow* opened(const QString& path) {
        program->open({path});
        EXPECT_TRUE(waitUntil([&] { return windowOf(path) && windowOf(path)->isLoaded(); }));
        return windowOf(path);
    }

    QTemporaryDir folder;
    std::unique_ptr<Application> program;
};

}  // namespace vell::test
