// SPDX-License-Identifier: MIT
#include "identity/vcard/vcard_contact.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>

#include "identity/vcard/vcard.h"

namespace vell {
namespace {

class Mapping {
  public:
    explicit Mapping(ContactPictures pictures) : pictures_(pictures) {}

    void read(const VCardProperty& property);
    [[nodiscard]] std::optional<VCardContact> result();

  private:
    /// A property that is read, and, for a messaging address, the service it belongs to.
    struct Reader {
        std::string_view property;
        void (Mapping::*read)(const VCardProperty& property, QStringView service);
        QStringView service = {};
    };
    static const Reader* reader(const VCardProperty& property);
    static const Reader* customReader(const VCardProperty& property);

    void readFormattedName(const VCardProperty& property, QStringView);
    void readName(const VCardProperty& property, QStringView);
    void readNickname(const VCardProperty& property, QStringView);
    void readOrganisation(const VCardProperty& property, QStringView);
    void readIdentifier(const VCardProperty& property, QStringView);
    void readKind(const VCardProperty& property, QStringView);
    void readList(const VCardProperty& property, QStringView);
    void readEmail(const VCardProperty& property, QStringView);
    void readPhone(const VCardProperty& property, QStringView);
    void readMessaging(const VCardProperty& property, QStringView service);
    void readMessagingUri(const VCardProperty& property, QStringView);
    void readPicture(const VCardProperty& property, QStringView);

    /// A text of which several may be given and one counts.
    struct Preferred {
        QString text;
        int preference = 0;
        [[nodiscard]] bool takes(const VCardProperty& property) const {
            return text.isEmpty() || property.preference() < preference;
        }
        void set(QString value, const VCardProperty& property) {
            if (value.isEmpty()) return;
            text = std::move(value);
            preference = property.preference();
        }
    };

    const ContactPictures pictures_;
    bool isPerson_ = true;
    Preferred formattedName_;
    Preferred composedName_;
    Preferred organisation_;
    Preferred nickname_;
    std::vector<int> picturePreferences_;  ///< of the thumbnails
    VCardContact contact_;
};

/// More of them are no person's.
constexpr size_t mostPictures = 4;

struct Scheme {
    QStringView name;
    QStringView service;  ///< empty where only a parameter can tell
};

/// Anything else before a colon belongs to the user name, as in "live:bob".
constexpr Scheme messagingSchemes[] = {
    {u"aim", u"AIM"},     {u"facebook", u"Facebook"},
    {u"gg", u"GaduGadu"}, {u"gtalk", u"GoogleTalk"},
    {u"icq", u"ICQ"},     {u"im", u""},
    {u"irc", u"IRC"},     {u"msn", u"MSN"},
    {u"msnim", u"MSN"},   {u"qq", u"QQ"},
    {u"sip", u"SIP"},     {u"sips", u"SIP"},
    {u"skype", u"Skype"}, {u"x-apple", u""},
    {u"xmpp", u"Jabber"}, {u"ymsgr", u"Yahoo"},
};

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

/// An address as in a mail has no blanks: those in a card of version 2.1 are where it was folded.
QString withoutFolds(QString address, const VCardProperty& property) {
    if (property.version == VCardVersion::v2_1 && address.contains(u'@'))
        address.removeIf([](QChar c) { return c.isSpace(); });
    return address;
}

bool isTrue(const VCardProperty& property) {
    return property.text().trimmed().compare(u"TRUE", Qt::CaseInsensitive) == 0;
}

/// The bytes of "data:image/jpeg;base64,…", some of whose punctuation may be escaped.
QByteArray bytesOfDataUri(std::string_view uri) {
    const size_t comma = uri.find(',');
    if (comma == std::string_view::npos) return {};
    const std::string_view type = uri.substr(0, comma);
    QByteArray content(uri.data() + comma + 1, static_cast<qsizetype>(uri.size() - comma - 1));
    if (content.contains('%')) content = QByteArray::fromPercentEncoding(content);
    const bool isBase64 = type.find("base64") != std::string_view::npos;
    return isBase64 ? QByteArray::fromBase64(content) : content;
}

bool startsWith(std::string_view text, std::string_view lowerCase) {
    return text.size() >= lowerCase.size() &&
           std::equal(lowerCase.begin(), lowerCase.end(), text.begin(),
                      [](char lower, char c) { return c == lower || (c | 0x20) == lower; });
}

const Mapping::Reader* Mapping::reader(const VCardProperty& property) {
    static constexpr Reader readers[] = {
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
        {"X-AIM", &Mapping::readMessaging, u"AIM"},
        {"X-EVOLUTION-LIST", &Mapping::readList},
        {"X-FACEBOOK", &Mapping::readMessaging, u"Facebook"},
        {"X-GADUGADU", &Mapping::readMessaging, u"GaduGadu"},
        {"X-GOOGLE-TALK", &Mapping::readMessaging, u"GoogleTalk"},
        {"X-GROUPWISE", &Mapping::readMessaging, u"GroupWise"},
        {"X-GTALK", &Mapping::readMessaging, u"GoogleTalk"},
        {"X-ICQ", &Mapping::readMessaging, u"ICQ"},
        {"X-JABBER", &Mapping::readMessaging, u"Jabber"},
        {"X-MS-IMADDRESS", &Mapping::readMessaging},
        {"X-MSN", &Mapping::readMessaging, u"MSN"},
        {"X-NICKNAME", &Mapping::readNickname},
        {"X-QQ", &Mapping::readMessaging, u"QQ"},
        {"X-SKYPE", &Mapping::readMessaging, u"Skype"},
        {"X-SKYPE-USERNAME", &Mapping::readMessaging, u"Skype"},
        {"X-YAHOO", &Mapping::readMessaging, u"Yahoo"},
    };
    const auto* found =
        std::find_if(std::begin(readers), std::end(readers), [&](const Reader& known) {
            // Lengths first: most properties of a card are of no interest.
            return known.property.size() == property.name.size() && property.is(known.property);
        });
    return found != std::end(readers) ? found : customReader(property);
}

/// "X-messaging/aim-All": a program's own name for each service.
const Mapping::Reader* Mapping::customReader(const VCardProperty& property) {
    static constexpr Reader readers[] = {
        {"X-MESSAGING/AIM-", &Mapping::readMessaging, u"AIM"},
        {"X-MESSAGING/GADU-", &Mapping::readMessaging, u"GaduGadu"},
        {"X-MESSAGING/GROUPWISE-", &Mapping::readMessaging, u"GroupWise"},
        {"X-MESSAGING/ICQ-", &Mapping::readMessaging, u"ICQ"},
        {"X-MESSAGING/IRC-", &Mapping::readMessaging, u"IRC"},
        {"X-MESSAGING/MSN-", &Mapping::readMessaging, u"MSN"},
        {"X-MESSAGING/SIP-", &Mapping::readMessaging, u"SIP"},
        {"X-MESSAGING/SKYPE-", &Mapping::readMessaging, u"Skype"},
        {"X-MESSAGING/XMPP-", &Mapping::readMessaging, u"Jabber"},
        {"X-MESSAGING/YAHOO-", &Mapping::readMessaging, u"Yahoo"},
        {"X-MESSAGING/", &Mapping::readMessaging},
    };
    for (const Reader& known : readers) {
        if (property.nameStartsWith(known.property)) return &known;
    }
    return nullptr;
}

void Mapping::read(const VCardProperty& property) {
    if (const Reader* known = reader(property)) (this->*known->read)(property, known->service);
}

void Mapping::readFormattedName(const VCardProperty& property, QStringView) {
    if (formattedName_.takes(property)) formattedName_.set(property.text().simplified(), property);
}

void Mapping::readName(const VCardProperty& property, QStringView) {
    if (!composedName_.takes(property)) return;
    // Family, given, additional, prefixes, suffixes; later versions make a list of each.
    QStringList parts = property.parts(u';', property.version == VCardVersion::v2_1
                                                 ? VCardProperty::Lists::none
                                                 : VCardProperty::Lists::joinedByBlanks);
    parts.resize(5);
    const QStringList inOrder = {parts[3], parts[1], parts[2], parts[0], parts[4]};
    composedName_.set(inOrder.join(u' ').simplified(), property);
}

/// The first of several that isn't empty.
QString firstOf(const QStringList& texts) {
    for (const QString& text : texts)
        if (const QString simplified = text.simplified(); !simplified.isEmpty()) return simplified;
    return {};
}

void Mapping::readNickname(const VCardProperty& property, QStringView) {
    if (!nickname_.takes(property)) return;
    // Only later versions make a list of it.
    const bool isList = property.version != VCardVersion::v2_1;
    nickname_.set(firstOf(isList ? property.parts(u',') : QStringList{property.text()}), property);
}

void Mapping::readOrganisation(const VCardProperty& property, QStringView) {
    if (organisation_.takes(property)) organisation_.set(firstOf(property.parts(u';')), property);
}

void Mapping::readIdentifier(const VCardProperty& property, QStringView) {
    if (contact_.record.identifier.isEmpty())
        contact_.record.identifier = property.text().trimmed();
}

void Mapping::readKind(const VCardProperty& property, QStringView) {
    if (property.text().trimmed().compare(u"group", Qt::CaseInsensitive) == 0) isPerson_ = false;
}

void Mapping::readList(const VCardProperty& property, QStringView) {
    if (isTrue(property)) isPerson_ = false;
}

void Mapping::readEmail(const VCardProperty& property, QStringView) {
    QString address = withoutFolds(property.text().trimmed(), property);
    QStringView rest = address;
    if (takeScheme(rest, u"mailto")) address = userOfUri(rest);
    if (!address.isEmpty()) contact_.record.emailAddresses.push_back(std::move(address));
}

void Mapping::readPhone(const VCardProperty& property, QStringView) {
    QString number = property.text().trimmed();
    QStringView rest = number;
    if (takeScheme(rest, u"tel")) {
        if (const qsizetype end = rest.indexOf(u';'); end >= 0) rest = rest.left(end);
        number = percentDecoded(rest).trimmed();
    }
    if (!number.isEmpty()) contact_.record.phoneNumbers.push_back({std::move(number)});
}

/// Some programs keep several addresses in one value, separated by a private character.
void Mapping::readMessaging(const VCardProperty& property, QStringView service) {
    for (const QString& value : property.text().split(QChar(0xe000))) {
        QString user = withoutFolds(value.trimmed(), property);
        if (!user.isEmpty())
            contact_.record.instantMessageAddresses.push_back(
                {std::move(user), service.toString()});
    }
}

void Mapping::readMessagingUri(const VCardProperty& property, QStringView) {
    const std::string_view told = property.parameter("X-SERVICE-TYPE");
    QString service = QString::fromUtf8(told.data(), static_cast<qsizetype>(told.size()));
    QString user = withoutFolds(property.text().trimmed(), property);
    QStringView rest = user;
    for (const Scheme& scheme : messagingSchemes) {
        if (!takeScheme(rest, scheme.name)) continue;
        if (service.isEmpty()) service = scheme.service.toString();
        user = userOfUri(rest, scheme.name == u"aim" ? Plus::isBlank : Plus::isPlus).trimmed();
        // A program's name after the address of its user.
        if (scheme.name == u"xmpp") user = user.section(u'/', 0, 0);
        break;
    }
    if (user.isEmpty()) return;
    contact_.record.instantMessageAddresses.push_back({std::move(user), std::move(service)});
}

void Mapping::readPicture(const VCardProperty& property, QStringView) {
    if (pictures_ == ContactPictures::unwanted) return;
    std::string_view value = property.value;
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    QByteArray bytes;
    if (startsWith(value, "data:")) {
        bytes = bytesOfDataUri(value);
    } else if (property.encoding == VCardProperty::Encoding::base64) {
        bytes = property.bytes();
    } else if (contact_.pictureLocation.isEmpty()) {
        contact_.pictureLocation = property.text().trimmed();
    }
    auto& thumbnails = contact_.record.thumbnails;
    if (bytes.isEmpty() || thumbnails.size() == mostPictures) return;
    const auto at = std::upper_bound(picturePreferences_.begin(), picturePreferences_.end(),
                                     property.preference()) -
                    picturePreferences_.begin();
    picturePreferences_.insert(picturePreferences_.begin() + at, property.preference());
    thumbnails.insert(thumbnails.begin() + at, std::move(bytes));
}

std::optional<VCardContact> Mapping::result() {
    if (!isPerson_) return std::nullopt;
    contact_.record.nickname = nickname_.text;
    for (const Preferred* name : {&formattedName_, &composedName_, &organisation_, &nickname_}) {
        if (name->text.isEmpty()) continue;
        contact_.record.name = name->text;
        break;
    }
    return std::move(contact_);
}

}  // namespace

std::optional<VCardContact> contactFromVCard(VCardScanner& scanner, ContactPictures pictures) {
    Mapping mapping(pictures);
    while (const VCardProperty* property = scanner.next())
        mapping.read(*property);
    return mapping.result();
}

std::optional<VCardContact> contactFromVCard(std::string_view text, ContactPictures pictures) {
    VCardScanner scanner(text);
    if (!scanner.nextCard()) return std::nullopt;
    return contactFromVCard(scanner, pictures);
}

}  // namespace vell
