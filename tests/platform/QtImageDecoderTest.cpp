#include "platform/images/QtImage.h"
#include "platform/images/QtImageDecoder.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QColorSpace>
#include <QElapsedTimer>
#include <QFile>
#include <QImageReader>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>

namespace orvo::test {
namespace {

using Sizes = QList<std::optional<QSize>>;

QImage twoColors(QSize size) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::red);
    for (int y = 0; y < size.height(); ++y)
        image.setPixelColor(size.width() - 1, y, QColor(0, 0, 255, 128));
    return image;
}

QByteArray encoded(const QImage& image, const char* format) {
    QBuffer buffer;
    EXPECT_TRUE(buffer.open(QIODevice::WriteOnly));
    EXPECT_TRUE(image.save(&buffer, format));
    return buffer.data();
}

/// A grey TIFF of uncompressed pages. A page of size 0 x 0 lacks even the entries for it.
QByteArray tiff(const QList<QSize>& pages) {
    struct Entry {
        quint16 tag;
        quint32 value;
    };
    QByteArray file("II*\0", 4);
    const auto append = [&file](auto value) {
        value = qToLittleEndian(value);
        file.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    append(quint32(8));
    for (const QSize& page : pages) {
        const auto width = static_cast<quint32>(page.width());
        const auto height = static_cast<quint32>(page.height());
        QList<Entry> entries;
        if (!page.isEmpty()) entries = {{256, width}, {257, height}};
        entries.append(
            {{258, 8}, {259, 1}, {262, 1}, {273, 0}, {277, 1}, {278, height}, {279, width * height}});
        const auto end = static_cast<quint32>(file.size() + 2 + entries.size() * 12 + 4);
        append(static_cast<quint16>(entries.size()));
        for (const Entry& entry : entries) {
            append(entry.tag);
            append(quint16(4));
            append(quint32(1));
            append(entry.tag == 273 ? end : entry.value);
        }
        append(&page == &pages.last() ? quint32(0) : end + width * height);
        file.append(qsizetype{width} * height, char(200));
    }
    return file;
}

class QtImageDecoderTest : public testing::Test {
protected:
    QImage decoded(const QByteArray& bytes) {
        const auto picture = m_decoder.decode(bytes);
        return QtImage::of(picture.get());
    }
    QSizeF displaySize(const QByteArray& bytes) {
        const auto picture = m_decoder.decode(bytes);
        return picture ? picture->displaySize() : QSizeF();
    }
    /// A file of the named format, made by the library's own tool from `image`.
    QByteArray heic(const QImage& image) {
        const QString source = m_folder.filePath(QStringLiteral("picture.png"));
        const QString target = m_folder.filePath(QStringLiteral("picture.heic"));
        EXPECT_TRUE(image.save(source));
        QProcess encoder;
        encoder.start(QStringLiteral("heif-enc"),
                      {QStringLiteral("-q"), QStringLiteral("95"), QStringLiteral("-o"), target, source});
        EXPECT_TRUE(encoder.waitForFinished(60'000));
        QFile file(target);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << encoder.readAllStandardError().toStdString();
        return file.readAll();
    }

    QTemporaryDir m_folder;
    QtImageDecoder m_decoder;
};

TEST_F(QtImageDecoderTest, ReadsTheAcceptedFormatsByTheirBytes) {
    const QImage image = twoColors({40, 30});
    for (const char* format : {"png", "tiff", "jpeg"}) {
        const QByteArray bytes = encoded(image, format);
        EXPECT_EQ(m_decoder.frameSizes(bytes), Sizes({QSize(40, 30)})) << format;
        const QImage result = decoded(bytes);
        ASSERT_EQ(result.size(), QSize(40, 30)) << format;
        EXPECT_GT(result.pixelColor(5, 5).red(), 240) << format;
        EXPECT_EQ(displaySize(bytes), QSizeF(40, 30)) << format << " records no resolution";
    }
    EXPECT_EQ(decoded(encoded(image, "png")).pixelColor(39, 0).alpha(), 128) << "the desktop shines through";

    // Formats that Qt reads and we do not take, text, nothing, and a signature without a picture.
    const QByteArray drawing =
        "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><rect width='9' height='9'/></svg>";
    for (const QByteArray& bytes :
         {encoded(image, "bmp"), encoded(image, "webp"), drawing, QByteArray("not a picture"), QByteArray(),
          QByteArray("\x89PNG\r\n\x1a\n"), QByteArray("II*\0\x08\0\0\0", 8)}) {
        EXPECT_TRUE(m_decoder.frameSizes(bytes).isEmpty()) << bytes.left(12).toStdString();
        EXPECT_EQ(m_decoder.decode(bytes), nullptr) << bytes.left(12).toStdString();
    }
}

TEST_F(QtImageDecoderTest, SizesAreReadWithoutDecoding) {
    // Cut off right behind the header: there is nothing to decode, and the size is known all the same.
    const QByteArray wide = encoded(QImage(10000, 1, QImage::Format_Grayscale8), "png");
    EXPECT_EQ(m_decoder.frameSizes(wide), Sizes({QSize(10000, 1)}));
    const QByteArray cut = encoded(twoColors({300, 200}), "png").left(64);
    EXPECT_EQ(m_decoder.frameSizes(cut), Sizes({QSize(300, 200)}));
    EXPECT_EQ(m_decoder.decode(cut), nullptr);
}

TEST_F(QtImageDecoderTest, EveryPageOfATiffIsLookedAt) {
    const QByteArray bytes = tiff({{32, 32}, {64, 40}, {9000, 2}});
    EXPECT_EQ(m_decoder.frameSizes(bytes), Sizes({QSize(32, 32), QSize(64, 40), QSize(9000, 2)}));
    EXPECT_EQ(decoded(bytes).size(), QSize(32, 32));
    const Sizes broken = {QSize(32, 32), std::nullopt};
    EXPECT_EQ(m_decoder.frameSizes(tiff({{32, 32}, {0, 0}, {32, 32}})), broken);
    // A directory that names itself as the next one.
    QByteArray endless = tiff({{4, 4}});
    qToLittleEndian(quint32(8), endless.data() + endless.size() - 16 - 4);
    EXPECT_LE(m_decoder.frameSizes(endless).size(), 2);
    QRandomGenerator random(7);
    for (int round = 0; round < 2000; ++round) {
        QByteArray damaged = bytes.left(400);
        for (int flip = 0; flip < 4; ++flip)
            damaged[random.bounded(int(damaged.size()))] = static_cast<char>(random.bounded(256));
        (void)m_decoder.frameSizes(damaged);
    }
}

TEST_F(QtImageDecoderTest, ManyPagesDoNotHoldUpTheWindow) {
    // As many as a file of the largest accepted size has room for.
    const QByteArray bytes = tiff(QList<QSize>(10'000'000 / 115, QSize(1, 1)));
    ASSERT_LT(bytes.size(), 10'000'000);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(m_decoder.frameSizes(bytes).size(), 10'000'000 / 115);
    EXPECT_LT(timer.elapsed(), 5'000);
}

TEST_F(QtImageDecoderTest, TheLargestAcceptedPictureDecodesAndIsKeptSmall) {
    const int before = QImageReader::allocationLimit();
    for (const QImage::Format format : {QImage::Format_ARGB32, QImage::Format_RGBA64}) {
        QImage image(8192, 8192, format);
        image.fill(Qt::green);
        const QByteArray bytes = encoded(image, "png");
        image = {};
        const auto picture = m_decoder.decode(bytes);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->displaySize(), QSizeF(8192, 8192));
        EXPECT_EQ(QtImage::of(picture.get()).size(), QSize(1024, 1024));
        EXPECT_EQ(QtImage::of(picture.get()).pixelColor(512, 512), QColor(Qt::green));
        EXPECT_EQ(QImageReader::allocationLimit(), before) << "raised around the load only";
    }
}

TEST_F(QtImageDecoderTest, TheRecordedResolutionGivesTheDisplaySize) {
    QImage image = twoColors({200, 100});
    image.setDotsPerMeterX(2 * 2835);
    image.setDotsPerMeterY(2 * 2835);
    EXPECT_NEAR(displaySize(encoded(image, "png")).width(), 100, 0.1);
    image.setDotsPerMeterX(28);
    EXPECT_GT(displaySize(encoded(image, "png")).width(), 8192) << "one dot in a third of an inch";
}

TEST_F(QtImageDecoderTest, PhotographsComeUpright) {
    QByteArray photograph = encoded(twoColors({40, 30}), "jpeg");
    // What a camera writes that was held on its side: one directory with the orientation "rotate by 90".
    const QByteArray exif(
        "\xff\xe1\x00\x22"
        "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
        36);
    photograph.insert(2, exif);
    EXPECT_EQ(m_decoder.frameSizes(photograph), Sizes({QSize(40, 30)}));
    const QImage upright = decoded(photograph);
    ASSERT_EQ(upright.size(), QSize(30, 40));
    EXPECT_GT(upright.pixelColor(15, 39).blue(), 100) << "the right edge has become the lower one";
}

TEST_F(QtImageDecoderTest, ColorsOfAnotherSpaceAreTurnedIntoTheScreens) {
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(QColor(0, 200, 0));
    image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QColor shown = decoded(encoded(image, "png")).pixelColor(4, 4);
    EXPECT_GT(shown.green(), 200);
    EXPECT_LT(shown.green(), 212);
}

TEST_F(QtImageDecoderTest, ReadsHeic) {
    if (QStandardPaths::findExecutable(QStringLiteral("heif-enc")).isEmpty())
        GTEST_SKIP() << "heif-enc is missing (package libheif-examples), so there is no HEIC file to read";
    QImage image(120, 64, QImage::Format_ARGB32);
    image.fill(Qt::blue);
    const QByteArray bytes = heic(image);
    EXPECT_EQ(m_decoder.frameSizes(bytes), Sizes({QSize(120, 64)}));
    const QImage result = decoded(bytes);
    ASSERT_EQ(result.size(), QSize(120, 64));
    EXPECT_GT(result.pixelColor(60, 32).blue(), 230);
    EXPECT_EQ(displaySize(bytes), QSizeF(120, 64));

    // The same bytes damaged: refused or read, but never a crash.
    QRandomGenerator random(7);
    for (int round = 0; round < 200; ++round) {
        QByteArray damaged = bytes.left(round % 4 == 0 ? random.bounded(int(bytes.size())) : bytes.size());
        for (int flip = 0; flip < 8 && !damaged.isEmpty(); ++flip)
            damaged[random.bounded(int(damaged.size()))] = static_cast<char>(random.bounded(256));
        if (!m_decoder.frameSizes(damaged).isEmpty()) (void)m_decoder.decode(damaged);
    }
    EXPECT_TRUE(m_decoder.frameSizes(bytes.left(40)).isEmpty());
}

}  // namespace
}  // namespace orvo::test
