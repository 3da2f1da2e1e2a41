#include "companion/CompanionFixture.h"
#include "platform/images/QtImage.h"
#include "platform/images/QtImageDecoder.h"

#include <QBuffer>
#include <QImage>

namespace orvo::test {
namespace {

/// The companion with the real reader of pictures.
class ImageImportTest : public CompanionFixture {
protected:
    static QByteArray png(const QImage& image) {
        QBuffer buffer;
        EXPECT_TRUE(buffer.open(QIODevice::WriteOnly));
        EXPECT_TRUE(image.save(&buffer, "png"));
        return buffer.data();
    }
    static QImage blue(int width, int height) {
        QImage image(width, height, QImage::Format_ARGB32);
        image.fill(Qt::blue);
        return image;
    }

    QtImageDecoder m_decoder;
};

TEST_F(ImageImportTest, APictureIsShownAndSurvivesARestart) {
    {
        CompanionModel model(services(m_decoder));
        ASSERT_TRUE(model.loadCustomImage(write(png(blue(40, 20)))));
        EXPECT_EQ(QtImage::of(model.displayedImage().get()).size(), QSize(40, 20));
    }
    CompanionModel model(services(m_decoder));
    EXPECT_EQ(model.appearance(), text("custom"));
    EXPECT_EQ(QtImage::of(model.displayedImage().get()).pixelColor(3, 3), QColor(Qt::blue));
}

TEST_F(ImageImportTest, WhatIsRefusedNamesItsReasonAndChangesNothing) {
    CompanionModel model(services(m_decoder));
    const auto expectRefused = [this, &model](const QByteArray& bytes, const char* message) {
        const Result<void> loaded = model.loadCustomImage(write(bytes));
        ASSERT_FALSE(loaded);
        EXPECT_EQ(loaded.error().message, text(message));
        EXPECT_EQ(model.appearance(), text("default"));
        EXPECT_EQ(model.customImage(), nullptr);
    };
    const char* const noPicture = "This image could not be opened. Try a PNG or JPEG.";
    const char* const tooLarge = "Choose an image no larger than 8192 pixels on either side.";
    expectRefused("a text with the name of a picture", noPicture);
    expectRefused({}, noPicture);
    // Wide in pixels, although its resolution makes it 100 units of the screen.
    QImage wide = blue(10'000, 1);
    wide.setDotsPerMeterX(100 * 2835);
    expectRefused(png(wide), tooLarge);
    // Small in pixels, and huge at its resolution.
    QImage coarse = blue(200, 200);
    coarse.setDotsPerMeterX(28);
    expectRefused(png(coarse), "This image could not be opened. Try a PNG or JPEG smaller than 8192 pixels.");
    const QByteArray whole = png(blue(300, 300));
    expectRefused(whole.left(whole.size() / 2),
                  "This image could not be opened. Try a PNG or JPEG smaller than 8192 pixels.");
}

}  // namespace
}  // namespace orvo::test
