// SPDX-License-Identifier: MIT
//
// A helper for the desktop tests: writes transcripts, finds a picture on the screen, and is the
// program that a picture is dragged to.
//
//     partner make TRANSCRIPT PICTURE    writes a chat with one picture, and the picture's bytes
//     partner wrap TRANSCRIPT FILE…    writes a chat with these files in one message each
//     partner album TRANSCRIPT           writes a chat of forty days in which much was shared
//     partner find                       prints the picture's place on the screen
//     partner take FILE                  a window for pictures in PNG and for files; writes what is
//                                        dropped on it, the first file to FILE.file
#include <QApplication>
#include <QBuffer>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLinearGradient>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QUrl>
#include <QWidget>
#include <array>
#include <cstdio>

#include "writers/transcript_writer.h"

namespace {

using namespace Qt::StringLiterals;

// A colour that no desktop uses.
constexpr QRgb colour = qRgb(255, 0, 255);
constexpr int fewestPixels = 2000;

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

int make(const QString& transcriptPath, const QString& picturePath) {
    QImage image(120, 90, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer picture;
    image.save(&picture, "PNG");
    writers::Transcript transcript{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {0, 1}, {}};
    transcript.messages = {
        {.sender = 0, .date = 1e8, .body = {writers::words(u"Look at this:"_s)}},
        {.sender = 1, .date = 1e8, .body = {writers::attached(u"field.png"_s, picture.data())}},
    };
    const bool isWritten = write(transcriptPath, writers::keyedTranscript(transcript)) &&
                           write(picturePath, picture.data());
    return isWritten ? 0 : 1;
}

int wrap(const QString& transcriptPath, const QStringList& paths) {
    writers::Transcript transcript{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {0, 1}, {}};
    for (const QString& path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) return 1;
        transcript.messages.push_back(
            {.sender = 1,
             .date = 1e8,
             .body = {writers::attached(QFileInfo(path).fileName(), file.readAll())}});
    }
    return write(transcriptPath, writers::keyedTranscript(transcript)) ? 0 : 1;
}

QByteArray painted(int index) {
    constexpr std::array sizes{QSize(640, 480), QSize(480, 640), QSize(1600, 300), QSize(90, 90)};
    QImage image(sizes[static_cast<size_t>(index) % sizes.size()], QImage::Format_RGB32);
    QLinearGradient colours(0, 0, image.width(), image.height());
    colours.setColorAt(0, QColor::fromHsv(index * 29 % 360, 160, 250));
    colours.setColorAt(1, QColor::fromHsv((index * 29 + 70) % 360, 230, 140));
    QPainter painter(&image);
    painter.fillRect(image.rect(), colours);
    QFont font;
    font.setPixelSize(image.height() / 2);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(image.rect(), Qt::AlignCenter, QString::number(index + 1));
    painter.end();
    QBuffer file;
    image.save(&file, "PNG");
    return file.data();
}

/// Something was written on 27 of 40 days, a picture sent on each of these, a link on every fifth
/// and a file on two. All evenings end at 23:10 in Berlin, which is another day further east.
int album(const QString& transcriptPath) {
    writers::Transcript transcript{u"AIM"_s, {{u"ann"_s}, {u"bob"_s}}, {1}, {}};
    const auto add = [&](double date, const writers::Piece& piece) {
        transcript.messages.push_back(
            {.sender = transcript.messages.size() / 2 % 2, .date = date, .body = {piece}});
    };
    int pictures = 0;
    for (int day = 0; day < 40; ++day) {
        if (day % 3 == 1) continue;
        const double evening = 150'066'600 + 86400.0 * day;  // 2005-10-03 21:10 UTC
        for (int i = day * day % 17; i >= 0; --i)
            add(evening - 100.0 * i, writers::words(u"Day %1, %2 to go."_s.arg(day).arg(i)));
        const QString name = u"picture %1.png"_s.arg(pictures + 1);
        add(evening, writers::attached(name, painted(pictures++)));
        if (day % 5 == 0) {
            add(evening,
                writers::linked(u"The timetable"_s, u"https://example.net/trains/%1"_s.arg(day)));
        }
        if (day % 20 == 0) add(evening, writers::attached(u"notes.txt"_s, "Bring umbrellas.\n"));
    }
    return write(transcriptPath, writers::keyedTranscript(transcript)) ? 0 : 1;
}

int find() {
    const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    QRect found;
    int count = 0;
    for (int y = 0; y < screen.height(); ++y) {
        for (int x = 0; x < screen.width(); ++x) {
            if ((screen.pixel(x, y) | 0xff000000) != colour) continue;
            found |= QRect(x, y, 1, 1);
            ++count;
        }
    }
    if (count < fewestPixels) return 1;
    std::printf("%d %d\n", found.center().x(), found.center().y());
    return 0;
}

/// Prints what happens to it.
class Taker final : public QWidget {
  public:
    explicit Taker(const QString& path) : path_(path) {
        setAcceptDrops(true);
        setWindowTitle(u"taker"_s);
        resize(200, 200);
    }

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override {
        if (event->mimeData()->hasFormat(u"image/png"_s) && event->mimeData()->hasUrls())
            event->acceptProposedAction();
    }
    void dragMoveEvent(QDragMoveEvent* event) override {
        event->acceptProposedAction();
        say("moved");
    }
    void dropEvent(QDropEvent* event) override {
        event->acceptProposedAction();
        const QList<QUrl> urls = event->mimeData()->urls();
        const bool isTaken = write(path_, event->mimeData()->data(u"image/png"_s)) &&
                             QFile::copy(urls.value(0).toLocalFile(), path_ + u".file"_s);
        say(isTaken ? "taken" : "not written");
    }

  private:
    static void say(const char* what) {
        std::printf("%s\n", what);
        std::fflush(stdout);
    }
    QString path_;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == u"make" && words.size() == 4) return make(words[2], words[3]);
    if (words.value(1) == u"wrap" && words.size() > 3) return wrap(words[2], words.mid(3));
    if (words.value(1) == u"album" && words.size() == 3) return album(words[2]);
    if (words.value(1) == u"find") return find();
    if (words.value(1) != u"take" || words.size() != 3) return 2;
    Taker taker(words[2]);
    taker.show();
    return QApplication::exec();
}
