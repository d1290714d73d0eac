// SPDX-License-Identifier: MIT
#include "conversations.h"

#include <array>
#include <random>

#include "writers/transcript_writer.h"

namespace benchmarks {
namespace {

using writers::Message;
using writers::Transcript;

constexpr qsizetype textLength = 50;

class Conversation {
  public:
    Transcript make(std::size_t messages) {
        Transcript transcript{
            .service = "AIM",
            .people = {{"ann.example", "AIM"}, {"bob@example.org", "AIM"}, {"carol_1984", "AIM"}},
            .participants = {1, 2}};
        transcript.messages.reserve(messages);
        for (std::size_t i = 0; i < messages; ++i)
            transcript.messages.push_back(message(i));
        return transcript;
    }

  private:
    template <class T, std::size_t n>
    const T& oneOf(const std::array<T, n>& choices) {
        return choices[random_() % n];
    }

    QString text() {
        static constexpr std::array words{"the",   "cat",  "window", "tomorrow", "really",
                                          "train", "tea",  "never",  "found",    "it",
                                          "at",    "last", "sorry",  "weekend",  "you"};
        QString text;
        while (text.size() < textLength)
            text += QLatin1StringView(oneOf(words)) + ' ';
        text.resize(textLength);
        return text;
    }

    Message message(std::size_t number) {
        static constexpr std::array gaps{3, 8, 20, 70, 400, 9000};
        time_ += oneOf(gaps);
        const QString words = text();
        Message message{.sender = random_() % 3, .date = time_, .originalText = words};
        if (number % 10 == 9) {
            message.body = {
                writers::words(words.first(30)),
                writers::linked(words.sliced(30), "http://example.org/" + QString::number(number))};
        } else {
            message.body = {writers::words(words)};
        }
        return message;
    }

    std::mt19937 random_{20090612};
    double time_ = 268405445.25;
};

}  // namespace

QByteArray conversation(std::size_t messages, Form form) {
    const Transcript transcript = Conversation().make(messages);
    return form == Form::keyed ? writers::keyedTranscript(transcript)
                               : writers::nonKeyedTranscript(transcript);
}

QByteArray pictures(std::size_t megabytes) {
    Transcript transcript = Conversation().make(megabytes);
    std::mt19937 random(1);
    for (Message& message : transcript.messages) {
        // The head of a JPEG of 1600 x 1200 pixels, then bytes as random as compressed ones.
        QByteArray picture("\xff\xd8\xff\xc0\x00\x11\x08\x04\xb0\x06\x40\x03", 12);
        while (picture.size() < 1 << 20)
            picture.append(static_cast<char>(random()));
        message.body.push_back(writers::attached("IMG.jpg", picture));
    }
    return writers::keyedTranscript(transcript);
}

}  // namespace benchmarks
