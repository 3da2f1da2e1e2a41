#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

namespace orvo {

using PreferenceValue = std::variant<bool, double, QString, QStringList, QByteArray>;

/// A key and the type that is stored under it. All keys stand in `preference` below.
template <class T>
struct PreferenceKey {
    const char* name;
};

/// The whole key table of the application. Defaults belong to the models that own the keys.
namespace preference {
inline constexpr PreferenceKey<bool> keepAwake{"keepAwake"};
inline constexpr PreferenceKey<QByteArray> providers{"providers"};
inline constexpr PreferenceKey<QStringList> recentFolders{"recentFolders"};
inline constexpr PreferenceKey<QString> workspace{"workspace"};
inline constexpr PreferenceKey<QByteArray> history{"history"};
inline constexpr PreferenceKey<QString> background{"background"};
inline constexpr PreferenceKey<QString> accent{"accent"};
inline constexpr PreferenceKey<double> terminalFont{"terminalFont"};
inline constexpr PreferenceKey<QString> preset{"preset"};
inline constexpr PreferenceKey<bool> pelkAccentApplied{"pelkAccentApplied"};
inline constexpr PreferenceKey<bool> migratedFromPelk{"orvo.migratedFromPelk"};
inline constexpr PreferenceKey<bool> petEnabled{"orvo.pet.enabled"};
inline constexpr PreferenceKey<QString> petAppearance{"orvo.pet.appearance"};
inline constexpr PreferenceKey<double> petScale{"orvo.pet.scale"};
inline constexpr PreferenceKey<bool> petAnimate{"orvo.pet.animate"};
inline constexpr PreferenceKey<QByteArray> petImage{"orvo.pet.image"};
inline constexpr PreferenceKey<bool> petWarriorInstalled{"orvo.pet.warriorInstalled.v1"};
inline constexpr PreferenceKey<QString> recognizerCommand{"companion.recognizerCommand"};
inline constexpr PreferenceKey<bool> notifications{"notifications"};
inline constexpr PreferenceKey<double> petX{"orvo.pet.x"};
inline constexpr PreferenceKey<double> petY{"orvo.pet.y"};
}  // namespace preference

/// Where the models keep what must outlive the process. Main thread only.
/// A stored value of another type than the key's counts as absent and is left as it is until overwritten.
class Preferences {
public:
    virtual ~Preferences() = default;

    template <class T>
    std::optional<T> value(PreferenceKey<T> key) const {
        const std::optional<PreferenceValue> stored = read(key.name);
        if (!stored || !std::holds_alternative<T>(*stored)) return std::nullopt;
        return std::get<T>(*stored);
    }

    /// Stored at once, so that a crash right after loses nothing. The error says why it could not be kept.
    template <class T>
    Result<void> setValue(PreferenceKey<T> key, const std::type_identity_t<T>& value) {
        return write(key.name, PreferenceValue(value));
    }

    /// What became of a value that was to be stored soon. Main thread.
    using Stored = std::function<void(const Result<void>&)>;

    /// Stores a large value without keeping the caller waiting for the disk. It is read from now on, and
    /// later changes of the key come after it; of values that follow one another quickly only the last is
    /// sure to reach the disk. The end of the preferences waits for it.
    template <class T>
    void setValueSoon(PreferenceKey<T> key, const std::type_identity_t<T>& value, Stored stored = {}) {
        writeSoon(key.name, PreferenceValue(value), std::move(stored));
    }

    template <class T>
    Result<void> remove(PreferenceKey<T> key) {
        return write(key.name, std::nullopt);
    }

    /// For the owner of a key whose stored value it cannot decode: the value is kept aside before the next
    /// write replaces it, so that a person or a later version can still rescue it.
    template <class T>
    void markDamaged(PreferenceKey<T> key) {
        keepAside(key.name);
    }

    /// Small values that change while one of these lives may reach the disk together, when it ends: for a few
    /// moments in which many change, and whose loss could be made good. The preferences outlive it.
    class Together {
    public:
        explicit Together(Preferences& preferences) : m_preferences(preferences) { m_preferences.hold(); }
        ~Together() { m_preferences.storeHeld(); }
        Together(const Together&) = delete;
        Together& operator=(const Together&) = delete;

    private:
        Preferences& m_preferences;
    };

protected:
    /// Calls come in pairs, never nested. Nothing is held by default.
    virtual void hold() {}
    virtual void storeHeld() {}
    virtual std::optional<PreferenceValue> read(const char* name) const = 0;
    virtual Result<void> write(const char* name, std::optional<PreferenceValue> value) = 0;
    virtual void keepAside(const char* name) = 0;
    /// At once, unless the store knows better.
    virtual void writeSoon(const char* name, PreferenceValue value, Stored stored) {
        const Result<void> written = write(name, std::move(value));
        if (const Stored told = std::move(stored)) told(written);
    }
};

}  // namespace orvo
