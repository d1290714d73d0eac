// SPDX-License-Identifier: MIT
#include "phrases.h"

#include <cmath>

namespace archive {

using namespace Qt::StringLiterals;

namespace {

constexpr int rareWords = 30'000;

// The standard's distributions differ between libraries, and the archive has to be the same.
int below(int limit, std::mt19937& random) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

QStringList commonWords(Language language) {
    switch (language) {
        case Language::english:
            return u"the I you to a it and is that we of on in for at was be me so not are have "
                   "this with but my all just do what can now see if he they your will there one "
                   "up get when about like go know how good then think time from out some come "
                   "back here no yes ok would had day tomorrow home dinner train letter morning "
                   "really maybe later garden music coffee thing café naïve"_s.split(u' ');
        case Language::japanese:
            return u"今日 明日 電車 猫 写真 ありがとう 元気 何時 行く 食べる コーヒー 音楽 東京 "
                   u"友達 "
                   "本当 たぶん 会う 家 手紙 朝 私 は が の に を で と ね よ です ます カメラ"_s
                       .split(u' ');
        case Language::arabic:
            return u"أنا أنت في من على إلى هذا اليوم غدا نعم لا شكرا قطار بيت صورة قهوة صباح "
                   "موسيقى رسالة صديق متى أين جميل ربما"_s.split(u' ');
    }
    return {};
}

QString inventedWord(Language language, std::mt19937& random) {
    static const QString consonants = u"bcdfghjklmnprstvwz"_s;
    static const QString vowels = u"aeiouy"_s;
    static const QString arabic = u"ابتثجحخدذرزسشصضطظعغفقكلمنهوي"_s;
    QString word;
    if (language == Language::japanese) {
        for (int i = 1 + below(3, random); i > 0; --i)
            word += QChar(0x4e00 + below(3000, random));
        return word;
    }
    for (int i = 2 + below(3, random); i > 0; --i) {
        if (language == Language::arabic) {
            word += arabic[below(static_cast<int>(arabic.size()), random)];
            word += arabic[below(static_cast<int>(arabic.size()), random)];
        } else {
            word += consonants[below(static_cast<int>(consonants.size()), random)];
            word += vowels[below(static_cast<int>(vowels.size()), random)];
        }
    }
    return word;
}

}  // namespace

Phrases::Phrases(Language language) : language_(language), words_(commonWords(language)) {
    std::mt19937 random(static_cast<unsigned>(language) + 1);
    while (words_.size() < rareWords)
        words_.append(inventedWord(language, random));
}

/// The nth word is about 1/n times as frequent as the first.
const QString& Phrases::word(std::mt19937& random) const {
    const double exponent = static_cast<double>(random()) / 4294967296.0;
    const auto rank = std::pow(static_cast<double>(words_.size()), exponent) - 1;
    return words_[static_cast<qsizetype>(rank)];
}

QString Phrases::sentence(std::mt19937& random) const {
    static const QStringList ends = u". ! ? … 😀 👍🏽 ❤️ :-)"_s.split(u' ');
    const bool isJapanese = language_ == Language::japanese;
    QStringList words;
    for (int i = 2 + below(14, random); i > 0; --i)
        words.append(word(random));
    QString text = words.join(isJapanese ? QString() : u" "_s);
    if (below(3, random) == 0) text[0] = text[0].toUpper();
    if (below(4, random) == 0) text += isJapanese ? u"。"_s : ends[below(3, random)];
    if (below(12, random) == 0) text += u' ' + ends[below(static_cast<int>(ends.size()), random)];
    return text;
}

}  // namespace archive
