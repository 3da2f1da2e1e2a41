// The limits of action plans: the safety boundary between what a model wrote and what may reach the desktop.

#include "mac_actions/ComputerPlan.h"
#include "mac_actions/planError.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSet>
#include <QTextBoundaryFinder>
#include <QUrl>

#include <algorithm>

namespace orvo {
namespace {

constexpr qsizetype maximumSteps = 12;
constexpr qsizetype maximumExplanation = 4000;
constexpr qsizetype maximumTitle = 300;
constexpr qsizetype maximumApp = 159;
constexpr qsizetype maximumAddress = 2048;
constexpr qsizetype maximumTyping = 2000;

QString tr(const char* sentence) {
    return QCoreApplication::translate("orvo::ComputerPlan", sentence);
}

// Counts what a person sees as characters, and no further than the limit.
bool hasMoreCharactersThan(const QString& text, qsizetype limit) {
    if (text.size() <= limit) return false;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype count = 0; count <= limit; ++count) {
        if (finder.toNextBoundary() < 0) return false;
    }
    return true;
}

bool hasDuplicateIDs(const QList<ComputerStep>& steps) {
    QSet<qint64> ids;
    for (const ComputerStep& step : steps)
        ids.insert(step.id);
    return ids.size() != steps.size();
}

bool isApplicationID(const QString& app) {
    if (app.isEmpty() || hasMoreCharactersThan(app, maximumApp)) return false;
    if (QStringView(app).split(u'.', Qt::SkipEmptyParts).size() < 2) return false;
    return !app.contains(u'/') && std::ranges::none_of(app, [](QChar c) { return c.isSpace(); });
}

// The characters that RFC 3986 knows; all else must be percent-encoded, letters of other scripts included.
// This also keeps the backslash out, which some programs read as a slash.
bool hasAddressSyntax(const QString& value) {
    static const QRegularExpression syntax(
        QStringLiteral(R"(\A(?:[A-Za-z0-9\-._~:/?#\[\]@!$&'()*+,;=]|%[0-9A-Fa-f]{2})+\z)"));
    return syntax.match(value).hasMatch();
}

// Between "//" and the path. A user stands there before "@", even an empty one.
QStringView authorityOf(QStringView address) {
    const qsizetype start = address.indexOf(u"//");
    if (start < 0) return {};
    const QStringView rest = address.sliced(start + 2);
    const auto end = std::ranges::find_if(rest, [](QChar c) { return c == u'/' || c == u'?' || c == u'#'; });
    return rest.first(end - rest.begin());
}

bool isWebAddress(const QString& value) {
    if (hasMoreCharactersThan(value, maximumAddress) || !hasAddressSyntax(value)) return false;
    const QUrl url(value, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == u"http" || scheme == u"https") && !url.host().isEmpty() &&
           !authorityOf(value).contains(u'@');
}

bool isOneTypedLine(const QString& value) {
    return !value.isEmpty() && value.size() <= maximumTyping &&
           std::ranges::none_of(value, [](QChar c) { return c < u' ' || c == u'\x7f'; });
}

struct ActionRule {
    QLatin1String action;
    bool (*holds)(const QString& value);
    const char* sentence;
};

constexpr ActionRule actionRules[] = {
    {QLatin1String("open_app"), [](const QString& value) { return value.isEmpty(); },
     QT_TRANSLATE_NOOP("orvo::ComputerPlan", "An app-opening step contained unexpected data.")},
    {QLatin1String("open_url"), isWebAddress,
     QT_TRANSLATE_NOOP("orvo::ComputerPlan", "Only ordinary HTTP or HTTPS web addresses are supported.")},
    {QLatin1String("type_text"), isOneTypedLine,
     QT_TRANSLATE_NOOP(
         "orvo::ComputerPlan",
         "Typing steps support up to 2,000 characters on one line. Use separate Return steps for "
         "line breaks.")},
    {QLatin1String("key"), [](const QString& value) { return ComputerPlan::key(value) != nullptr; },
     QT_TRANSLATE_NOOP("orvo::ComputerPlan", "The plan requested an unsupported keyboard shortcut.")},
};

Result<void> checkStep(const ComputerStep& step) {
    if (step.title.isEmpty() || hasMoreCharactersThan(step.title, maximumTitle) ||
        !isApplicationID(step.app)) {
        return planError(tr("The plan contains an invalid app or step title."));
    }
    const auto* const rule = std::ranges::find_if(
        actionRules, [&](const ActionRule& candidate) { return step.action == candidate.action; });
    if (rule == std::ranges::end(actionRules)) {
        return planError(tr("The plan requested an unsupported action."));
    }
    if (!rule->holds(step.value)) return planError(tr(rule->sentence));
    return {};
}

}  // namespace

Result<ComputerPlan> ComputerPlan::validated() const {
    if (steps.size() > maximumSteps || hasMoreCharactersThan(explanation, maximumExplanation) ||
        hasDuplicateIDs(steps)) {
        return planError(tr("The plan is too large or contains duplicate steps. Try a simpler request."));
    }
    for (const ComputerStep& step : steps) {
        if (const auto checked = checkStep(step); !checked) return tl::unexpected(checked.error());
    }
    return *this;
}

}  // namespace orvo
