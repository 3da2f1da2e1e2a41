#pragma once

#include <QString>

#include <memory>

namespace orvo {

/// Keeps the machine from sleeping while idle; the display may still go dark.
class SleepInhibitor {
public:
    /// An assertion that is held until it is destroyed.
    class Assertion {
    public:
        virtual ~Assertion() = default;
    };

    virtual ~SleepInhibitor() = default;

    /// Null when the system has nobody who could hold it.
    virtual std::unique_ptr<Assertion> hold(const QString& reason) = 0;
};

}  // namespace orvo
