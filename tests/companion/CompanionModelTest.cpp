#include "companion/CompanionFixture.h"

namespace orvo::test {
namespace {

const FakeImageDecoder::Picture small{.frames = {QSize(16, 16)}, .displaySize = QSizeF(16, 16)};

class CompanionModelTest : public CompanionFixture {
protected:
    void storeMigrated() { m_preferences.preset(preference::petWarriorInstalled.name, true); }
    std::optional<PreferenceValue> stored(const char* name) const { return m_preferences.stored(name); }
};

TEST_F(CompanionModelTest, WithoutPreferencesItStartsWithTheDefaultsAndKeepsNothing) {
    CompanionServices transient = services();
    transient.preferences = nullptr;
    CompanionModel model(transient);
    EXPECT_TRUE(model.enabled());
    EXPECT_EQ(model.appearance(), text("default"));
    EXPECT_EQ(model.displayedImage(), m_builtInPet);
    EXPECT_FALSE(model.listening() || model.requestingMicrophone() || model.speaking());
    EXPECT_EQ(model.message(), text("Click your companion for a quick draft. Drag to move it."));
    model.setScale(1.5);
    EXPECT_TRUE(model.loadCustomImage(picture("a", small)));
    EXPECT_TRUE(m_preferences.writes().isEmpty());
}

TEST_F(CompanionModelTest, StoredValuesAreReadAndBroughtIntoTheirLimits) {
    struct Case {
        double stored;
        double scale;
    };
    storeMigrated();
    m_preferences.preset(preference::petEnabled.name, false);
    m_preferences.preset(preference::petAnimate.name, false);
    for (const Case& each : {Case{3.0, 1.5}, Case{0.1, 0.65}, Case{1.2, 1.2}}) {
        m_preferences.preset(preference::petScale.name, each.stored);
        const CompanionModel model(services());
        EXPECT_DOUBLE_EQ(model.scale(), each.scale);
        EXPECT_FALSE(model.enabled());
        EXPECT_FALSE(model.animate());
    }
    m_preferences.preset(preference::petScale.name, QStringLiteral("big"));
    EXPECT_DOUBLE_EQ(CompanionModel(services()).scale(), 1.0);
}

TEST_F(CompanionModelTest, ACustomPetComesBackOnlyWhenItsImageDecodes) {
    storeMigrated();
    m_images.pictures["a"] = small;
    m_preferences.preset(preference::petAppearance.name, QStringLiteral("custom"));
    EXPECT_EQ(CompanionModel(services()).appearance(), text("default")) << "without an image";

    m_preferences.preset(preference::petAppearance.name, QStringLiteral("custom"));
    m_preferences.preset(preference::petImage.name, QByteArray("broken"));
    EXPECT_EQ(CompanionModel(services()).appearance(), text("default")) << "with a broken image";

    m_preferences.preset(preference::petAppearance.name, QStringLiteral("custom"));
    m_preferences.preset(preference::petImage.name, QByteArray("a"));
    const CompanionModel model(services());
    EXPECT_EQ(model.appearance(), text("custom"));
    EXPECT_EQ(model.displayedImage(), model.customImage());
    EXPECT_EQ(model.displayName(), text("Your custom companion"));
}

TEST_F(CompanionModelTest, TheBuiltInPetIsIntroducedOnce) {
    m_images.pictures["a"] = small;
    m_preferences.preset(preference::petAppearance.name, QStringLiteral("custom"));
    m_preferences.preset(preference::petImage.name, QByteArray("a"));
    m_preferences.preset(preference::petEnabled.name, false);
    {
        CompanionModel model(services());
        EXPECT_TRUE(model.enabled());
        EXPECT_EQ(model.appearance(), text("default"));
        EXPECT_TRUE(model.customImage()) << "the image itself is kept";
        model.setEnabled(false);
    }
    EXPECT_EQ(stored("orvo.pet.warriorInstalled.v1"), PreferenceValue(true));
    EXPECT_FALSE(CompanionModel(services()).enabled()) << "a later choice stands";
}

TEST_F(CompanionModelTest, EachChangeIsStoredBeforeTheWindowsHearOfIt) {
    CompanionModel model(services());
    QStringList calls;
    model.visibilityChanged = [&] {
        calls.append(text("visibility"));
        EXPECT_EQ(stored("orvo.pet.enabled"), PreferenceValue(model.enabled()));
        EXPECT_EQ(stored("orvo.pet.appearance"), PreferenceValue(model.appearance()));
    };
    model.sizeChanged = [&] {
        calls.append(text("size"));
        EXPECT_EQ(stored("orvo.pet.scale"), PreferenceValue(model.scale()));
    };
    model.setEnabled(false);
    model.setAppearance(text("custom"));
    model.setScale(0.8);
    model.setAnimate(false);
    model.setEnabled(false);
    EXPECT_EQ(calls, QStringList({text("visibility"), text("visibility"), text("size"), text("visibility")}));
    EXPECT_EQ(stored("orvo.pet.animate"), PreferenceValue(false));
    EXPECT_EQ(model.displayedImage(), m_builtInPet) << "\"custom\" without an image shows the built-in pet";
}

TEST_F(CompanionModelTest, AnAllowedImageBecomesThePetUntilItIsRemoved) {
    CompanionModel model(services());
    model.setEnabled(false);
    const FilePath file = picture("a", small);
    m_dialogs.openFile(file);
    model.importImage();
    EXPECT_EQ(m_dialogs.openPanels().first().message,
              text("Choose a pet image. Transparent PNG images blend into your desktop."));
    EXPECT_EQ(model.appearance(), text("custom"));
    EXPECT_EQ(model.displayedImage(), model.customImage());
    EXPECT_TRUE(model.enabled());
    EXPECT_EQ(model.message(), text("Your custom companion is ready."));
    EXPECT_EQ(stored("orvo.pet.image"), PreferenceValue(QByteArray("a")));

    model.setEnabled(false);
    model.restoreDefaultPet();
    EXPECT_TRUE(model.enabled());
    EXPECT_EQ(model.displayedImage(), m_builtInPet);
    EXPECT_TRUE(stored("orvo.pet.image")) << "restoring keeps the image for later";

    model.removeCustomImage();
    EXPECT_FALSE(model.customImage());
    EXPECT_FALSE(stored("orvo.pet.image"));
    EXPECT_EQ(model.message(), text("Your default pixel companion is ready."));
}

TEST_F(CompanionModelTest, AnImageBeyondTheLimitsIsRefusedAndChangesNothing) {
    struct Case {
        const char* name;
        FilePath file;
        const char* message;
    };
    const char* const tooLarge = "Choose an image no larger than 8192 pixels on either side.";
    const char* const undecodable =
        "This image could not be opened. Try a PNG or JPEG smaller than 8192 pixels.";
    const QList<Case> cases = {
        {"too many bytes", write(QByteArray(10'000'001, 'x')), "Choose an image smaller than 10 MB."},
        {"no image", write("text"), "This image could not be opened. Try a PNG or JPEG."},
        {"wide, small on screen", picture("w", {{QSize(10000, 1)}, QSizeF(100, 1)}), tooLarge},
        {"high", picture("h", {{QSize(1, 8193)}, QSizeF(1, 1)}), tooLarge},
        {"a later frame", picture("f", {{QSize(9, 9), QSize(8193, 9)}, QSizeF(9, 9)}), tooLarge},
        {"a frame without size", picture("n", {{QSize(9, 9), std::nullopt}, QSizeF(9, 9)}), tooLarge},
        {"an empty frame", picture("0", {{QSize(0, 9)}, QSizeF(9, 9)}), tooLarge},
        {"does not decode", picture("d", {{QSize(9, 9)}, std::nullopt}), undecodable},
        {"large on screen", picture("l", {{QSize(9, 9)}, QSizeF(8193, 9)}), undecodable},
        {"nothing on screen", picture("z", {{QSize(9, 9)}, QSizeF(0, 9)}), undecodable},
    };
    CompanionModel model(services());
    model.setEnabled(false);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        m_dialogs.openFile(each.file);
        model.importImage();
        EXPECT_EQ(model.message(), text(each.message));
        EXPECT_EQ(model.appearance(), text("default"));
        EXPECT_FALSE(model.customImage() || model.enabled() || stored("orvo.pet.image"));
    }
    const auto absent = model.loadCustomImage(FilePath::fromString(m_folder.filePath(text("absent.png"))));
    ASSERT_FALSE(absent);
    EXPECT_EQ(absent.error().domain, text("OrvoCompanion"));
    EXPECT_FALSE(absent.error().message.isEmpty());
}

TEST_F(CompanionModelTest, TheGreatestAllowedImageLoads) {
    CompanionModel model(services());
    QByteArray bytes(10'000'000, 'x');
    EXPECT_TRUE(model.loadCustomImage(picture(bytes, {{QSize(8192, 8192), QSize(1, 1)}, QSizeF(8192, 1)})));
    m_dialogs.openFile(std::nullopt);
    model.setMessage(text("before"));
    model.importImage();
    EXPECT_EQ(model.message(), text("before")) << "cancelling changes nothing";
}

}  // namespace
}  // namespace orvo::test
