#pragma once

#include "app/TerminationSignals.h"

#include <QObject>

class QGuiApplication;

namespace orvo {

class OrvoApplication;

/// Ends the run in order and without a question when the system or the desktop session wants it to.
class EndRequests final : public QObject {
    Q_OBJECT

public:
    /// Both outlive this object.
    EndRequests(QGuiApplication& application, OrvoApplication& orvo);

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    OrvoApplication& m_orvo;
    TerminationSignals m_termination;
};

}  // namespace orvo
