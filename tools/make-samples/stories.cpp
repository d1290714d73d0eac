// SPDX-License-Identifier: MIT
#include "stories.h"

#include <QDateTime>
#include <QFile>
#include <QTimeZone>

namespace samples {
namespace {

using writers::attached;
using writers::linked;
using writers::Message;
using writers::Piece;
using writers::Transcript;
using writers::words;

/// The bytes of a file in attachments/.
QByteArray contents(const char* name) {
    QFile file(QStringLiteral(VELL_SAMPLE_ATTACHMENTS "/") + name);
    if (!file.open(QIODevice::ReadOnly)) qFatal("make-samples: %s can't be read", name);
    return file.readAll();
}

/// Tells a conversation message by message.
class Storyteller {
  public:
    explicit Storyteller(Transcript& transcript) : transcript_(transcript) {}

    /// In UTC; the next message comes then.
    void at(int year, int month, int day, int hour, int minute, int second = 0) {
        const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
        const QDateTime now(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
        time_ = static_cast<double>(reference.secsTo(now));
    }
    void says(size_t person, std::vector<Piece> pieces, int pause = 17) {
        transcript_.messages.push_back(
            {.sender = person, .date = time_, .body = std::move(pieces), .flags = 5});
        time_ += pause;
    }
    void says(size_t person, const char* text, int pause = 17) {
        says(person, {words(QString::fromUtf8(text))}, pause);
    }
    void system(const char* text, int pause = 4) {
        transcript_.messages.push_back(
            {.date = time_, .body = {words(QString::fromUtf8(text))}, .flags = 0});
        time_ += pause;
    }

  private:
    Transcript& transcript_;
    double time_ = 0;
};

enum : size_t { nora, jonas, yael };

void tellTheFirstDays(Storyteller& story) {
    story.at(2009, 6, 12, 18, 4);
    story.says(nora, "Is one of you in our bathroom?");
    story.says(jonas, "No. Why?", 9);
    story.says(nora, "Because something is.", 40);
    story.says(nora, {attached("bathroom, 8 o'clock.jpg", contents("cat-in-bathtub.jpg"))}, 6);
    story.says(nora, "It looked at me as if I should have knocked.", 31);
    story.says(jonas, "That isn't a cat, that's a landlord.", 12);
    story.system("%@ has joined the chat.");
    story.says(yael, "What did I miss");
    story.says(yael, "oh");
    story.says(yael, "OH 🐈", 25);
    story.says(nora, "The window was open a hand's breadth. We live on the third floor.");
    story.says(jonas, "Was there water in the tub?", 8);
    story.says(nora, "There was. It had opinions about that too.", 95);
    story.says(yael,
               {words("It says here to wait a day before you name it: "),
                linked("So a cat has chosen you", "http://cats.example.org/faq#chosen"),
                words(". After a name there's no way back.")},
               14);
    story.says(jonas, "His name is Admiral.", 5);
    story.says(yael, "Jonas.", 3);
    story.says(jonas, "Too late.", 60);

    story.at(2009, 6, 13, 9, 31);
    story.says(yael, "My grandmother has a saying for this:", 8);
    story.says(yael, "חתול שבא לבד, נשאר לבד בחלון.", 20);
    story.says(jonas, "Which means?", 11);
    story.says(yael,
               "\"A cat that comes alone stays, alone, in the window.\" It sounds better from her.",
               70);
    story.says(nora, "He's asleep on my thesis. All of it. I've asked him twice.", 22);
    story.says(nora,
               {words("Look. Only the tail is awake:\n"),
                attached("tail.gif", contents("sleeping-cat.gif"))},
               45);
    story.says(jonas,
               "Somebody must be missing him. I've made a poster, please hang it everywhere:", 12);
    story.says(jonas, {attached("found-cat.pdf", contents("found-cat-poster.pdf"))}, 33);
    story.says(yael, "\"Dislikes: the laptop's owner using it\" 😂", 6);
    story.says(nora, "I didn't dictate that so that you'd print it.", 90);
}

void tellTheLastDays(Storyteller& story) {
    story.at(2009, 6, 14, 20, 12);
    story.says(nora,
               "Thirty posters. On the way back the Admiral walked ahead of us to the lake, as if "
               "he'd booked the jetty.",
               15);
    story.says(nora, {attached("the jetty.png", contents("evening-by-the-lake.png"))}, 21);
    story.says(yael, "You look happy, all three of you.", 12);
    story.says(nora, "If anybody calls, I won't pick up.", 160);
    story.says(jonas, "Somebody called.", 5);
    story.says(nora, "No.", 4);
    story.says(jonas, "Mrs Okafor. From the bakery. Downstairs.", 7);
    story.says(nora, "NO");
    story.says(
        jonas,
        "He's called Ingrid. And he's a she. She has two other families in this street, and a "
        "standing order at the fishmonger's.",
        38);
    story.says(yael, "A landlord after all.", 400);
    story.says(
        nora,
        "She says we may keep the bathtub days: Friday to Sunday. In return we learn to bake. "
        "This is the contract:",
        11);
    story.says(nora, {attached("cinnamon rolls.txt", contents("cinnamon-rolls.txt"))}, 26);

    story.at(2009, 6, 19, 17, 58);
    story.says(jonas, "It's Friday.", 8);
    story.says(jonas, "Window's open. Butter's soft. Twelve rolls.", 45);
    story.says(
        yael,
        {words("I'm bringing "), linked("tea", "http://tea.example.org/list?kind=mint&cups=3"),
         words(" and a towel.")},
        130);
    story.says(nora, "She's here. Eleven rolls.", 9);
    story.system("%@ has left the chat.");
}

}  // namespace

Transcript catInTheBathtub() {
    Transcript transcript{.service = "AIM",
                          .people = {{"nora.lindqvist"}, {"jonas_at_home"}, {"yael.b", "AIM"}},
                          .participants = {jonas, yael}};
    Storyteller story(transcript);
    tellTheFirstDays(story);
    tellTheLastDays(story);
    return transcript;
}

Transcript twoUmbrellas() {
    enum : size_t { marta, oskar };
    Transcript transcript{.service = "Jabber",
                          .people = {{"marta@chat.example.net"}, {"oskar@chat.example.net"}},
                          .participants = {oskar}};
    Storyteller story(transcript);
    story.at(2004, 10, 22, 16, 40);
    story.says(marta, "You took my umbrella.");
    story.says(oskar, "I took an umbrella. It was black. They are all black.", 12);
    story.says(marta, "Mine has a duck for a handle.", 21);
    story.says(oskar, "…", 3);
    story.says(oskar, "So that's why everybody smiled at me today.", 50);
    story.says(marta,
               {words("Bring it to the lighthouse tonight, it's the long night of the lamps: "),
                linked("http://lamps.example.com/2004/", "http://lamps.example.com/2004/")},
               18);
    story.says(oskar, "It will rain.", 6);
    story.says(marta, "I have an umbrella. I have yours.");
    story.at(2004, 10, 23, 0, 51);
    story.says(oskar, {attached("lamp.png", contents("lighthouse.png"))}, 12);
    story.says(oskar, "Home and dry. Thank you for the lamp, and for sharing the duck.", 40);
    story.says(marta, "We had two umbrellas and stood under one.", 15);
    story.says(oskar, "I noticed.");
    return transcript;
}

Transcript lampInTheWindow() {
    enum : size_t { dafna, gil };
    Transcript transcript{.service = "Jabber",
                          .people = {{"dafna@chat.example.net"}, {"gil@chat.example.net"}},
                          .participants = {gil}};
    Storyteller story(transcript);
    story.at(2007, 12, 4, 18, 58);
    story.says(dafna, "ראית את המטרייה שלי?");
    story.says(gil, "איזו מהן?", 9);
    story.says(dafna, "זו עם ראש הברווז.", 14);
    story.says(gil, "השאלתי אותה לחתול. ירד גשם.", 21);
    story.says(gil, "הוא ביקש יפה: “meow”, פעמיים.", 35);
    story.says(dafna, "ומתי הוא מחזיר?", 12);
    story.says(gil, "אחרי 20:00, כשהמגדלור נדלק.");
    story.says(gil, {attached("lamp.png", contents("lighthouse.png"))}, 8);
    story.says(dafna, "השארתי מנורה בחלון. שיבוא.", 30);
    story.says(dafna, {words(QString::fromUtf8("ותקרא את זה: ")),
                       linked(QString::fromUtf8("למה חתולים אוהבים מטריות"),
                              "http://cats.example.org/faq#umbrellas")});
    story.says(gil, "OK");
    return transcript;
}

Transcript nobodySaidAnything() {
    return {.service = "AIM",
            .people = {{"captain.haddon"}, {"the_quiet_one"}},
            .participants = {0, 1}};
}

}  // namespace samples
