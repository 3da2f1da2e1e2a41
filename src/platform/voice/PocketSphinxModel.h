#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

struct ps_decoder_s;

namespace orvo {

/// A loaded speech model, listening to one stretch of sound after another. One thread at a time.
class PocketSphinxModel {
public:
    /// The files of a model for this language ("en") are installed. Looks only; loads nothing.
    static bool isInstalledFor(const QString& language);

    /// Takes a second or two and about 100 MB. Null when the model cannot be read.
    static std::unique_ptr<PocketSphinxModel> load();
    ~PocketSphinxModel();

    void beginSentence();
    /// Sound as `SpeechSound` makes it. True while somebody speaks.
    bool hear(const QByteArray& samples);
    void endSentence();
    /// What was heard since `beginSentence`, in lower case and without marks.
    QString words() const;

private:
    struct Free {
        void operator()(ps_decoder_s* decoder) const;
    };
    using Decoder = std::unique_ptr<ps_decoder_s, Free>;

    explicit PocketSphinxModel(Decoder decoder);

    Decoder m_decoder;
};

}  // namespace orvo
