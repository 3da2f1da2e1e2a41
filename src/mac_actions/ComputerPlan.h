#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <span>

namespace orvo {

/// One step of an action plan, as its planner wrote it. A value; identified by `id`, unique within its plan.
struct ComputerStep {
    qint64 id = 0;
    /// Plain language, for the person.
    QString title;
    /// "open_app", "open_url", "type_text" or "key".
    QString action;
    /// The application that the step acts on, such as "com.apple.TextEdit".
    QString app;
    /// Empty, the web address, the line of text, or the key's name.
    QString value;

    bool operator==(const ComputerStep&) const = default;
};

/// A key or shortcut that plans may use, in the numbers of the platform-neutral key table.
struct ComputerKey {
    /// The Command modifier in `modifiers`.
    static constexpr quint64 command = 0x100000;

    const char* name;
    /// Virtual key code of the ANSI keyboard.
    quint16 code;
    quint64 modifiers;
};

/// What an assistant may hand over for action on the desktop: an explanation and at most twelve steps.
struct ComputerPlan {
    /// What the steps do, or what is needed when there are none.
    QString explanation;
    QList<ComputerStep> steps;

    bool operator==(const ComputerPlan&) const = default;

    /// The JSON schema of a plan's shape, in one line of 448 bytes. The limits are `validated`'s.
    static const QByteArray& schema();
    /// The ten keys that plans may press.
    static std::span<const ComputerKey> keys();
    /// By its exact name; null for any other.
    static const ComputerKey* key(const QString& name);

    /// Reads a plan from UTF-8 JSON. Strict: every key there and of its type, no key twice, whole ids of 64
    /// bits, no byte order mark; keys that are not a plan's are passed over. The error says what is wrong.
    static Result<ComputerPlan> fromJson(const QByteArray& json);
    QByteArray toJson() const;

    /// The same plan if it keeps every limit; otherwise the sentence of the first rule broken. Nothing that
    /// has not passed here is shown or run.
    Result<ComputerPlan> validated() const;
};

}  // namespace orvo
