#pragma once

#include "platform/EscapedPrograms.h"

namespace orvo {

/// Programs that a test lets run.
class FakeEscapedPrograms final : public EscapedPrograms {
public:
    void setRunning(const QList<EscapedProgram>& programs) { m_running = programs; }
    QList<EscapedProgram> running() const override { return m_running; }
    void stop(const QList<EscapedProgram>& programs) override {
        m_running.removeIf([&programs](const EscapedProgram& program) { return programs.contains(program); });
    }

private:
    QList<EscapedProgram> m_running;
};

}  // namespace orvo
