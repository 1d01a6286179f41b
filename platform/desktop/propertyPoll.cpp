// SPDX-License-Identifier: MIT
#include "platform/desktop/propertyPoll.h"

#include "platform/desktop/busCall.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <algorithm>
#include <limits>

namespace sonarin {

namespace {

constexpr qint64 deadline = 100;          // milliseconds, for an answer that counts
constexpr qint64 followerPatience = 2000; // milliseconds, until another program is followed

QDBusMessage busQuestion(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

} // namespace

PropertyPoll::PropertyPoll(SessionBus* bus, Family family, QObject* parent)
    : QObject(parent), bus_(bus), family_(std::move(family)) {
    connect(bus_, &SessionBus::reconnected, this, &PropertyPoll::start);
    start();
}

void PropertyPoll::start() {
    ++generation_;
    programs_.clear();
    QDBusConnection connection = bus_->connection();
    if (!connection.isConnected()) {
        return;
    }
    const QDBusMessage question = busQuestion(QStringLiteral("ListNames"));
    connection.connect(question.service(), question.path(), question.interface(),
                       QStringLiteral("NameOwnerChanged"), this,
                       SLOT(nameOwnerChanged(QString, QString, QString)));
    const auto takeNames = [this](const QDBusPendingReply<QStringList>& names) {
        for (const QString& name : names.isError() ? QStringList() : names.value()) {
            if (name.startsWith(family_.namePrefix)) {
                askForOwner(name);
            }
        }
    };
    whenAnswered(connection.asyncCall(question), this, takeNames);
}

void PropertyPoll::askForOwner(const QString& name) {
    QDBusMessage question = busQuestion(QStringLiteral("GetNameOwner"));
    question << name;
    const auto takeOwner = [this, name](const QDBusPendingReply<QString>& owner) {
        if (!owner.isError()) {
            addName(name, owner.value());
        }
    };
    whenAnswered(bus_->connection().asyncCall(question), this, takeOwner);
}

void PropertyPoll::nameOwnerChanged(const QString& name, const QString& oldOwner, const QString& newOwner) {
    if (!name.startsWith(family_.namePrefix)) {
        return;
    }
    if (!oldOwner.isEmpty()) {
        removeName(name, oldOwner);
    }
    if (!newOwner.isEmpty()) {
        addName(name, newOwner);
    }
}

void PropertyPoll::addName(const QString& name, const QString& owner) {
    QStringList& names = programs_[owner].answer.names;
    if (!names.contains(name)) {
        names.append(name);
    }
}

void PropertyPoll::removeName(const QString& name, const QString& owner) {
    const auto program = programs_.find(owner);
    if (program == programs_.end()) {
        return;
    }
    program->answer.names.removeAll(name);
    if (program->answer.names.isEmpty()) {
        programs_.erase(program);
        emit changed();
    }
}

void PropertyPoll::ask() {
    if (!bus_->isConnected()) {
        return;
    }
    forgetOverdueAnswers();
    const QStringList owners = programs_.keys();
    for (const QString& owner : owners) {
        if (programs_[owner].isNew && !programs_[owner].isAsked) {
            askProgram(owner);
        }
    }
    const QString followed = followedOwner();
    if (!followed.isEmpty() && !programs_[followed].isAsked) {
        askProgram(followed);
    }
    const QString next = nextInTurn();
    if (!next.isEmpty()) {
        askedInTurn_ = next;
        askProgram(next);
    }
}

void PropertyPoll::forgetOverdueAnswers() {
    bool isAnyOther = false;
    for (Program& program : programs_) {
        if (!program.isAsked || program.asked.elapsed() <= deadline) {
            continue;
        }
        const bool isForgotten = program.hasAnswered && program.asked.elapsed() > followerPatience;
        isAnyOther = isAnyOther || program.answer.isCurrent || isForgotten || program.isNew;
        program.answer.isCurrent = false;
        program.isNew = false;
        program.hasAnswered = program.hasAnswered && !isForgotten;
    }
    if (isAnyOther) {
        emit changed();
    }
}

void PropertyPoll::forget() {
    for (Program& program : programs_) {
        program.hasAnswered = false;
        program.isNew = true;
        program.answer.isCurrent = false;
    }
}

bool PropertyPoll::isAnyNew() const {
    return std::any_of(programs_.begin(), programs_.end(),
                       [](const Program& program) { return program.isNew; });
}

/// The first program behind the one whose turn it was last that owes no answer.
QString PropertyPoll::nextInTurn() const {
    const auto start = programs_.upperBound(askedInTurn_);
    auto program = start;
    for (qsizetype i = 0; i < programs_.size(); ++i, ++program) {
        if (program == programs_.end()) {
            program = programs_.begin();
        }
        if (!program->isAsked) {
            return program.key();
        }
    }
    return {};
}

void PropertyPoll::askProgram(const QString& owner) {
    QDBusMessage question = QDBusMessage::createMethodCall(owner, family_.objectPath,
                                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                                           QStringLiteral("GetAll"));
    question << family_.interface;
    question.setAutoStartService(false);
    Program& program = programs_[owner];
    program.isAsked = true;
    program.asked.start();
    // No time-out: the question stays open as long as the program hangs, and ends with the program.
    const QDBusPendingCall pending = bus_->connection().asyncCall(question, std::numeric_limits<int>::max());
    whenAnswered(pending, this, [this, owner, generation = generation_](const QDBusPendingCall& answer) {
        if (generation == generation_) {
            take(owner, answer);
        }
    });
}

void PropertyPoll::take(const QString& owner, const QDBusPendingReply<QVariantMap>& reply) {
    const auto program = programs_.find(owner);
    if (program == programs_.end()) {
        return;
    }
    program->isAsked = false;
    const bool isInTime = !reply.isError() && program->asked.elapsed() <= deadline;
    const QVariant digest = isInTime ? family_.digest(reply.value()) : QVariant();
    const bool isOther = program->isNew || isInTime != program->answer.isCurrent ||
                         (isInTime && digest != program->answer.digest);
    program->isNew = false;
    program->answer.isCurrent = isInTime;
    program->hasAnswered = program->hasAnswered || isInTime;
    if (isInTime && digest != program->answer.digest) {
        program->answer.digest = digest;
        program->answer.changed = ++changes_;
    }
    if (isOther) {
        emit changed();
    }
}

QString PropertyPoll::followedOwner() const {
    auto followed = programs_.end();
    for (auto program = programs_.begin(); program != programs_.end(); ++program) {
        if (program->hasAnswered &&
            (followed == programs_.end() || family_.isOutdone(followed->answer, program->answer))) {
            followed = program;
        }
    }
    return followed == programs_.end() ? QString() : followed.key();
}

std::optional<PropertyPoll::Answer> PropertyPoll::followed() const {
    // Who answers first at the start is not yet who is to be followed.
    const auto program = isAnyNew() ? programs_.end() : programs_.find(followedOwner());
    return program == programs_.end() ? std::nullopt : std::optional(program->answer);
}

} // namespace sonarin

#include "moc_propertyPoll.cpp"
