#pragma once

#include "platform/SleepInhibitor.h"

#include <QStringList>

namespace orvo {

/// Counts the assertions that are held; can refuse like a system without anybody who could hold one.
class FakeSleepInhibitor final : public SleepInhibitor {
public:
    enum class Answer { Hold, Refuse };

    void setAnswer(Answer answer) { m_answer = answer; }
    /// Assertions held at this moment.
    int held() const { return *m_held; }
    /// Reasons of all requests so far, the refused ones included.
    const QStringList& reasons() const { return m_reasons; }

    std::unique_ptr<Assertion> hold(const QString& reason) override {
        m_reasons.append(reason);
        if (m_answer == Answer::Refuse) return nullptr;
        return std::make_unique<Held>(m_held);
    }

private:
    class Held final : public Assertion {
    public:
        explicit Held(std::shared_ptr<int> count) : m_count(std::move(count)) { ++*m_count; }
        ~Held() override { --*m_count; }

    private:
        std::shared_ptr<int> m_count;
    };

    Answer m_answer = Answer::Hold;
    // Shared, because an assertion may outlive the inhibitor.
    std::shared_ptr<int> m_held = std::make_shared<int>(0);
    QStringList m_reasons;
};

}  // namespace orvo
