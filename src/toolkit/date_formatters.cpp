// SPDX-License-Identifier: MIT
#include "toolkit/date_formatters.h"

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/ures.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

namespace vell {
namespace {

constexpr qint64 minutesPerDay = 1440;
constexpr qint64 secondsPerDay = minutesPerDay * 60;
constexpr qint64 firstYear = -62135596800;  // 0001-01-01 from 1970, seconds

const UChar* asUtf16(const QString& text) {
    return reinterpret_cast<const UChar*>(text.utf16());
}

/// ICU's name of a locale written as the C library or as language tags have it.
QByteArray icuLocale(QByteArray name) {
    // Script modifiers mean nothing to ICU: "sr_RS@latin" is its "sr_Latn_RS".
    const auto modifier = name.indexOf('@');
    QByteArray script;
    if (modifier >= 0 && !name.contains('=')) {
        if (name.endsWith("@latin")) script = "_Latn";
        if (name.endsWith("@cyrillic")) script = "_Cyrl";
        name.truncate(modifier);
    }
    const auto codeset = name.indexOf('.');
    if (codeset >= 0) name.truncate(codeset);
    if (name.isEmpty() || name == "C" || name == "POSIX") return "en_US_POSIX";
    if (!script.isEmpty()) {
        const auto region = name.indexOf('_');
        name.insert(region < 0 ? name.size() : region, script);
    }
    char canonical[ULOC_FULLNAME_CAPACITY + 1] = {};
    UErrorCode status = U_ZERO_ERROR;
    uloc_canonicalize(name.constData(), canonical, ULOC_FULLNAME_CAPACITY, &status);
    return U_SUCCESS(status) ? QByteArray(canonical) : QByteArray("en_US_POSIX");
}

}  // namespace

/// Owns one formatter of ICU; null when ICU has no data at all.
struct DateFormatter::Format {
    UDateFormat* handle = nullptr;

    Format(Style style, const QByteArray& locale) {
        UErrorCode status = U_ZERO_ERROR;
        // Local time is handed over as if it were UTC: the calendar knows the zones, those that
        // are only a rule included, and ICU would silently take UTC for what it can't find.
        const bool isFull = style == Style::fullDate || style == Style::fullDateTime;
        const UDateFormatStyle date = isFull                      ? UDAT_FULL
                                      : style == Style::shortTime ? UDAT_NONE
                                                                  : UDAT_MEDIUM;
        const UDateFormatStyle time = style == Style::fullDate       ? UDAT_NONE
                                      : style == Style::fullDateTime ? UDAT_MEDIUM
                                                                     : UDAT_SHORT;
        handle = udat_open(time, date, locale.constData(), u"Etc/UTC", -1, nullptr, 0, &status);
        if (U_FAILURE(status)) handle = nullptr;
        if (handle) avoidJulianDates();
    }
    explicit Format(const Format& other) {
        UErrorCode status = U_ZERO_ERROR;
        if (other.handle) handle = udat_clone(other.handle, &status);
    }
    /// Adds the era, which distinguishes years before the year 1.
    void addEra() {
        char16_t buffer[128];
        UErrorCode status = U_ZERO_ERROR;
        const auto length = udat_toPattern(handle, 0, buffer, std::size(buffer), &status);
        if (U_FAILURE(status)) return;
        QString pattern = QString::fromUtf16(buffer, length);
        const auto year = pattern.lastIndexOf(u'y');
        if (year < 0 || pattern.contains(u'G')) return;
        pattern.insert(year + 1, QStringLiteral(" G"));
        udat_applyPattern(handle, 0, asUtf16(pattern), static_cast<int>(pattern.size()));
    }
    Format& operator=(const Format&) = delete;
    ~Format() {
        if (handle) udat_close(handle);
    }

  private:
    /// The day of a heading is the day of the log, in the Gregorian calendar at all times.
    void avoidJulianDates() {
        UErrorCode status = U_ZERO_ERROR;
        UCalendar* calendar = ucal_clone(udat_getCalendar(handle), &status);
        if (U_FAILURE(status)) return;
        // Refused by calendars that aren't Gregorian, such as the Persian one.
        ucal_setGregorianChange(calendar, -std::numeric_limits<double>::max(), &status);
        if (U_SUCCESS(status)) udat_setCalendar(handle, calendar);
        ucal_close(calendar);
    }
};

DateFormatter::DateFormatter(Style style, const QByteArray& locale, foundation::Calendar calendar)
    : style_(style),
      prototype_(std::make_shared<Format>(style, icuLocale(locale))),
      format_(std::make_unique<Format>(*prototype_)),
      calendar_(std::move(calendar)) {}

// Only what never changes is copied; the cache may be in use by the other's thread.
DateFormatter::DateFormatter(const DateFormatter& other)
    : style_(other.style_),
      prototype_(other.prototype_),
      format_(std::make_unique<Format>(*prototype_)),
      calendar_(other.calendar_.withoutCache()) {}

DateFormatter::~DateFormatter() = default;

QString DateFormatter::string(foundation::Date date) const {
    const std::optional<qint64> localSecond = calendar_.localSecond(date);
    if (!localSecond || !format_->handle) return date.description();
    if (style_ == Style::fullDateTime)
        return formatted(*localSecond) + u' ' + calendar_.zoneName(date);
    if (style_ != Style::shortTime) return formatted(*localSecond);
    // A short time depends on nothing but the minute of the local day, whatever the offset was.
    qint64 secondOfDay = *localSecond % secondsPerDay;
    if (secondOfDay < 0) secondOfDay += secondsPerDay;
    if (shortTimes_.empty()) shortTimes_.resize(minutesPerDay);
    QString& text = shortTimes_[static_cast<std::size_t>(secondOfDay / 60)];
    if (text.isEmpty()) text = formatted(secondOfDay);
    return text;
}

QString DateFormatter::formatted(qint64 localSecond) const {
    UDateFormat* format = format_->handle;
    if (localSecond < firstYear && style_ != Style::shortTime) {
        if (!formatWithEra_) {
            formatWithEra_ = std::make_unique<Format>(*prototype_);
            if (formatWithEra_->handle) formatWithEra_->addEra();
        }
        if (formatWithEra_->handle) format = formatWithEra_->handle;
    }
    char16_t buffer[128];
    UErrorCode status = U_ZERO_ERROR;
    const auto length = udat_format(format, static_cast<double>(localSecond) * 1000, buffer,
                                    std::size(buffer), nullptr, &status);
    return QString::fromUtf16(buffer, std::min<int>(length, std::size(buffer)));
}

namespace {

using Style = DateFormatter::Style;

/// The formatters that every thread's own are clones of.
struct Prototypes {
    std::mutex lock;
    QByteArray locale = environmentDateLocale();
    foundation::Calendar calendar = foundation::Calendar::current();
    std::array<std::optional<DateFormatter>, 4> formatters;  // by style, made on demand
    std::atomic<quint64> generation = 1;
};

Prototypes& prototypes() {
    static Prototypes shared;
    return shared;
}

/// One thread's formatter, replaced in place when another format has been set.
class OwnFormatter {
  public:
    const DateFormatter& get(Style style) {
        Prototypes& all = prototypes();
        if (generation_ == all.generation.load(std::memory_order_acquire)) return *formatter_;
        const std::lock_guard lock(all.lock);
        std::optional<DateFormatter>& prototype = all.formatters[static_cast<std::size_t>(style)];
        if (!prototype) prototype.emplace(style, all.locale, all.calendar);
        formatter_.emplace(*prototype);
        generation_ = all.generation;
        return *formatter_;
    }

  private:
    std::optional<DateFormatter> formatter_;
    quint64 generation_ = 0;
};

template <Style style>
const DateFormatter& ownFormatter() {
    thread_local OwnFormatter own;
    return own.get(style);
}

}  // namespace

const DateFormatter& daySeparatorFormatter() {
    return ownFormatter<Style::mediumDateShortTime>();
}

const DateFormatter& timeSeparatorFormatter() {
    return ownFormatter<Style::shortTime>();
}

const DateFormatter& dayFormatter() {
    return ownFormatter<Style::fullDate>();
}

const DateFormatter& fullDateFormatter() {
    return ownFormatter<Style::fullDateTime>();
}

void setSharedDateFormat(const QByteArray& locale, const foundation::Calendar& calendar) {
    Prototypes& all = prototypes();
    const std::lock_guard lock(all.lock);
    if (locale == all.locale && calendar.hasZoneOf(all.calendar)) return;
    all.locale = locale;
    all.calendar = calendar;
    for (auto& formatter : all.formatters)
        formatter.reset();
    ++all.generation;
}

foundation::Calendar sharedCalendar() {
    Prototypes& all = prototypes();
    const std::lock_guard lock(all.lock);
    return all.calendar.withoutCache();
}

bool isKnownLocale(const QByteArray& locale) {
    if (locale.isEmpty()) return false;
    const QByteArray name = icuLocale(locale);
    UErrorCode status = U_ZERO_ERROR;
    ures_close(ures_open(nullptr, name.constData(), &status));
    if (U_FAILURE(status) || status == U_USING_DEFAULT_WARNING) return false;
    char region[ULOC_COUNTRY_CAPACITY + 1] = {};
    uloc_getCountry(name.constData(), region, ULOC_COUNTRY_CAPACITY, &status);
    if (region[0] == '\0' || (region[0] >= '0' && region[0] <= '9')) return true;
    const char* const* known = uloc_getISOCountries();
    while (*known && qstrcmp(*known, region) != 0)
        ++known;
    return *known != nullptr;
}

bool isKnownTimeZone(const QByteArray& zone) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (std::any_of(zone.begin(), zone.end(), isDigit)) return true;
    const QString name = QString::fromUtf8(zone);
    UChar canonical[128];
    UErrorCode status = U_ZERO_ERROR;
    ucal_getCanonicalTimeZoneID(asUtf16(name), static_cast<int32_t>(name.size()), canonical,
                                static_cast<int32_t>(std::size(canonical)), nullptr, &status);
    return U_SUCCESS(status);
}

QByteArray environmentDateLocale() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        QByteArray value = qgetenv(variable);
        if (!value.isEmpty()) return value;
    }
    return {};
}

}  // namespace vell
