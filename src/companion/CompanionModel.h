#pragma once

#include "companion/Dictation.h"
#include "companion/ReadAloud.h"
#include "platform/FilePath.h"
#include "platform/ImageDecoder.h"

#include <QObject>

#include <functional>

namespace orvo {

class Dialogs;
class Preferences;

/// What the companion is built from. All references outlive it.
struct CompanionServices {
    /// Null for a companion that neither reads nor writes preferences.
    Preferences* preferences = nullptr;
    Clock& clock;
    Dialogs& dialogs;
    const ImageDecoder& images;
    Microphone& microphone;
    SpeechRecognition& recognition;
    SpeechSynthesizer& synthesizer;
    /// Reads the pet that comes with the application, once it is to be seen; null when it came without.
    std::function<std::shared_ptr<const DecodedImage>()> builtInPet;
    /// The person's, as "language_REGION".
    QString locale;
};

/// The desktop companion: how the pet looks, the quick draft, dictation into it and reading aloud. Main
/// thread only; one signal a field.
class CompanionModel : public QObject {
    Q_OBJECT

public:
    using Action = std::function<void()>;

    static constexpr double smallestScale = 0.65;
    static constexpr double greatestScale = 1.5;

    explicit CompanionModel(CompanionServices services, QObject* parent = nullptr);
    ~CompanionModel() override;

    /// The companion is shown on the desktop.
    bool enabled() const { return m_enabled; }
    /// "default" or "custom".
    const QString& appearance() const { return m_appearance; }
    /// Of the pet window; 1 is 176 x 186 dip.
    double scale() const { return m_scale; }
    bool animate() const { return m_animate; }
    const std::shared_ptr<const DecodedImage>& customImage() const { return m_customImage; }
    std::shared_ptr<const DecodedImage> builtInPet() const;
    const QString& draft() const { return m_draft; }
    const QString& message() const { return m_message; }
    bool listening() const { return m_dictation.isListening(); }
    bool requestingMicrophone() const { return m_dictation.isRequesting(); }
    bool speaking() const { return m_readAloud.isSpeaking(); }

    /// The custom image when it is chosen and there, else the built-in pet; null when that is missing too.
    std::shared_ptr<const DecodedImage> displayedImage() const;
    QString displayName() const;
    bool voiceBusy() const { return m_dictation.isBusy(); }

    // Each stores the preferences and then tells the window layer, also when the value is the old one.
    void setEnabled(bool enabled);
    void setAppearance(const QString& appearance);
    void setScale(double scale);
    void setAnimate(bool animate);
    void setDraft(const QString& draft);
    void setMessage(const QString& message);

    /// Lets the person choose an image file; what goes wrong becomes `message`.
    void importImage();
    /// Takes an image file as the pet. A failure changes nothing.
    Result<void> loadCustomImage(const FilePath& file);
    void removeCustomImage();
    void restoreDefaultPet();

    void toggleMicrophone();
    void stopMicrophone();
    void speak(const QString& text);
    void stopSpeech();
    /// Silence in both directions, when the application ends.
    void shutdown();

    // Set by the window layer.
    Action visibilityChanged;
    Action sizeChanged;
    Action openControls;
    Action openWorkspace;
    Action openSettings;
    Action resetPosition;
    Action findOnDesktop;
    Action useDraft;
    Action readOutput;

Q_SIGNALS:
    void enabledChanged();
    void appearanceChanged();
    void scaleChanged();
    void animateChanged();
    void customImageChanged();
    void draftChanged();
    void messageChanged();
    void listeningChanged();
    void requestingMicrophoneChanged();
    void speakingChanged();

private:
    void restore();
    void migrate();
    void save();
    Result<void> checkSizes(const QByteArray& bytes) const;
    void connectVoice();

    const CompanionServices m_services;
    Dictation m_dictation;
    ReadAloud m_readAloud;
    bool m_enabled = true;
    QString m_appearance;
    double m_scale = 1.0;
    bool m_animate = true;
    std::shared_ptr<const DecodedImage> m_customImage;
    /// Read at the first look.
    mutable std::shared_ptr<const DecodedImage> m_builtInPet;
    QString m_draft;
    /// What the draft held, trimmed, when recognition began.
    QString m_baseDraft;
    QString m_message;
};

}  // namespace orvo
