#pragma once
// SPDX-License-Identifier: MIT
//
// LogBuilder: makes a chat log event by event, on the service AIM, owned by "me".

#include <QString>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "transcript/chat_log.h"

namespace vell::test {

/// Empty for system messages.
using Sender = QString;

class LogBuilder {
  public:
    LogBuilder& text(const Sender& sender, const QString& text) {
        return add(sender, TesselChatLog::PlainText{text});
    }
    LogBuilder& system(const QString& text) { return add({}, TesselChatLog::PlainText{text}); }
    LogBuilder& link(const Sender& sender, const QString& address, const QString& title) {
        return add(sender,
                   TesselChatLog::Link{std::make_shared<const foundation::URL>(address), title});
    }
    LogBuilder& image(const Sender& sender, std::optional<QString> path) {
        return add(sender, TesselChatLog::Image({}, {}, QStringLiteral("public.image"), path));
    }
    LogBuilder& file(const Sender& sender, const QString& name, const char* contents) {
        return file(sender, name, foundation::Data(QByteArray(contents)));
    }
    LogBuilder& file(const Sender& sender, const QString& name, const foundation::Data& contents) {
        auto wrapper = std::make_shared<foundation::FileWrapper>(contents);
        wrapper->filename = name;
        return add(sender, TesselChatLog::File{std::move(wrapper)});
    }
    LogBuilder& user(const Sender& sender) { return add(sender, TesselChatLog::User{}); }
    LogBuilder& newDay() { return add({}, TesselChatLog::NewDay{}); }
    LogBuilder& newMinute() { return add({}, TesselChatLog::NewMinute{}); }
    /// The next event continues the message of the one before.
    LogBuilder& joined() {
        continuations_.resize(events_.size(), false);
        continuations_.push_back(true);
        return *this;
    }
    /// Seconds until the next event.
    LogBuilder& wait(double seconds) {
        seconds_ += seconds;
        return *this;
    }

    [[nodiscard]] TesselChatLog log() const {
        return {TesselServiceID::aim, user_(QStringLiteral("me")), {}, events_, continuations_};
    }

  private:
    double seconds_ = 0;
    std::vector<TesselChatLog::Event> events_;
    std::vector<bool> continuations_;

    static TesselUserID user_(const QString& name) { return {TesselServiceID::aim, name}; }
    LogBuilder& add(const Sender& sender, TesselChatLog::Event::Value value) {
        TesselChatLog::Event event{
            static_cast<qint64>(events_.size()) + 1, {seconds_}, std::nullopt, std::move(value)};
        if (!sender.isEmpty()) event.sender = user_(sender);
        events_.push_back(std::move(event));
        return *this;
    }
};

}  // namespace vell::test
