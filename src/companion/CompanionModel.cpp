#include "companion/CompanionModel.h"

#include "platform/Dialogs.h"
#include "platform/Preferences.h"
#include "platform/observe.h"
#include "platform/readFile.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace orvo {
namespace {

constexpr qsizetype largestFile = 10'000'000;
constexpr int largestSide = 8192;

QString defaultAppearance() {
    return QStringLiteral("default");
}
QString customAppearance() {
    return QStringLiteral("custom");
}

tl::unexpected<Error> refusal(const QString& message) {
    return failure(QStringLiteral("OrvoCompanion"), message);
}

bool isAllowed(const std::optional<QSize>& size) {
    const auto isSide = [](int pixels) {
        return pixels >= 1 && pixels <= largestSide;
    };
    return size && isSide(size->width()) && isSide(size->height());
}

void call(const CompanionModel::Action& action) {
    if (action) action();
}

}  // namespace

CompanionModel::CompanionModel(CompanionServices services, QObject* parent)
    : QObject(parent),
      m_services(std::move(services)),
      m_dictation(m_services.clock, m_services.microphone, m_services.recognition, m_services.locale),
      m_readAloud(m_services.synthesizer, m_services.locale),
      m_appearance(defaultAppearance()),
      m_message(tr("Click your companion for a quick draft. Drag to move it.")) {
    restore();
    if (m_appearance != customAppearance() || !m_customImage) setAppearance(defaultAppearance());
    migrate();
    connectVoice();
}

CompanionModel::~CompanionModel() = default;

void CompanionModel::restore() {
    if (!m_services.preferences) return;
    const Preferences& stored = *m_services.preferences;
    m_enabled = stored.value(preference::petEnabled).value_or(true);
    m_appearance = stored.value(preference::petAppearance).value_or(defaultAppearance());
    m_scale = std::clamp(stored.value(preference::petScale).value_or(1.0), smallestScale, greatestScale);
    m_animate = stored.value(preference::petAnimate).value_or(true);
    if (const auto bytes = stored.value(preference::petImage))
        m_customImage = m_services.images.decode(*bytes);
}

// Once a person: shows the built-in pet, whatever an earlier version was set to.
void CompanionModel::migrate() {
    if (!m_services.preferences) return;
    if (m_services.preferences->value(preference::petWarriorInstalled).value_or(false)) return;
    setAppearance(defaultAppearance());
    setEnabled(true);
    (void)m_services.preferences->setValue(preference::petWarriorInstalled, true);
}

// The look lasts for this run when it cannot be stored; the store tells the person itself.
void CompanionModel::save() {
    if (!m_services.preferences) return;
    (void)m_services.preferences->setValue(preference::petEnabled, m_enabled);
    (void)m_services.preferences->setValue(preference::petAppearance, m_appearance);
    (void)m_services.preferences->setValue(preference::petScale, m_scale);
    (void)m_services.preferences->setValue(preference::petAnimate, m_animate);
}

std::shared_ptr<const DecodedImage> CompanionModel::displayedImage() const {
    return m_appearance == customAppearance() && m_customImage ? m_customImage : builtInPet();
}

std::shared_ptr<const DecodedImage> CompanionModel::builtInPet() const {
    if (!m_builtInPet) m_builtInPet = m_services.builtInPet();
    return m_builtInPet;
}

QString CompanionModel::displayName() const {
    return m_appearance == customAppearance() ? tr("Your custom companion") : tr("Orvo’s pixel companion");
}

void CompanionModel::setEnabled(bool enabled) {
    const bool isNew = assign(m_enabled, enabled);
    save();
    if (isNew) Q_EMIT enabledChanged();
    call(visibilityChanged);
}

void CompanionModel::setAppearance(const QString& appearance) {
    const bool isNew = assign(m_appearance, appearance);
    save();
    if (isNew) Q_EMIT appearanceChanged();
    call(visibilityChanged);
}

void CompanionModel::setScale(double scale) {
    const bool isNew = assign(m_scale, scale);
    save();
    if (isNew) Q_EMIT scaleChanged();
    call(sizeChanged);
}

void CompanionModel::setAnimate(bool animate) {
    const bool isNew = assign(m_animate, animate);
    save();
    if (isNew) Q_EMIT animateChanged();
}

void CompanionModel::setDraft(const QString& draft) {
    if (assign(m_draft, draft)) Q_EMIT draftChanged();
}

void CompanionModel::setMessage(const QString& message) {
    if (assign(m_message, message)) Q_EMIT messageChanged();
}

void CompanionModel::importImage() {
    static const QStringList patterns = {QStringLiteral("*.png"),  QStringLiteral("*.jpg"),
                                         QStringLiteral("*.jpeg"), QStringLiteral("*.heic"),
                                         QStringLiteral("*.tif"),  QStringLiteral("*.tiff")};
    const auto file = m_services.dialogs.openFile(
        {.message = tr("Choose a pet image. Transparent PNG images blend into your desktop."),
         .folder = std::nullopt,
         .patterns = patterns});
    if (!file) return;
    if (const Result<void> loaded = loadCustomImage(*file); !loaded) setMessage(loaded.error().message);
}

Result<void> CompanionModel::loadCustomImage(const FilePath& file) {
    const Result<QByteArray> bytes = readFile(file, largestFile);
    if (!bytes) {
        if (bytes.error().code == EFBIG) return refusal(tr("Choose an image smaller than 10 MB."));
        return refusal(bytes.error().message);
    }
    if (Result<void> checked = checkSizes(*bytes); !checked) return checked;
    std::shared_ptr<const DecodedImage> image = m_services.images.decode(*bytes);
    const QSizeF size = image ? image->displaySize() : QSizeF();
    if (size.isEmpty() || size.width() > largestSide || size.height() > largestSide) {
        return refusal(tr("This image could not be opened. Try a PNG or JPEG smaller than 8192 pixels."));
    }
    m_customImage = std::move(image);
    Q_EMIT customImageChanged();
    if (m_services.preferences) (void)m_services.preferences->setValue(preference::petImage, *bytes);
    setAppearance(customAppearance());
    setEnabled(true);
    setMessage(tr("Your custom companion is ready."));
    return {};
}

// Before anything is decoded: a small file can unpack to a picture that fills the memory.
Result<void> CompanionModel::checkSizes(const QByteArray& bytes) const {
    const QList<std::optional<QSize>> frames = m_services.images.frameSizes(bytes);
    if (frames.isEmpty()) return refusal(tr("This image could not be opened. Try a PNG or JPEG."));
    if (!std::ranges::all_of(frames, isAllowed))
        return refusal(tr("Choose an image no larger than 8192 pixels on either side."));
    return {};
}

void CompanionModel::removeCustomImage() {
    if (std::exchange(m_customImage, nullptr)) Q_EMIT customImageChanged();
    if (m_services.preferences) (void)m_services.preferences->remove(preference::petImage);
    restoreDefaultPet();
}

void CompanionModel::restoreDefaultPet() {
    setAppearance(defaultAppearance());
    setEnabled(true);
    setMessage(tr("Your default pixel companion is ready."));
}

void CompanionModel::connectVoice() {
    connect(&m_dictation, &Dictation::listeningChanged, this, &CompanionModel::listeningChanged);
    connect(&m_dictation, &Dictation::requestingChanged, this, &CompanionModel::requestingMicrophoneChanged);
    connect(&m_dictation, &Dictation::said, this, &CompanionModel::setMessage);
    connect(&m_dictation, &Dictation::beginning, this, [this] { m_baseDraft = m_draft.trimmed(); });
    connect(&m_dictation, &Dictation::heard, this, [this](const QString& transcription) {
        setDraft(m_baseDraft.isEmpty() ? transcription : m_baseDraft + u' ' + transcription);
    });
    connect(&m_readAloud, &ReadAloud::speakingChanged, this, &CompanionModel::speakingChanged);
    connect(&m_readAloud, &ReadAloud::failed, this, &CompanionModel::setMessage);
}

void CompanionModel::toggleMicrophone() {
    if (voiceBusy()) return stopMicrophone();
    stopSpeech();
    m_dictation.start();
}

void CompanionModel::stopMicrophone() {
    m_dictation.stop();
}

void CompanionModel::speak(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return setMessage(tr("There is no text to read yet."));
    stopMicrophone();
    m_readAloud.speak(trimmed);
    setMessage(tr("Reading aloud… Stop Orvo audio ends playback."));
}

void CompanionModel::stopSpeech() {
    m_readAloud.stop();
}

void CompanionModel::shutdown() {
    stopMicrophone();
    stopSpeech();
}

}  // namespace orvo
