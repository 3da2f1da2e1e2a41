#include "platform/voice/PocketSphinxModel.h"

#include <QFileInfo>

#include <pocketsphinx.h>

namespace orvo {
namespace {

// Where the model's package puts it; the one that there is speaks English.
const char* const soundModel = ORVO_SPEECH_MODELS "/en-us/en-us";
const char* const languageModel = ORVO_SPEECH_MODELS "/en-us/en-us.lm.bin";
const char* const dictionary = ORVO_SPEECH_MODELS "/en-us/cmudict-en-us.dict";

}  // namespace

bool PocketSphinxModel::isInstalledFor(const QString& language) {
    // "C" is what a system without a language calls its English.
    if (language != QStringLiteral("en") && language != QStringLiteral("C")) return false;
    for (const char* part : {soundModel, languageModel, dictionary}) {
        if (!QFileInfo::exists(QString::fromUtf8(part))) return false;
    }
    return true;
}

std::unique_ptr<PocketSphinxModel> PocketSphinxModel::load() {
    cmd_ln_t* options = cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", soundModel, "-lm", languageModel,
                                    "-dict", dictionary, "-logfn", "/dev/null", nullptr);
    if (!options) return nullptr;
    Decoder decoder(ps_init(options));
    cmd_ln_free_r(options);
    if (!decoder) return nullptr;
    return std::unique_ptr<PocketSphinxModel>(new PocketSphinxModel(std::move(decoder)));
}

PocketSphinxModel::PocketSphinxModel(Decoder decoder) : m_decoder(std::move(decoder)) {}

PocketSphinxModel::~PocketSphinxModel() = default;

void PocketSphinxModel::Free::operator()(ps_decoder_s* decoder) const {
    ps_free(decoder);
}

void PocketSphinxModel::beginSentence() {
    ps_start_utt(m_decoder.get());
}

bool PocketSphinxModel::hear(const QByteArray& samples) {
    ps_process_raw(m_decoder.get(), reinterpret_cast<const int16*>(samples.constData()),
                   static_cast<size_t>(samples.size()) / sizeof(int16), FALSE, FALSE);
    return ps_get_in_speech(m_decoder.get()) != 0;
}

void PocketSphinxModel::endSentence() {
    ps_end_utt(m_decoder.get());
}

QString PocketSphinxModel::words() const {
    return QString::fromUtf8(ps_get_hyp(m_decoder.get(), nullptr)).simplified();
}

}  // namespace orvo
