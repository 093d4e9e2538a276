#pragma once

#include <functional>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QStringList>
#include <QTimer>

#include "Endpoint.h"
#include "StreamChannel.h"

/// Runs the events of this thread until something is so. @return whether it was within a minute.
inline bool Eventually(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(60000);
    QTimer look; // for what no event tells
    look.start(10);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return condition();
}

/// What an endpoint tells, as texts: "opened 1", "1: hello" (pieces of a line in a row are joined), "ended 1", "closed
/// 1".
class HeardNews final : public stagehost::EndpointNews {
public:
    void Opened(stagehost::LineId line, const QString&) override {
        all += QStringLiteral("opened %1").arg(line);
        if (onOpened)
            onOpened(line);
    }
    void Came(stagehost::LineId line, const QByteArray& bytes) override {
        const QString begin = QStringLiteral("%1: ").arg(line);
        if (joins && !all.isEmpty() && all.last().startsWith(begin))
            all.last() += QString::fromLatin1(bytes);
        else
            all += begin + QString::fromLatin1(bytes);
        if (onCame)
            onCame(line, bytes);
    }
    void Ended(stagehost::LineId line) override {
        all += QStringLiteral("ended %1").arg(line);
        if (onEnded)
            onEnded(line);
    }
    void Drained(stagehost::LineId) override { ++drained; }
    void Closed(stagehost::LineId line, const QString& why) override {
        all += QStringLiteral("closed %1").arg(line);
        lastWhy = why;
    }

    bool Becomes(const char* text) {
        const QString wanted = QString::fromLatin1(text);
        return Eventually([&] { return all.join(QStringLiteral(", ")) == wanted; });
    }
    std::string Text() const { return all.join(QStringLiteral(", ")).toStdString(); }

    QStringList all;
    QString lastWhy;
    bool joins = true;
    int drained = 0;
    std::function<void(stagehost::LineId)> onOpened;
    std::function<void(stagehost::LineId)> onEnded;
    std::function<void(stagehost::LineId, const QByteArray&)> onCame;
};

/// A program that connects to an endpoint, over a channel.
class Caller {
public:
    explicit Caller(std::uint16_t port)
        : channel(stagehost::StreamChannel::ConnectTo({"127.0.0.1", port})) {
        channel->SetNews({[this](const QByteArray& bytes) { came += bytes; },
                          [this] { isConnected = true; },
                          [this] { hasEnded = true; },
                          [this] { ++drained; },
                          {},
                          [this](const QString& why, bool reset) {
                              isLost = true;
                              wasReset = reset;
                              whyLost = why;
                          }});
    }
    ~Caller() { channel->SetNews({}); }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    bool Hears(const QByteArray& wanted) {
        return Eventually([&] { return came == wanted; });
    }

    std::shared_ptr<stagehost::StreamChannel> channel;
    QByteArray came;
    bool isConnected = false;
    bool hasEnded = false;
    bool isLost = false;
    bool wasReset = false;
    QString whyLost;
    int drained = 0;
};
