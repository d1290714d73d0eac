// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard_contacts.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "foundation/local_path.h"
#include "foundation/whole_file.h"
#include "identity/vcard/vcard.h"
#include "toolkit/logger.h"

namespace vell {
namespace {

/// An address book of twenty thousand people with pictures takes a quarter of this.
constexpr qint64 largestFile = qint64{512} << 20;
/// More pictures than a person's card has.
constexpr size_t mostPictures = 4;

/// How cards name a messaging service.
struct Service {
    QStringView name;
    QByteArrayView properties[2] = {};
    QByteArrayView customProperty =
        {};                       ///< the start of a program's own, as in "X-messaging/aim-All"
    QStringView schemes[2] = {};  ///< of URIs
};

/// Any other scheme belongs to the user name, as in "live:bob".
constexpr Service services[] = {
    {u"AIM", {"X-AIM"}, "X-MESSAGING/AIM-", {u"aim"}},
    {u"Facebook", {"X-FACEBOOK"}, {}, {u"facebook"}},
    {u"GaduGadu", {"X-GADUGADU"}, "X-MESSAGING/GADU-", {u"gg"}},
    {u"GoogleTalk", {"X-GOOGLE-TALK", "X-GTALK"}, {}, {u"gtalk"}},
    {u"GroupWise", {"X-GROUPWISE"}, "X-MESSAGING/GROUPWISE-"},
    {u"ICQ", {"X-ICQ"}, "X-MESSAGING/ICQ-", {u"icq"}},
    {u"IRC", {}, "X-MESSAGING/IRC-", {u"irc"}},
    {u"Jabber", {"X-JABBER"}, "X-MESSAGING/XMPP-", {u"xmpp"}},
    {u"MSN", {"X-MSN"}, "X-MESSAGING/MSN-", {u"msn", u"msnim"}},
    {u"QQ", {"X-QQ"}, {}, {u"qq"}},
    {u"SIP", {}, "X-MESSAGING/SIP-", {u"sip", u"sips"}},
    {u"Skype", {"X-SKYPE", "X-SKYPE-USERNAME"}, "X-MESSAGING/SKYPE-", {u"skype"}},
    {u"Yahoo", {"X-YAHOO"}, "X-MESSAGING/YAHOO-", {u"ymsgr"}},
    // Only a parameter can name the service. Last, as it is a prefix of the other custom ones.
    {u"", {"X-MS-IMADDRESS"}, "X-MESSAGING/", {u"im", u"x-apple"}},
};

bool startsWith(QByteArrayView text, QByteArrayView start) {
    return text.size() >= start.size() &&
           text.first(start.size()).compare(start, Qt::CaseInsensitive) == 0;
}

const Service* serviceOfProperty(const VCardProperty& property) {
    if (!startsWith(property.name, "X-")) return nullptr;
    const auto* found =
        std::find_if(std::begin(services), std::end(services), [&](const Service& service) {
            const QByteArrayView custom = service.customProperty;
            return property.is(service.properties[0]) || property.is(service.properties[1]) ||
                   (!custom.empty() && startsWith(property.name, custom));
        });
    return found != std::end(services) ? found : nullptr;
}

const Service* serviceOfScheme(QStringView scheme) {
    if (scheme.empty()) return nullptr;
    const auto* found =
        std::find_if(std::begin(services), std::end(services), [&](const Service& service) {
            return std::any_of(
                std::begin(service.schemes), std::end(service.schemes),
                [&](QStringView s) { return s.compare(scheme, Qt::CaseInsensitive) == 0; });
        });
    return found != std::end(services) ? found : nullptr;
}

enum class Plus { isPlus, isBlank };

/// A plus in front belongs to a telephone number all the same.
QString percentDecoded(QStringView text, Plus plus = Plus::isPlus) {
    QByteArray bytes = text.toUtf8();
    if (plus == Plus::isBlank && bytes.size() > 1)
        std::replace(bytes.begin() + 1, bytes.end(), '+', ' ');
    return QString::fromUtf8(QByteArray::fromPercentEncoding(bytes));
}

/// Cuts "scheme:" off; false when the text starts with another one or none.
bool takeScheme(QStringView& text, QStringView scheme) {
    if (text.size() <= scheme.size() || text[scheme.size()] != u':' ||
        !text.startsWith(scheme, Qt::CaseInsensitive))
        return false;
    text = text.mid(scheme.size() + 1);
    return true;
}

/// The user of "bob", "//bob", "bob?message=hi" and of the older forms that ask for an action:
/// "goim?screenname=bob", "sendim?bob", "chat?contact=bob".
QString userOfUri(QStringView path, Plus plus = Plus::isPlus) {
    while (path.startsWith(u'/'))
        path = path.mid(1);
    const qsizetype mark = path.indexOf(u'?');
    if (mark < 0) return percentDecoded(path, plus);
    static constexpr QStringView actions[] = {u"goim", u"sendim", u"chat", u"addbuddy",
                                              u"addfriend"};
    const QStringView before = path.left(mark);
    if (std::none_of(std::begin(actions), std::end(actions), [&](QStringView action) {
            return before.compare(action, Qt::CaseInsensitive) == 0;
        }))
        return percentDecoded(before, plus);
    QStringView query = path.mid(mark + 1);
    if (const qsizetype end = query.indexOf(u'&'); end >= 0) query = query.left(end);
    return percentDecoded(query.mid(query.indexOf(u'=') + 1), plus);
}

/// E-mail-like addresses have no spaces: those in a card of version 2.1 come from folding.
QString withoutFolds(QString address, const VCardProperty& property) {
    if (property.version == VCardVersion::v2_1 && address.contains(u'@'))
        address.removeIf([](QChar c) { return c.isSpace(); });
    return address;
}

/// The bytes of "data:image/jpeg;base64,…", some of whose punctuation may be escaped.
QByteArray bytesOfDataUri(QByteArrayView uri) {
    const qsizetype comma = uri.indexOf(',');
    if (comma < 0) return {};
    QByteArray content = uri.sliced(comma + 1).toByteArray();
    if (content.contains('%')) content = QByteArray::fromPercentEncoding(content);
    return uri.first(comma).contains("base64") ? QByteArray::fromBase64(content) : content;
}

/// The first of several that isn't empty.
QString firstOf(const QStringList& texts) {
    for (const QString& text : texts)
        if (QString simplified = text.simplified(); !simplified.isEmpty()) return simplified;
    return {};
}

/// Collects what a card's properties say of a person.
class Mapping {
  public:
    explicit Mapping(ContactPictures pictures) : wantedPictures_(pictures) {}

    void read(const VCardProperty& property) {
        static constexpr struct {
            QByteArrayView property;
            void (Mapping::*read)(const VCardProperty& property);
        } readers[] = {
            {"EMAIL", &Mapping::readEmail},
            {"FN", &Mapping::readFormattedName},
            {"IMPP", &Mapping::readMessagingUri},
            {"KIND", &Mapping::readKind},
            {"N", &Mapping::readName},
            {"NICKNAME", &Mapping::readNickname},
            {"ORG", &Mapping::readOrganisation},
            {"PHOTO", &Mapping::readPicture},
            {"TEL", &Mapping::readPhone},
            {"UID", &Mapping::readIdentifier},
            {"X-ADDRESSBOOKSERVER-KIND", &Mapping::readKind},
            {"X-EVOLUTION-LIST", &Mapping::readList},
            {"X-NICKNAME", &Mapping::readNickname},
        };
        for (const auto& known : readers)
            if (property.is(known.property)) return (this->*known.read)(property);
        if (const Service* service = serviceOfProperty(property))
            readMessaging(property, service->name);
    }

    /// Nothing when the card is a group or a list of others.
    [[nodiscard]] std::optional<VCardContact> result() {
        if (!isPerson_) return std::nullopt;
        contact_.record.nickname = nickname_.text;
        for (const Preferred* name :
             {&formattedName_, &composedName_, &organisation_, &nickname_}) {
            if (name->text.isEmpty()) continue;
            contact_.record.name = name->text;
            break;
        }
        std::stable_sort(
            pictures_.begin(), pictures_.end(),
            [](const Picture& a, const Picture& b) { return a.preference < b.preference; });
        for (Picture& picture : pictures_)
            contact_.record.thumbnails.push_back(std::move(picture.bytes));
        return std::move(contact_);
    }

  private:
    /// The preferred one of several texts.
    struct Preferred {
        QString text;
        int preference = 0;
        void offer(QString value, const VCardProperty& property) {
            if (value.isEmpty() || (!text.isEmpty() && property.preference() >= preference)) return;
            text = std::move(value);
            preference = property.preference();
        }
    };
    struct Picture {
        int preference;
        QByteArray bytes;
    };

    void readFormattedName(const VCardProperty& property) {
        formattedName_.offer(property.text().simplified(), property);
    }

    void readName(const VCardProperty& property) {
        // Family, given, additional, prefixes, suffixes; later versions make a list of each.
        const bool areLists = property.version != VCardVersion::v2_1;
        QStringList parts = property.parts(u';', areLists ? u',' : QChar());
        parts.resize(5);
        const QStringList inOrder = {parts[3], parts[1], parts[2], parts[0], parts[4]};
        composedName_.offer(inOrder.join(u' ').simplified(), property);
    }

    void readNickname(const VCardProperty& property) {
        // Only later versions make a list of it.
        const bool isList = property.version != VCardVersion::v2_1;
        nickname_.offer(firstOf(property.parts(isList ? u',' : QChar())), property);
    }

    void readOrganisation(const VCardProperty& property) {
        organisation_.offer(firstOf(property.parts(u';')), property);
    }

    void readIdentifier(const VCardProperty& property) {
        QString& identifier = contact_.record.identifier;
        if (identifier.isEmpty()) identifier = property.text().trimmed();
    }

    void readKind(const VCardProperty& property) { refuse(property, u"group"); }
    void readList(const VCardProperty& property) { refuse(property, u"TRUE"); }
    void refuse(const VCardProperty& property, QStringView value) {
        if (property.text().trimmed().compare(value, Qt::CaseInsensitive) == 0) isPerson_ = false;
    }

    void readEmail(const VCardProperty& property) {
        QString address = withoutFolds(property.text().trimmed(), property);
        QStringView rest = address;
        if (takeScheme(rest, u"mailto")) address = userOfUri(rest);
        if (!address.isEmpty()) contact_.record.emailAddresses.push_back(std::move(address));
    }

    void readPhone(const VCardProperty& property) {
        QString number = property.text().trimmed();
        QStringView rest = number;
        if (takeScheme(rest, u"tel")) {
            if (const qsizetype end = rest.indexOf(u';'); end >= 0) rest = rest.left(end);
            number = percentDecoded(rest).trimmed();
        }
        if (!number.isEmpty()) contact_.record.phoneNumbers.push_back({std::move(number)});
    }

    /// Some programs keep several addresses in one value, separated by a private character.
    void readMessaging(const VCardProperty& property, QStringView service) {
        for (const QString& value : property.text().split(QChar(0xe000))) {
            QString user = withoutFolds(value.trimmed(), property);
            if (!user.isEmpty())
                contact_.record.instantMessageAddresses.push_back(
                    {std::move(user), service.toString()});
        }
    }

    void readMessagingUri(const VCardProperty& property) {
        QString service = QString::fromUtf8(property.parameter("X-SERVICE-TYPE"));
        QString user = withoutFolds(property.text().trimmed(), property);
        const QStringView uri = user;
        const QStringView scheme = uri.first(std::max<qsizetype>(uri.indexOf(u':'), 0));
        if (const Service* known = serviceOfScheme(scheme)) {
            if (service.isEmpty()) service = known->name.toString();
            const Plus plus = known->name == u"AIM" ? Plus::isBlank : Plus::isPlus;
            user = userOfUri(uri.sliced(scheme.size() + 1), plus).trimmed();
            // A program's name may follow the user's address.
            if (known->name == u"Jabber") user = user.section(u'/', 0, 0);
        }
        if (user.isEmpty()) return;
        contact_.record.instantMessageAddresses.push_back({std::move(user), std::move(service)});
    }

    void readPicture(const VCardProperty& property) {
        if (wantedPictures_ == ContactPictures::unwanted) return;
        QByteArrayView value = property.value;
        while (value.startsWith(' '))
            value = value.sliced(1);
        QByteArray bytes;
        if (startsWith(value, "data:")) {
            bytes = bytesOfDataUri(value);
        } else if (property.encoding == VCardProperty::Encoding::base64) {
            bytes = property.bytes();
        } else if (contact_.pictureLocation.isEmpty()) {
            contact_.pictureLocation = property.text().trimmed();
        }
        if (bytes.isEmpty() || pictures_.size() == mostPictures) return;
        pictures_.push_back({property.preference(), std::move(bytes)});
    }

    const ContactPictures wantedPictures_;
    bool isPerson_ = true;
    Preferred formattedName_;
    Preferred composedName_;
    Preferred organisation_;
    Preferred nickname_;
    std::vector<Picture> pictures_;
    VCardContact contact_;
};

}  // namespace

std::optional<VCardContact> contactFromVCard(QByteArray card) {
    VCardReader reader(std::move(card));
    Mapping mapping(ContactPictures::wanted);
    const auto found = reader.next([&](const VCardProperty& property) { mapping.read(property); });
    return found == VCardReader::Card::none ? std::nullopt : mapping.result();
}

qint64 readVCards(QByteArray file, const QString& origin, ContactPictures pictures, Logger& log,
                  const ContactHandler& handle, const std::stop_token& stop) {
    VCardReader reader(std::move(file));
    qint64 whole = 0;
    for (qint64 number = 1; !stop.stop_requested(); number++) {
        Mapping mapping(pictures);
        const auto found =
            reader.next([&](const VCardProperty& property) { mapping.read(property); });
        if (found == VCardReader::Card::none) break;
        if (found == VCardReader::Card::cutOff) {
            const QString place = origin + u':' + QString::number(reader.cardLine());
            log.warn("Skipped a malformed contact card:", place, "it has no end");
            continue;
        }
        whole++;
        std::optional<VCardContact> contact = mapping.result();
        if (!contact) continue;
        if (contact->record.identifier.isEmpty())
            contact->record.identifier = origin + u'#' + QString::number(number);
        handle(contact->record);
    }
    return whole;
}

std::optional<QString> readVCardFile(const QString& path, ContactPictures pictures, Logger& log,
                                     const ContactHandler& handle, const std::stop_token& stop) {
    QFile file(foundation::localPath(path));
    // Opening a pipe would block until another process writes to it.
    if (QFileInfo info(file); info.exists() && !info.isFile())
        return QStringLiteral("Not a regular file");
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return file.errorString();
    if (file.size() > largestFile) return QStringLiteral("Too large for an address book");
    QByteArray bytes;
    try {
        bytes = foundation::readWhole(file);
    } catch (const foundation::Error& error) {
        return error.debugDescription();
    }
    const qint64 cards = readVCards(std::move(bytes), path, pictures, log, handle, stop);
    if (cards == 0 && !stop.stop_requested())
        return QStringLiteral("There is no contact card in it");
    return std::nullopt;
}

}  // namespace vell
