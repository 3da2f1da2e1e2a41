#pragma once

#include "companion/CompanionModel.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakeImageDecoder.h"
#include "platform/fake/FakePreferences.h"
#include "platform/fake/FakeSpeech.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvo::test {

/// A companion over recording services.
class CompanionFixture : public testing::Test {
protected:
    static QString text(const char* utf8) { return QString::fromUtf8(utf8); }

    CompanionServices services() { return services(m_images); }
    CompanionServices services(const ImageDecoder& images) {
        return {.preferences = &m_preferences,
                .clock = m_clock,
                .dialogs = m_dialogs,
                .images = images,
                .microphone = m_microphone,
                .recognition = m_recognition,
                .synthesizer = m_synthesizer,
                .builtInPet = [this] { return m_builtInPet; },
                .locale = text("en_GB")};
    }
    /// Lets what arrived from other threads through.
    static void deliver() { QCoreApplication::sendPostedEvents(); }

    /// A file whose bytes the decoder knows as this picture.
    FilePath picture(const QByteArray& bytes, const FakeImageDecoder::Picture& picture) {
        m_images.pictures[bytes] = picture;
        return write(bytes);
    }
    FilePath write(const QByteArray& bytes) {
        QFile file(m_folder.filePath(text("pet %1.png").arg(++m_files)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return FilePath::fromString(file.fileName());
    }

    QTemporaryDir m_folder;
    int m_files = 0;
    FakePreferences m_preferences;
    FakeClock m_clock;
    FakeDialogs m_dialogs;
    FakeImageDecoder m_images;
    FakeMicrophone m_microphone;
    FakeSpeechRecognition m_recognition;
    FakeSpeechSynthesizer m_synthesizer;
    std::shared_ptr<const DecodedImage> m_builtInPet = [] {
        FakeImageDecoder decoder;
        decoder.pictures["pet"] = {.frames = {QSize(30, 30)}, .displaySize = QSizeF(30, 30)};
        return decoder.decode("pet");
    }();
};

}  // namespace orvo::test
