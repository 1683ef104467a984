// SPDX-License-Identifier: AGPL-3.0-only
// Which kinds of pictures JUCE reads in here: PNG as ever, JPEG not at all (cmake/juce/jpeglib.h).
#include <gtest/gtest.h>
#include <juce_graphics/juce_graphics.h>

#include <array>

namespace
{
/** A picture of one colour, written and read again by JUCE. */
juce::Image reread (juce::ImageFileFormat& format)
{
    juce::Image image (juce::Image::RGB, 40, 30, true);
    image.clear (image.getBounds(), juce::Colours::orange);
    juce::MemoryOutputStream stream;
    format.writeImageToStream (image, stream);
    return juce::ImageFileFormat::loadFrom (stream.getData(), stream.getDataSize());
}

TEST (PictureKind, PngIsWrittenAndRead)
{
    juce::PNGImageFormat png;
    const auto image = reread (png);
    ASSERT_TRUE (image.isValid());
    EXPECT_EQ (image.getPixelAt (39, 29), juce::Colours::orange);
}

TEST (PictureKind, JpegIsNotWritten)
{
    juce::JPEGImageFormat jpeg;
    EXPECT_FALSE (reread (jpeg).isValid());
}

TEST (PictureKind, JpegIsTakenForADamagedFile)
{
    // The header of a true picture, and nothing of sense behind it.
    std::array<unsigned char, 400> bytes { 0xff, 0xd8, 0xff, 0xe0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0x00, 0x01, 0x01 };
    juce::JPEGImageFormat jpeg;
    juce::MemoryInputStream header (bytes.data(), bytes.size(), false);
    ASSERT_TRUE (jpeg.canUnderstand (header));
    EXPECT_FALSE (juce::ImageFileFormat::loadFrom (bytes.data(), bytes.size()).isValid());
}
} // namespace
