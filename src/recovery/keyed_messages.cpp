// SPDX-License-Identifier: MIT
#include <QtEndian>
#include <algorithm>
#include <unordered_map>
#include <vector>

#include "foundation/keyed/decoder.h"
#include "foundation/plist/xml_property_list_reader.h"
#include "recovery/messages.h"
#include "recovery/repaired_list.h"
#include "transcript/archived_classes.h"

namespace vell::recovery {
namespace {

using namespace Qt::StringLiterals;
using foundation::ClassInfo;
using foundation::Value;
using foundation::keyed::Archive;
using foundation::keyed::Kind;
using foundation::keyed::Node;

class Salvage final : public foundation::Coder {
  public:
    explicit Salvage(const RepairedList& repaired)
        : archive_(repaired.list, repaired.objects),
          decoder_(archive_, allowedClassList(), sharedClassRegistry(), *this) {
        decoder_.requireWholeInstances();
    }

    Messages run();

    [[nodiscard]] bool isKeyed() const override { return true; }
    Value decodeObject(std::string_view key) override;
    Value decodeObject() override { return {}; }
    std::optional<quint32> decodeUInt32() override { return std::nullopt; }
    [[nodiscard]] std::optional<quint32> objectNumber() const override {
        return decoder_.currentUid();
    }
    [[nodiscard]] QString withoutPrefix(const QString& text, qsizetype length) override {
        return decoder_.withoutPrefix(text, length);
    }
    [[nodiscard]] QString description() const override { return u"<NSKeyedUnarchiver>"_s; }

  private:
    enum class Role : quint8 { other, message, placed };

    const Archive archive_;
    foundation::keyed::Decoder decoder_;
    std::vector<Role> roles_;  ///< by UID
    bool isMisfit_ = false;    ///< the message at hand has a part of another type
    Messages result_;

    [[nodiscard]] std::vector<quint64> elements(quint64 uid) const;
    [[nodiscard]] std::vector<quint64> messageList() const;
    void placeUnlisted(std::vector<quint64>& list) const;
    void refuseStrayReferences();
    void readRoot();
    [[nodiscard]] bool isMessage(quint64 uid) const {
        return uid < roles_.size() && roles_[uid] != Role::other;
    }
    Value decoded(quint64 uid);
    void add(quint64 uid);
};

/// A wrong reference is likely to lead to an object of another type.
Value Salvage::decodeObject(std::string_view key) {
    Value value = decoder_.decodeKey(key);
    if (value.isNothing()) return value;
    const bool fits = key == "Time"     ? value.date() != nullptr
                      : key == "Sender" ? value.object<Presentity>() != nullptr
                      : key == "MessageText"
                          ? value.object<foundation::AttributedString>() != nullptr
                          : true;
    if (!fits) isMisfit_ = true;
    return value;
}

/// Nothing when it is damaged.
Value Salvage::decoded(quint64 uid) {
    try {
        return decoder_.decodeUid(uid);
    } catch (const foundation::Error&) {
        return {};
    }
}

/// What an array's instance lists; none for what is no reference.
std::vector<quint64> Salvage::elements(quint64 uid) const {
    const Node instance = archive_.object(uid);
    // Looking through many keys again and again would take unlimited time.
    if (instance.kind() != Kind::dictionary || instance.count() > 64) return {};
    const Node array = archive_.list().node(archive_.find(instance, "NS.objects"));
    if (array.kind() != Kind::array) return {};
    std::vector<quint64> result;
    result.reserve(array.count());
    for (quint64 i = 0; i < array.count(); ++i)
        result.push_back(archive_.uid(archive_.list().element(array, i)));
    return result;
}

/// The array with the most messages.
std::vector<quint64> Salvage::messageList() const {
    std::vector<quint64> best;
    std::ptrdiff_t most = 0;
    // An array is named once in a real archive; hostile ones share its bytes.
    quint64 budget = 4 * archive_.fileSize();
    for (quint64 uid = 0; uid < archive_.objectCount() && budget > 0; ++uid) {
        std::vector<quint64> list = elements(uid);
        budget -= std::min<quint64>(budget, list.size() + 1);
        const auto messages = std::count_if(list.begin(), list.end(),
                                            [this](quint64 element) { return isMessage(element); });
        if (messages <= most) continue;
        most = messages;
        best = std::move(list);
    }
    return best;
}

/// Messages are numbered in the list's order. A wrong reference in it meant the one that isn't
/// listed and has a number between those of its neighbours, if there is only one.
void Salvage::placeUnlisted(std::vector<quint64>& list) const {
    std::vector<bool> isListed(roles_.size());
    for (const quint64 uid : list)
        if (uid < isListed.size()) isListed[uid] = true;
    std::vector<quint64> unlisted;
    for (quint64 uid = 0; uid < roles_.size(); ++uid)
        if (isMessage(uid) && !isListed[uid]) unlisted.push_back(uid);
    quint64 before = 0;
    for (size_t i = 0; i < list.size() && !unlisted.empty(); ++i) {
        if (isMessage(list[i])) {
            before = list[i];
            continue;
        }
        const bool isLast = i + 1 == list.size();
        if (!isLast && !isMessage(list[i + 1])) continue;
        const auto at = std::upper_bound(unlisted.begin(), unlisted.end(), before);
        const auto end =
            isLast ? unlisted.end() : std::lower_bound(at, unlisted.end(), list[i + 1]);
        const bool isAlone = i == 0 || isMessage(list[i - 1]);
        if (isAlone && end - at == 1) list[i] = *at;
    }
}

/// Each instance is listed once, in the order of writing. One that is listed again, out of order,
/// was reached by a reference with a wrong byte.
void Salvage::refuseStrayReferences() {
    std::vector<quint64> uids;
    std::unordered_map<const char*, int> uses;
    for (quint64 uid = 0; uid < archive_.objectCount(); ++uid) {
        const Node node = archive_.object(uid);
        if (node.kind() != Kind::dictionary || node.count() == 0) continue;
        uids.push_back(uid);
        ++uses[node.payload()];
    }
    for (size_t i = 0; i < uids.size(); ++i) {
        const char* const place = archive_.object(uids[i]).payload();
        if (uses[place] < 2) continue;
        const bool followsBefore = i == 0 || archive_.object(uids[i - 1]).payload() < place;
        const bool precedesNext =
            i + 1 == uids.size() || place < archive_.object(uids[i + 1]).payload();
        if (!followsBefore || !precedesNext) decoder_.refuse(uids[i]);
    }
}

/// The root is the first object; of its elements these are known.
void Salvage::readRoot() {
    const std::vector<quint64> fields = elements(1);
    if (fields.size() < 4) return;
    if (const Value service = decoded(fields[0]); service.string())
        result_.service = *service.string();
    for (const quint64 uid : elements(fields[3]))
        if (auto person = decoded(uid).object<Presentity>())
            result_.participants.push_back(std::move(person));
}

void Salvage::add(quint64 uid) {
    isMisfit_ = false;
    auto message = decoded(uid).object<InstantMessage>();
    if (message && !isMisfit_ && isComplete(*message))
        result_.slots.push_back(std::move(message));
    else
        result_.addGap();
}

Messages Salvage::run() {
    const ClassInfo* const wanted = sharedClassRegistry().find("InstantMessage");
    roles_.resize(archive_.objectCount(), Role::other);
    for (quint64 uid = 0; uid < archive_.objectCount(); ++uid)
        if (decoder_.knownClass(uid) == wanted) roles_[uid] = Role::message;
    refuseStrayReferences();
    readRoot();
    std::vector<quint64> list = messageList();
    placeUnlisted(list);
    for (const quint64 uid : list) {
        add(uid);
        if (uid < roles_.size()) roles_[uid] = Role::placed;
    }
    if (!list.empty()) result_.expected = qint64(list.size());
    // Without their array the order of writing is that of the conversation.
    for (quint64 uid = 0; uid < roles_.size(); ++uid)
        if (roles_[uid] == Role::message) {
            add(uid);
            if (result_.expected) ++*result_.expected;
        }
    return std::move(result_);
}

bool isXml(const foundation::Data& data) {
    return foundation::XmlPropertyListReader::looksLikeXml(data.view()) ||
           data.view().contains("<key>");
}

std::optional<RepairedList> repairedList(const foundation::Data& data) {
    return isXml(data) ? repairedXml(data) : repairedBinary(data);
}

/// The dictionary that holds the objects, if it is still there.
std::optional<quint64> holderOf(const RepairedList& repaired) {
    constexpr quint64 mostEntries = 64;
    const auto& list = repaired.list;
    for (quint64 ref = 0; ref < list.objectCount(); ++ref) {
        const Node node = list.node(ref);
        if (node.kind() != Kind::dictionary || node.count() > mostEntries) continue;
        for (quint64 i = 0; i < node.count(); ++i)
            if (list.value(node, i) == repaired.objects) return ref;
    }
    return std::nullopt;
}

}  // namespace

std::optional<RepairedArchive> repairedKeyedArchive(const foundation::Data& data) {
    constexpr qsizetype topOffset = 16;  // from the end
    const auto repaired = repairedList(data);
    if (!repaired) return std::nullopt;
    QByteArray bytes = repaired->list.data().toByteArray();
    if (const auto holder = holderOf(*repaired))
        qToBigEndian(*holder, bytes.data() + bytes.size() - topOffset);
    return RepairedArchive{foundation::Data(bytes), !isXml(data)};
}

std::optional<Messages> keyedMessages(const foundation::Data& data) {
    const auto repaired = repairedList(data);
    if (!repaired) return std::nullopt;
    try {
        Messages result = Salvage(*repaired).run();
        result.damagedAfter = repaired->damagedAfter;
        return result;
    } catch (const foundation::Error&) {
        return std::nullopt;
    }
}

}  // namespace vell::recovery
