// SPDX-License-Identifier: AGPL-3.0-only
#include "window/Picture.h"

#include "base/Failure.h"

#include <png.h>

namespace larkspire::window
{

static_assert (sizeof (Colour) == 3, "pixels stand as packed as in the file's own rows");

void writePng (const Picture& picture, const std::filesystem::path& path)
{
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32> (picture.width);
    image.height = static_cast<png_uint_32> (picture.height);
    image.format = PNG_FORMAT_RGB;

    if (png_image_write_to_file (&image, path.c_str(), 0, picture.pixels.data(), 0, nullptr) == 0)
        throw Failure (path, image.message);
}

Picture readPng (const std::filesystem::path& path)
{
    png_image image {};
    image.version = PNG_IMAGE_VERSION;

    if (png_image_begin_read_from_file (&image, path.c_str()) == 0)
        throw Failure (path, image.message);

    image.format = PNG_FORMAT_RGB;
    Picture picture { .width = static_cast<int> (image.width),
                      .height = static_cast<int> (image.height),
                      .pixels = {} };
    picture.pixels.resize (PNG_IMAGE_SIZE (image) / sizeof (Colour));
    const png_color black {};

    if (png_image_finish_read (&image, &black, picture.pixels.data(), 0, nullptr) == 0)
        throw Failure (path, image.message);

    return picture;
}

} // namespace larkspire::window
