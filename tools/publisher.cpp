// SPDX-License-Identifier: MIT
// publisher NAME: a program on the session bus under that name. It answers questions for properties with what
// it is told on standard input, one line a property: "s PlaybackStatus Playing", "m xesam:url file:///a.mp3"
// (Metadata), "as Selected URI URI", "x ActiveSince 5". It says "ready" when it has the name, and "ok" after
// each line; to "asked" it says how often it was asked.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QSocketNotifier>
#include <QVariantMap>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

class Properties : public QDBusVirtualObject {
public:
    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != QLatin1StringView("GetAll")) {
            return false;
        }
        ++timesAsked_;
        QVariantMap all{{QStringLiteral("Metadata"), metadata_}};
        all.insert(values_);
        connection.send(message.createReply(all));
        return true;
    }

    [[nodiscard]] int timesAsked() const { return timesAsked_; }

    void set(const QStringList& words) {
        const QString rest = words.mid(2).join(u' ');
        if (words[0] == QLatin1StringView("m")) {
            metadata_[words[1]] = rest;
        } else if (words[0] == QLatin1StringView("as")) {
            values_[words[1]] = words.mid(2);
        } else if (words[0] == QLatin1StringView("ai")) { // of a type that no property has
            values_[words[1]] = QVariant::fromValue(QList<int>{1, 2});
        } else if (words[0] == QLatin1StringView("x")) {
            values_[words[1]] = rest.toLongLong();
        } else {
            values_[words[1]] = rest;
        }
    }

private:
    QVariantMap values_;
    QVariantMap metadata_;
    int timesAsked_ = 0;
};

void say(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Properties properties;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerVirtualObject(QStringLiteral("/"), &properties, QDBusConnection::SubPath);
    for (int i = 1; i < argc; ++i) {
        if (!bus.registerService(QString::fromLocal8Bit(argv[i]))) {
            return 1;
        }
    }
    say("ready");
    const QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        std::string line;
        if (!std::getline(std::cin, line)) {
            QCoreApplication::quit();
            return;
        }
        if (line == "asked") {
            say(std::to_string(properties.timesAsked()).c_str());
            return;
        }
        properties.set(QString::fromStdString(line).split(u' '));
        say("ok");
    });
    return QCoreApplication::exec();
}
