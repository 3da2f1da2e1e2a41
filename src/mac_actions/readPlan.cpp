// Reads a plan's JSON, token by token, as docs/decisions/0013-plan-json.md tells.

#include "mac_actions/ComputerPlan.h"
#include "mac_actions/planError.h"
#include "mac_actions/wholeNumber.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <string_view>

#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

namespace orvo {
namespace {

QString tr(const char* sentence) {
    return QCoreApplication::translate("orvo::ComputerPlan", sentence);
}

// Which of a record's keys have been read, so that none is missing and none comes twice.
class KeySet {
public:
    explicit KeySet(std::span<const std::string_view> names) : m_names(names) {}

    void clear() { m_seen = 0; }
    std::optional<std::string_view> missing() const {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (!(m_seen & (1U << i))) return m_names[i];
        }
        return std::nullopt;
    }
    bool knows(std::string_view name) const { return std::ranges::find(m_names, name) != m_names.end(); }
    // False when it was there before.
    bool add(std::string_view name) {
        const unsigned bit = 1U << (std::ranges::find(m_names, name) - m_names.begin());
        return !(std::exchange(m_seen, m_seen | bit) & bit);
    }

private:
    std::span<const std::string_view> m_names;
    unsigned m_seen = 0;
};

constexpr std::array<std::string_view, 2> planKeys = {"explanation", "steps"};
constexpr std::array<std::string_view, 5> stepKeys = {"id", "title", "action", "app", "value"};

// Receives the reader's events. Each returns whether to go on; `error` then says why not.
class PlanHandler {
public:
    using Size = rapidjson::SizeType;

    ComputerPlan plan;
    QString error;

    bool Null() { return scalar({}); }
    bool Bool(bool) { return scalar({}); }
    // Numbers arrive as text; these are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(int64_t) { return false; }
    bool Uint64(uint64_t) { return false; }
    bool Double(double) { return false; }

    bool RawNumber(const char* text, Size length, bool) {
        if (m_skipped > 0 || m_ignored) return scalar({});
        if (m_place != Place::Step || m_key != "id") return wrongType();
        const auto id = wholeNumber({text, length});
        if (!id) return fail(tr("%1 must be a whole number of 64 bits.").arg(where()));
        plan.steps.last().id = *id;
        return true;
    }

    bool String(const char* text, Size length, bool) { return scalar(QString::fromUtf8(text, length)); }

    bool StartObject() {
        if (m_skipped > 0 || m_ignored) return skipInto();
        if (m_place == Place::Outside) {
            m_place = Place::Plan;
            return true;
        }
        if (m_place != Place::Steps) return wrongType();
        m_place = Place::Step;
        m_stepKeys.clear();
        plan.steps.append(ComputerStep{});
        return true;
    }

    bool Key(const char* text, Size length, bool) {
        if (m_skipped > 0) return true;
        m_key.assign(text, length);
        KeySet& keys = m_place == Place::Step ? m_stepKeys : m_planKeys;
        m_ignored = !keys.knows(m_key);
        if (m_ignored || keys.add(m_key)) return true;
        return fail(tr("%1 is there twice.").arg(where()));
    }

    bool EndObject(Size) {
        if (m_skipped > 0) return skipOut();
        const auto missing = (m_place == Place::Step ? m_stepKeys : m_planKeys).missing();
        if (missing) {
            m_key = *missing;
            return fail(tr("%1 is missing.").arg(where()));
        }
        m_place = m_place == Place::Step ? Place::Steps : Place::Outside;
        return true;
    }

    bool StartArray() {
        if (m_skipped > 0 || m_ignored) return skipInto();
        if (m_place != Place::Plan || m_key != "steps") return wrongType();
        m_place = Place::Steps;
        return true;
    }

    bool EndArray(Size) {
        if (m_skipped > 0) return skipOut();
        m_place = Place::Plan;
        return true;
    }

private:
    enum class Place { Outside, Plan, Steps, Step };

    // A string, or the null, boolean or skipped number that stands for none.
    bool scalar(const std::optional<QString>& text) {
        if (m_skipped > 0) return true;
        if (std::exchange(m_ignored, false)) return true;
        if (!text) return wrongType();
        QString* const field = textField();
        if (!field) return wrongType();
        *field = *text;
        return true;
    }

    QString* textField() {
        if (m_place == Place::Plan && m_key == "explanation") return &plan.explanation;
        if (m_place != Place::Step) return nullptr;
        ComputerStep& step = plan.steps.last();
        if (m_key == "title") return &step.title;
        if (m_key == "action") return &step.action;
        if (m_key == "app") return &step.app;
        return m_key == "value" ? &step.value : nullptr;
    }

    bool skipInto() {
        m_ignored = false;
        ++m_skipped;
        return true;
    }

    bool skipOut() {
        --m_skipped;
        return true;
    }

    bool wrongType() { return fail(tr("%1 has the wrong type.").arg(where())); }

    bool fail(const QString& sentence) {
        error = sentence;
        return false;
    }

    // Such as: "title" of step 2.
    QString where() const {
        if (m_place == Place::Outside) return tr("The plan");
        if (m_place == Place::Steps) return tr("Step %1").arg(plan.steps.size() + 1);
        const QString key = QString::fromUtf8(m_key.data(), static_cast<qsizetype>(m_key.size()));
        if (m_place == Place::Plan) return tr("The plan’s \"%1\"").arg(key);
        return tr("\"%1\" of step %2").arg(key).arg(plan.steps.size());
    }

    Place m_place = Place::Outside;
    std::string m_key;
    // The value that comes next belongs to a key that is no plan's.
    bool m_ignored = false;
    // How deep within such a value.
    qsizetype m_skipped = 0;
    KeySet m_planKeys{planKeys};
    KeySet m_stepKeys{stepKeys};
};

}  // namespace

Result<ComputerPlan> ComputerPlan::fromJson(const QByteArray& json) {
    if (json.startsWith("\xef\xbb\xbf")) {
        return planError(tr("The plan begins with a byte order mark, which JSON does not allow."));
    }
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                               rapidjson::kParseNumbersAsStringsFlag;
    PlanHandler handler;
    rapidjson::Reader reader;
    rapidjson::MemoryStream stream(json.constData(), static_cast<std::size_t>(json.size()));
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, handler);
    if (!result && result.Code() == rapidjson::kParseErrorTermination) return planError(handler.error);
    if (!result) {
        return planError(tr("The plan is not valid JSON. %1 (byte %2)")
                             .arg(QLatin1String(rapidjson::GetParseError_En(result.Code())))
                             .arg(result.Offset()));
    }
    return handler.plan;
}

}  // namespace orvo
