#pragma once

#include "platform/Preferences.h"

#include <functional>
#include <memory>

namespace orvo {

/// Passes everything on to other preferences, and reports the first write of a row of failed ones: a
/// read-only home is one problem, however many settings are changed in it.
class ReportingPreferences final : public Preferences {
public:
    /// `preferences` outlives this object.
    ReportingPreferences(Preferences& preferences, std::function<void(const Error&)> report)
        : m_preferences(preferences), m_report(std::move(report)) {}

protected:
    std::optional<PreferenceValue> read(const char* name) const override;
    Result<void> write(const char* name, std::optional<PreferenceValue> value) override;
    void keepAside(const char* name) override;
    void writeSoon(const char* name, PreferenceValue value, Stored stored) override;

private:
    void note(const Result<void>& written);

    Preferences& m_preferences;
    std::function<void(const Error&)> m_report;
    bool m_failing = false;
    /// Gone with this object; what is stored later has nobody to report to.
    std::shared_ptr<ReportingPreferences*> m_self = std::make_shared<ReportingPreferences*>(this);
};

}  // namespace orvo
