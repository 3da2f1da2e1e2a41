#pragma once

#include "appearance/ColorMath.h"

#include <QList>
#include <QObject>
#include <QString>

namespace orvo {

class Preferences;

/// A palette to start from.
struct ThemePreset {
    QString id;
    QString title;
    QString background;
    QString accent;
    QString subtitle;

    bool operator==(const ThemePreset&) const = default;
    /// In display order; the first is the default.
    static const QList<ThemePreset>& all();
};

/// The application's appearance: two colours and a text size, from which everything else is derived.
/// Main thread only. Every change is stored at once.
class Theme : public QObject {
    Q_OBJECT

public:
    /// `preferences` is null for a theme that keeps nothing; otherwise it outlives the theme.
    explicit Theme(Preferences* preferences, QObject* parent = nullptr);

    const QString& backgroundHex() const;
    const QString& accentHex() const;
    /// Terminal text size in points.
    double fontSize() const;
    const QString& presetID() const;

    void apply(const ThemePreset& preset);
    /// A colour of the person's own: the preset becomes "custom". Stored as six upper-case digits.
    void setBackgroundHex(const QString& hex);
    void setAccentHex(const QString& hex);
    /// `points` is greater than 0.
    void setFontSize(double points);

    bool isClaude() const;
    bool isMirel() const;
    bool isNeutral() const;

    Rgb bg() const;
    Rgb surface() const;
    Rgb sidebar() const;
    Rgba border() const;
    Rgb muted() const;
    Rgb text() const;
    Rgb accent() const;

Q_SIGNALS:
    void backgroundHexChanged();
    void accentHexChanged();
    void fontSizeChanged();
    void presetIDChanged();

private:
    struct Choice {
        QString background;
        QString accent;
        QString preset;
        double fontSize = 0;
    };

    void load();
    void save();
    /// Takes all of `next` over, stores it, and only then tells what has changed.
    void change(Choice next);

    Preferences* m_preferences;
    Choice m_choice;
};

}  // namespace orvo
