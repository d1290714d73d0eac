// SPDX-License-Identifier: MIT
//
// Measures PDFs of 10,000 messages in several scripts: processor time a page, and what memory grows
// by. Emoji are three a message. One script a process, so that none finds the fonts of another
// loaded.
//
//     vell-paper-benchmark [latin|hebrew|arabic|emoji [FILE.pdf]]
#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <cstdio>
#include <string>

#include "figures.h"
#include "identity/contacts/contacts_store.h"
#include "paper/pdf_document.h"
#include "transcript/chat_log.h"

namespace {

using vell::TesselChatLog;
using namespace Qt::StringLiterals;

constexpr int messages = 10'000;
constexpr double pagesASecond = 150;
constexpr double mostMegabytes = 64;

QStringList vocabulary(const QString& script) {
    if (script == u"hebrew")
        return u"אני אתה של על מה לא כן היום מחר בבית רכבת תודה שלום מאוד כמה עכשיו אולי תמונה"_s
            .split(u' ');
    if (script == u"arabic")
        return u"أنا أنت في من على إلى هذا اليوم غدا نعم لا شكرا قطار بيت صورة قهوة صباح جميل"_s
            .split(u' ');
    return u"the and you that was for are with his they this have from one had word but what"_s
        .split(u' ');
}

TesselChatLog chat(const QString& script) {
    const QStringList words = vocabulary(script);
    const QStringList emoji =
        u"🐈 🏠 👍🏽 👨‍👩‍👧 🇩🇪 ❤️ 🎉"_s.split(u' ');
    const vell::TesselUserID people[]{{{u"AIM"_s}, u"me"_s}, {{u"AIM"_s}, u"ann"_s}};
    QRandomGenerator random(42);
    std::vector<TesselChatLog::Event> events;
    double second = 2e8;
    const auto add = [&](std::optional<vell::TesselUserID> sender,
                         TesselChatLog::Event::Value value) {
        events.push_back({static_cast<qint64>(events.size()) + 1, foundation::Date{second},
                          std::move(sender), std::move(value)});
    };
    for (int i = 0; i < messages; ++i) {
        second += 40;
        if (i % 300 == 0) add({}, TesselChatLog::NewDay());
        if (i % 10 == 0) add({}, TesselChatLog::NewMinute());
        QString text = QString::number(i);
        for (int left = 1 + random.bounded(14); left > 0; --left)
            text += u' ' + words[random.bounded(words.size())];
        for (int left = script == u"emoji" ? 3 : 0; left > 0; --left)
            text += u' ' + emoji[random.bounded(emoji.size())];
        const auto& sender = people[i / 3 % 2];
        add(sender, TesselChatLog::PlainText{text});
        if (i % 3 == 2) add(sender, TesselChatLog::User());
    }
    return {{u"AIM"_s}, people[0], {people[1]}, std::move(events)};
}

/// Takes everything and keeps nothing.
class Nowhere final : public QIODevice {
  public:
    Nowhere() { open(WriteOnly); }

  protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char* /*data*/, qint64 size) override { return size; }
};

void measure(const QString& script, QIODevice& device) {
    const TesselChatLog log = chat(script);
    const vell::ContactsStore contacts;
    const auto format = vell::PaperFormat::of(QPageSize(QPageSize::A4));
    const auto setup = vell::currentPaperSetup(log, contacts, script, format);
    benchmarks::forgetPeak();
    const double memory = benchmarks::peakBytes();
    const double start = benchmarks::processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    const vell::PdfResult result = writePdf(log, setup, device);
    const double time = benchmarks::processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - start;
    const std::string name = script.toStdString();
    const auto pages = static_cast<double>(result.pages);
    benchmarks::report((name + ": a page").c_str(), time / pages, 1000 / pagesASecond, "ms");
    benchmarks::report((name + ": memory").c_str(), (benchmarks::peakBytes() - memory) / 1e6,
                       mostMegabytes, "MB");
    std::printf("%s: %.0f pages, %.0f a second\n", script.toUtf8().constData(), pages,
                pages / time * 1000);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        int status = 0;
        for (const char* script : {"latin", "hebrew", "arabic", "emoji"})
            status |= QProcess::execute(arguments[0], {QString::fromLatin1(script)});
        return status;
    }
    if (arguments.size() > 2) {
        QFile file(arguments[2]);
        if (!file.open(QIODevice::WriteOnly)) return 1;
        measure(arguments[1], file);
    } else {
        Nowhere nowhere;
        measure(arguments[1], nowhere);
    }
    return benchmarks::exitCode();
}
