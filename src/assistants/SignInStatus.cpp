#include "assistants/SignInStatus.h"

#include "platform/LocalTools.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvo {
namespace {

QString signedIn() {
    return QCoreApplication::translate("orvo::Assistants", "Signed in");
}
QString signInNeeded() {
    return QCoreApplication::translate("orvo::Assistants", "Sign in needed");
}

}  // namespace

QString codexSignInLabel(const ToolResult& result) {
    if (result.code == 0 && result.output.contains(QLatin1String("Logged in"))) return signedIn();
    if (result.timedOut) return QCoreApplication::translate("orvo::Assistants", "Check timed out");
    return signInNeeded();
}

QString claudeSignInLabel(const ToolResult& result) {
    const QJsonValue loggedIn = QJsonDocument::fromJson(result.output.toUtf8()).object().value(u"loggedIn");
    if (result.timedOut || !loggedIn.isBool()) {
        return QCoreApplication::translate("orvo::Assistants", "Login status unavailable");
    }
    return loggedIn.toBool() ? signedIn() : signInNeeded();
}

}  // namespace orvo
