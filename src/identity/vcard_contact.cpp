// SPDX-License-Identifier: MIT
#include "identity/vcard_contact.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>

#include "identity/vcard.h"

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

    const ContactPictures pictures_;
    bool isPerson_ = true;
    QString formattedName_;
    QString composedName_;
    QString organisation_;
    VCardContact contact_;
};

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

QString percentDecoded(QStringView text) {
    return QString::fromUtf8(QByteArray::fromPercentEncoding(text.toUtf8()));
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
QString userOfUri(QStringView path) {
    while (path.startsWith(u'/'))
        path = path.mid(1);
    const qsizetype mark = path.indexOf(u'?');
    if (mark < 0) return percentDecoded(path);
    static constexpr QStringView actions[] = {u"goim", u"sendim", u"chat", u"addbuddy",
                                              u"addfriend"};
    const QStringView before = path.left(mark);
    if (std::none_of(std::begin(actions), std::end(actions), [&](QStringView action) {
            return before.compare(action, Qt::CaseInsensitive) == 0;
        }))
        return percentDecoded(before);
    QStringView query = path.mid(mark + 1);
    if (const qsizetype end = query.indexOf(u'&'); end >= 0) query = query.left(end);
    return percentDecoded(query.mid(query.indexOf(u'=') + 1));
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
    return found != std::end(readers) ? found : nullptr;
}

void Mapping::read(const VCardProperty& property) {
    if (const Reader* known = reader(property)) (this->*known->read)(property, known->service);
}

void Mapping::readFormattedName(const VCardProperty& property, QStringView) {
    if (formattedName_.isEmpty()) formattedName_ = property.text().simplified();
}

void Mapping::readName(const VCardProperty& property, QStringView) {
    if (!composedName_.isEmpty()) return;
    QStringList parts = property.parts(u';');  // family, given, additional, prefixes, suffixes
    parts.resize(5);
    const QStringList inOrder = {parts[3], parts[1], parts[2], parts[0], parts[4]};
    composedName_ = inOrder.join(u' ').simplified();
}

void Mapping::readNickname(const VCardProperty& property, QStringView) {
    if (!contact_.record.nickname.isEmpty()) return;
    // Only later versions make a list of it.
    const bool isList = property.version != VCardVersion::v2_1;
    const QStringList names = isList ? property.parts(u',') : QStringList{property.text()};
    for (const QString& name : names) {
        contact_.record.nickname = name.simplified();
        if (!contact_.record.nickname.isEmpty()) return;
    }
}

void Mapping::readOrganisation(const VCardProperty& property, QStringView) {
    if (!organisation_.isEmpty()) return;
    for (const QString& unit : property.parts(u';')) {
        organisation_ = unit.simplified();
        if (!organisation_.isEmpty()) return;
    }
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
    QString address = property.text().trimmed();
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

void Mapping::readMessaging(const VCardProperty& property, QStringView service) {
    QString user = property.text().trimmed();
    if (user.isEmpty()) return;
    contact_.record.instantMessageAddresses.push_back({std::move(user), service.toString()});
}

void Mapping::readMessagingUri(const VCardProperty& property, QStringView) {
    const std::string_view told = property.parameter("X-SERVICE-TYPE");
    QString service = QString::fromUtf8(told.data(), static_cast<qsizetype>(told.size()));
    QString user = property.text().trimmed();
    QStringView rest = user;
    for (const Scheme& scheme : messagingSchemes) {
        if (!takeScheme(rest, scheme.name)) continue;
        if (service.isEmpty()) service = scheme.service.toString();
        user = userOfUri(rest).trimmed();
        // A program's name after the address of its user.
        if (scheme.name == u"xmpp") user = user.section(u'/', 0, 0);
        break;
    }
    if (user.isEmpty()) return;
    contact_.record.instantMessageAddresses.push_back({std::move(user), std::move(service)});
}

void Mapping::readPicture(const VCardProperty& property, QStringView) {
    const bool isKnown =
        !contact_.record.thumbnail.isEmpty() || !contact_.pictureLocation.isEmpty();
    if (pictures_ == ContactPictures::unwanted || isKnown) return;
    std::string_view value = property.value;
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    if (startsWith(value, "data:")) {
        contact_.record.thumbnail = bytesOfDataUri(value);
    } else if (property.encoding == VCardProperty::Encoding::base64) {
        contact_.record.thumbnail = property.bytes();
    } else {
        contact_.pictureLocation = property.text().trimmed();
    }
}

std::optional<VCardContact> Mapping::result() {
    if (!isPerson_) return std::nullopt;
    for (const QString& name :
         {formattedName_, composedName_, organisation_, contact_.record.nickname}) {
        if (name.isEmpty()) continue;
        contact_.record.name = name;
        break;
    }
    return std::move(contact_);
}

}  // namespace

std::optional<VCardContact> contactFromVCard(std::string_view card, ContactPictures pictures) {
    Mapping mapping(pictures);
    VCardScanner scanner(card);
    while (const VCardProperty* property = scanner.next())
        mapping.read(*property);
    return mapping.result();
}

}  // namespace vell
