// SPDX-License-Identifier: MIT
//
// Archives written by the platform itself, in the folders "keyed" and "non-keyed" of the folder
// that VELL_ARCHIVES names. They can't be distributed with this program: without them these tests
// are skipped.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <map>
#include <set>

#include "foundation/error.h"
#include "foundation/file_wrapper.h"
#include "foundation/keyed/decoder.h"
#include "foundation/non_keyed/reader.h"
#include "foundation/runs_text.h"
#include "foundation/unarchiver_fixture.h"

namespace foundation::test {
namespace {

/// The bytes of all files of one form, by their path below its folder; empty where there are none.
std::map<std::string, Data> archives(const char* form) {
    const QString root = qEnvironmentVariable("VELL_ARCHIVES");
    if (root.isEmpty()) return {};
    const QDir folder(QStringLiteral("%1/%2").arg(root, QLatin1StringView(form)));
    std::map<std::string, Data> result;
    QDirIterator files(folder.path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (files.fileName() == u"README.md" || !file.open(QIODevice::ReadOnly)) continue;
        result.emplace(folder.relativeFilePath(file.fileName()).toStdString(),
                       Data(file.readAll()));
    }
    return result;
}

constexpr char none[] = "VELL_ARCHIVES names no folder with such archives";

// --- Keyed ---

/// Decodes all that an archive holds: whatever class is not known here becomes an application
/// class whose instances ask for every key there is.
class Explorer final : public Coder {
  public:
    explicit Explorer(const Data& data) : archive_(data) {
        registerPlatformClasses(registry_);
        gatherNames();
        allowed_.push_back(registry_.find("NSObject"));
        decoder_.emplace(archive_, allowed_, registry_, *this);
    }

    /// Whatever "$top" names, in its order.
    std::vector<Value> decodeAll() {
        std::vector<Value> values;
        for (const std::string& key : keys_)
            if (archive_.top(key) != keyed::none) values.push_back(decoder_->decodeTop(key));
        return values;
    }

    [[nodiscard]] bool isKeyed() const override { return true; }
    Value decodeObject(std::string_view key) override { return decoder_->decodeKey(key); }
    Value decodeObject() override { return {}; }
    std::optional<quint32> decodeUInt32() override { return {}; }
    [[nodiscard]] QString description() const override { return {}; }

  private:
    const keyed::Archive archive_;
    ClassRegistry registry_;
    std::vector<const ClassInfo*> allowed_;
    std::set<std::string> keys_;
    std::optional<keyed::Decoder> decoder_;

    static Value initWithCoder(Coder& coder) {
        std::vector<Value> held;
        for (const std::string& key : static_cast<Explorer&>(coder).keys_)
            if (Value value = coder.decodeObject(key); !value.isNothing())
                held.push_back(std::move(value));
        return std::make_shared<Array>(std::move(held));
    }

    void gatherNames() {
        const BinaryPropertyList& list = archive_.list();
        const auto text = [](const keyed::Node& node) {
            return keyed::Archive::ascii(node).toByteArray();
        };
        for (quint64 ref = 0; ref < list.objectCount(); ++ref) {
            const keyed::Node node = list.node(ref);
            if (node.kind() != keyed::Kind::dictionary) continue;
            for (quint64 i = 0; i < node.count(); ++i)
                keys_.insert(text(list.node(list.key(node, i))).toStdString());
            const QByteArray name = text(list.node(archive_.find(node, "$classname")));
            if (!name.isEmpty() && !registry_.find(name.toStdString()))
                registry_.add({.name = name,
                               .superclass = registry_.find("NSObject"),
                               .kind = ClassKind::application,
                               .initWithCoder = initWithCoder});
        }
    }
};

/// The runs of the attributed strings that hang on a value.
void gatherTexts(const Value& value, std::set<std::string>& texts) {
    if (const auto array = value.object<Array>()) {
        for (const Value& element : array->elements)
            gatherTexts(element, texts);
    } else if (value.object<AttributedString>()) {
        texts.insert(runsOf(value));
    }
}

TEST(RealArchives, KeyedOnesDecodeToTheirEnds) {
    const auto files = archives("keyed");
    if (files.empty()) GTEST_SKIP() << none;
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        if (name.ends_with(".rtfd-flat.bin")) {
            EXPECT_TRUE(parseSerializedFileWrapper(bytes));
            continue;
        }
        EXPECT_NO_THROW(EXPECT_FALSE(Explorer(bytes).decodeAll().empty()));
    }
}

TEST(RealArchives, KeyedOnesHoldWhatIsKnownOfThem) {
    const auto files = archives("keyed");
    if (files.empty()) GTEST_SKIP() << none;
    const std::pair<const char*, const char*> rows[] = {
        {"nskeyedunarchiver-rs/circularReference.plist", "(nil)"},
        {"nskeyedunarchiver-rs/plainString.plist", "Some string!"},
        {"nskeyedunarchiver-rs/NSMutableAttributedString.plist", "5 11"},
        {"swift-corelibs/NSAttributedString.archive", "1 1 4 2 1 1"},
        {"swift-corelibs/NSCountedSet-NumbersAppearingSeveralTimes.archive", "{(3, 2, 5, 1, 4)}"},
        {"swift-corelibs/NSOrderedSet-Numbers.archive", "{(1, 2, 3, 4, 5)}"},
        {"journler/JournalUpgrade.keyedobjects.nib", "35 1 12 120 33 307 16 392 21 54 21 2 16 279"},
        {"journler/PDAboutBox.keyedobjects.nib",
         "177 790 79 131 1 46 25 38 315 166 18=mailto:sales@journler.com 23 42 24 "
         "19=http://journler.com"},
        {"cocotron/Cocotron.keyedArchive.xml",
         "(17.5, {0.000000000000, 0.000000000000, 100.000000000000, 100.000000000000}, string)"},
    };
    for (const auto& [name, expected] : rows) {
        const auto file = files.find(name);
        if (file == files.end()) continue;
        std::set<std::string> texts;
        std::string found;
        for (const Value& value : Explorer(file->second).decodeAll()) {
            gatherTexts(value, texts);
            found += value.description().toStdString();
        }
        if (!texts.empty()) found = *texts.rbegin();
        EXPECT_EQ(found, expected) << name;
    }
}

// --- Non-keyed ---

TEST(RealArchives, NonKeyedOnesAreConsumedToTheirEnds) {
    const auto files = archives("non-keyed");
    if (files.empty()) GTEST_SKIP() << none;
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        if (name.starts_with("bad_")) {
            EXPECT_TRUE(unarchiveObjectWithData(bytes, registry()).object.isNothing());
            continue;
        }
        EXPECT_NO_THROW({
            non_keyed::Reader reader(bytes, registry());
            while (!reader.atEnd())
                reader.readGroup();
        });
        if (name.starts_with("msg_")) {
            EXPECT_TRUE(
                unarchiveObjectWithData(bytes, registry()).object.object<AttributedString>());
        }
    }
}

}  // namespace
}  // namespace foundation::test
